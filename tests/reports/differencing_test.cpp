// VHD and VHDX images that store what differs from a parent. No tool at hand makes them, so they are built
// field by field; the builders' images without a parent are compared with what qemu-img reads of them.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/disks/samples.h"
#include "tests/disks/vhd.h"
#include "tests/disks/vhdx.h"
#include "tests/support/expected.h"
#include "tests/support/program.h"

namespace trovisk::test {
namespace {

namespace fs = std::filesystem;

constexpr std::array<u8, 16> kOtherIdentity = {0xAA, 0xBB};
constexpr std::u16string_view kOtherIdentityText = u"{99999999-5566-7788-99aa-bbccddeeff00}";

// A child of those sectors holds what stands behind each of them up to the end of its group of eight, too:
// what its library reads as it is meant.
Disk InGroups(const Disk& changes, Disk parent) {
  Disk whole(changes.Sectors());
  for (const auto& [number, sector] : changes.Touched()) {
    for (u64 behind = number; behind <= (number | 7); ++behind)
      whole.At(behind).Bytes(0, parent.At(behind).View());
  }
  for (const auto& [number, sector] : changes.Touched())
    whole.At(number).Bytes(0, sector.View());
  return whole;
}

// What a child changes: sectors of the parent, a zeroed one among them, and one that it has nothing in.
Disk Changes() {
  Disk changes(MbrSample().Sectors());
  changes.At(0).Bytes(0, MbrSample().At(0).View()).Text(0x40, "changed");
  changes.At(64).Fill(0, 512, 0);
  changes.At(2047).Text(0, "the child's");
  changes.At(150000).Text(500, "the child's");
  return InGroups(changes, MbrSample());
}

void Apply(Disk& disk, const Disk& changes) {
  for (const auto& [number, sector] : changes.Touched())
    disk.At(number).Bytes(0, sector.View());
}

class Differencing : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = ScratchPath("differencing");
    fs::remove_all(folder_);
    fs::create_directory(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  Outcome Run(const std::string& name, const std::vector<std::string>& sectors = {}) const {
    std::vector<std::string> arguments = {Path(name)};
    arguments.insert(arguments.end(), sectors.begin(), sectors.end());
    Outcome outcome = RunProgram(Build::kInventedCode, arguments);
    ReplaceAll(outcome.out, Path(name), "<disk>");
    ReplaceAll(outcome.err, Path(name), "<disk>");
    outcome.out = WithoutDate(outcome.out);
    return outcome;
  }

  void ExpectReportsOf(const Disk& disk, const std::string& name) const {
    SCOPED_TRACE(name);
    disk.Write(Path("raw.img"));
    for (const std::vector<std::string>& sectors : {std::vector<std::string>{},
                                                    {"0"},
                                                    {"0", "4200"},
                                                    {"149990", "150010"},
                                                    {"196600", "196607"},
                                                    {"196608"}}) {
      const Outcome image = Run(name, sectors);
      const Outcome raw = Run("raw.img", sectors);
      EXPECT_TRUE(SameText(image.out, raw.out));
      EXPECT_EQ(image.err, raw.err);
      EXPECT_EQ(image.status, raw.status);
    }
  }

  void ExpectRefused(const std::string& name, const std::string& words) const {
    const Outcome outcome = Run(name);
    EXPECT_EQ(outcome.out, "Trovisk version 1.4 built <date>\n\n");
    EXPECT_EQ(outcome.err, "Global::Open: \\\\.\\PhysicalDrive<disk> " + words + "\n");
    EXPECT_EQ(outcome.status, 1);
  }

  // What qemu-img makes of an image is the disk.
  void ExpectConverted(const std::string& format, const std::string& name, const Disk& disk) const {
    disk.Write(Path("raw.img"));
    const Outcome outcome =
        RunCommand("qemu-img", {"convert", "-f", format, "-O", "raw", Path(name), Path("converted.img")}, {});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(fs::file_size(Path("converted.img")), fs::file_size(Path("raw.img")));
    EXPECT_EQ(RunCommand("cmp", {Path("converted.img"), Path("raw.img")}, {}).out, "");
  }

 private:
  std::string folder_;
};

TEST_F(Differencing, BuiltImagesAreThoseOfTheFormats) {
  MakeVhd(MbrSample()).Write(Path("base.vhd"));
  MakeVhdx(MbrSample()).Write(Path("base.vhdx"));
  ExpectConverted("vpc", "base.vhd", MbrSample());
  ExpectConverted("vhdx", "base.vhdx", MbrSample());
  ExpectReportsOf(MbrSample(), "base.vhd");
  ExpectReportsOf(MbrSample(), "base.vhdx");
}

TEST_F(Differencing, ChildAndParentAreOneDisk) {
  MakeVhd(MbrSample()).Write(Path("base.vhd"));
  MakeVhd(Changes(), {.identity = kOtherIdentity, .parent = u"base.vhd"}).Write(Path("child.vhd"));
  MakeVhdx(MbrSample()).Write(Path("base.vhdx"));
  MakeVhdx(Changes(), {.parent = VhdxParent(u"base.vhdx")}).Write(Path("child.vhdx"));
  Disk combined = MbrSample();
  Apply(combined, Changes());
  ExpectReportsOf(combined, "child.vhd");
  ExpectReportsOf(combined, "child.vhdx");
}

TEST_F(Differencing, ParentOfFixedSize) {
  MakeFixedVhd(MbrSample()).Write(Path("base.vhd"));
  ExpectReportsOf(MbrSample(), "base.vhd");
  MakeVhd(Changes(), {.identity = kOtherIdentity, .parent = u"base.vhd"}).Write(Path("child.vhd"));
  Disk combined = MbrSample();
  Apply(combined, Changes());
  ExpectReportsOf(combined, "child.vhd");
}

// What a crash left in the log is newer than what stands in its place.
TEST_F(Differencing, VhdxWhoseLogHasEntriesInForceIsRefused) {
  const Guid log("01020304-0506-0708-090A-0B0C0D0E0F10");
  const Guid older("FFFFFFFF-0506-0708-090A-0B0C0D0E0F10");
  MakeVhdx(MbrSample(), {.log = log, .logEntry = log}).Write(Path("crashed.vhdx"));
  ExpectRefused("crashed.vhdx",
                "is a VHDX image that has writes in its log that are not where they belong yet: have them "
                "replayed in a copy of it with \"qemu-img check -r all\"");
  MakeVhdx(MbrSample(), {.log = log, .logEntry = older}).Write(Path("older.vhdx"));
  ExpectReportsOf(MbrSample(), "older.vhdx");
  MakeVhdx(MbrSample(), {.log = log}).Write(Path("empty.vhdx"));
  ExpectReportsOf(MbrSample(), "empty.vhdx");
  MakeVhdx(MbrSample(), {.logEntry = older}).Write(Path("closed.vhdx"));
  ExpectReportsOf(MbrSample(), "closed.vhdx");
}

TEST_F(Differencing, GrandchildRestsOnBoth) {
  Disk latest(MbrSample().Sectors());
  latest.At(2047).Text(0, "the grandchild's");
  latest.At(2048).Bytes(0, MbrSample().At(2048).View());
  latest.At(150001).Text(0, "the grandchild's");
  Disk below = MbrSample();
  Apply(below, Changes());
  latest = InGroups(latest, below);
  MakeVhd(MbrSample()).Write(Path("base.vhd"));
  MakeVhd(Changes(), {.identity = kOtherIdentity, .parent = u"base.vhd"}).Write(Path("child.vhd"));
  MakeVhd(latest, {.parent = u"child.vhd", .parentIdentity = kOtherIdentity}).Write(Path("grandchild.vhd"));
  MakeVhdx(MbrSample()).Write(Path("base.vhdx"));
  MakeVhdx(Changes(), {.parent = VhdxParent(u"base.vhdx")}).Write(Path("child.vhdx"));
  MakeVhdx(latest, {.parent = VhdxParent(u"child.vhdx")}).Write(Path("grandchild.vhdx"));
  Disk combined = MbrSample();
  Apply(combined, Changes());
  Apply(combined, latest);
  ExpectReportsOf(combined, "grandchild.vhd");
  ExpectReportsOf(combined, "grandchild.vhdx");
}

// One sector alone, and the parent's bytes in the next one: the library would show zeros there.
TEST_F(Differencing, ChangesThatTheLibraryReadsWronglyAreRefused) {
  MakeVhd(MbrSample()).Write(Path("base.vhd"));
  Disk changes(MbrSample().Sectors());
  changes.At(2048).Text(0, "the child's");
  MakeVhd(changes, {.parent = u"base.vhd"}).Write(Path("child.vhd"));
  ExpectRefused(
      "child.vhd",
      "is a VHD image that has changes that end inside of a group of eight sectors, where its library "
      "shows zeros: convert it to a VHDX image with its own system's tools");
}

// A path of the machine that the images come from: what counts is the name, beside the child.
TEST_F(Differencing, ParentIsFoundByTheLastPartOfItsPath) {
  MakeVhd(MbrSample()).Write(Path("base.vhd"));
  MakeVhd(Changes(), {.parent = u"D:\\machines\\base.vhd"}).Write(Path("child.vhd"));
  Disk combined = MbrSample();
  Apply(combined, Changes());
  ExpectReportsOf(combined, "child.vhd");
}

TEST_F(Differencing, ParentInAnotherFolder) {
  fs::create_directory(Path("bases"));
  MakeVhd(MbrSample()).Write(Path("bases/base.vhd"));
  MakeVhd(Changes(), {.parent = u"bases\\base.vhd"}).Write(Path("child.vhd"));
  Disk combined = MbrSample();
  Apply(combined, Changes());
  ExpectReportsOf(combined, "child.vhd");
}

TEST_F(Differencing, MissingParentIsNamed) {
  MakeVhd(Changes(), {.parent = u"base.vhd"}).Write(Path("child.vhd"));
  MakeVhdx(Changes(), {.parent = VhdxParent(u"base.vhdx")}).Write(Path("child.vhdx"));
  ExpectRefused("child.vhd", "is a VHD image that rests on the image base.vhd, which is missing");
  ExpectRefused("child.vhdx",
                "is a VHDX image that rests on the image C:\\images\\base.vhdx, which is missing");
}

// The library knows the full path alone. Without a parent, what it holds would be taken for damaged.
TEST_F(Differencing, ParentWithoutAFullPathIsRefused) {
  MakeVhdx(MbrSample()).Write(Path("base.vhdx"));
  auto parent = VhdxParent(u"base.vhdx");
  parent.pop_back();
  MakeVhdx(Changes(), {.parent = parent}).Write(Path("child.vhdx"));
  ExpectRefused("child.vhdx",
                "is a VHDX image that rests on another image, whose full path it does not hold");
}

TEST_F(Differencing, OtherStateOfTheParentIsRefused) {
  MakeVhd(MbrSample(), {.identity = kOtherIdentity}).Write(Path("base.vhd"));
  MakeVhd(Changes(), {.parent = u"base.vhd"}).Write(Path("child.vhd"));
  MakeVhdx(MbrSample()).Write(Path("base.vhdx"));
  MakeVhdx(Changes(), {.parent = VhdxParent(u"base.vhdx", kOtherIdentityText)}).Write(Path("child.vhdx"));
  ExpectRefused("child.vhd",
                "is a VHD image that rests on another state of the image base.vhd than the one "
                "that is there");
  ExpectRefused(
      "child.vhdx",
      "is a VHDX image that rests on another state of the image C:\\images\\base.vhdx than the one that is "
      "there");
}

TEST_F(Differencing, ImageThatRestsOnItselfIsRefused) {
  MakeVhd(Changes(), {.parent = u"self.vhd"}).Write(Path("self.vhd"));
  MakeVhdx(Changes(), {.parent = VhdxParent(u"self.vhdx")}).Write(Path("self.vhdx"));
  ExpectRefused("self.vhd", "is a VHD image that rests on the image self.vhd, which rests on itself");
  ExpectRefused("self.vhdx",
                "is a VHDX image that rests on the image C:\\images\\self.vhdx, which rests on itself");
}

TEST_F(Differencing, ClaimOf2To63BytesIsRefused) {
  MakeVhd(MbrSample(), {.claimedSize = u64{1} << 63}).Write(Path("huge.vhd"));
  MakeVhdx(MbrSample(), {.claimedSize = u64{1} << 63}).Write(Path("huge.vhdx"));
  for (const char* name : {"huge.vhd", "huge.vhdx"}) {
    const Outcome outcome = Run(name);
    EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive<disk> for reading, error 5\n");
    EXPECT_EQ(outcome.status, 1);
  }
}

}  // namespace
}  // namespace trovisk::test
