// Containers: the report of what they hold is that of the raw image, and what is damaged ends in an error
// line.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>

#include "tests/disks/samples.h"
#include "tests/support/expected.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

namespace fs = std::filesystem;

// Runs a tool that makes images; its own words are shown when it fails.
void Make(const std::vector<std::string>& words) {
  const Outcome outcome = RunChild([&] { Execute(words); });
  ASSERT_EQ(outcome.status, 0) << words[0] << ": " << outcome.err << outcome.out;
}

// A folder with the raw image of a sample disk, and what is made of it.
class Containers : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = ScratchPath("containers");
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    MbrSample().Write(Path("raw.img"));
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  // Converts the raw image; options as qemu-img takes them.
  void Convert(const std::string& name, const std::string& format,
               const std::vector<std::string>& options = {}) {
    std::vector<std::string> words = {"qemu-img", "convert", "-O", format};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {Path("raw.img"), Path(name)});
    Make(words);
  }

  Outcome Run(const std::string& name, const std::vector<std::string>& sectors = {}) const {
    std::vector<std::string> arguments = {Path(name)};
    arguments.insert(arguments.end(), sectors.begin(), sectors.end());
    Outcome outcome = RunProgram(Build::kInventedCode, arguments);
    ReplaceAll(outcome.out, Path(name), "<disk>");
    ReplaceAll(outcome.err, Path(name), "<disk>");
    outcome.out = WithoutDate(outcome.out);
    return outcome;
  }

  void ExpectReportsOfTheRawImage(const std::string& name) const {
    SCOPED_TRACE(name);
    for (const std::vector<std::string>& sectors :
         {std::vector<std::string>{}, {"0"}, {"0", "3000"}, {"196600", "196607"}, {"196608"}}) {
      const Outcome container = Run(name, sectors);
      const Outcome raw = Run("raw.img", sectors);
      EXPECT_TRUE(SameText(container.out, raw.out));
      EXPECT_EQ(container.err, raw.err);
      EXPECT_EQ(container.status, raw.status);
    }
  }

  // The run ends before anything is printed of a disk, with this one line.
  void ExpectRefused(const std::string& name, const std::string& words) const {
    const Outcome outcome = Run(name);
    EXPECT_EQ(outcome.out, "Trovisk version 1.4 built <date>\n\n");
    EXPECT_EQ(outcome.err, "Global::Open: \\\\.\\PhysicalDrive<disk> " + words + "\n");
    EXPECT_EQ(outcome.status, 1);
  }

  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }

  std::string folder_;
};

TEST_F(Containers, GiveTheReportsOfTheRawImage) {
  Convert("sparse.qcow2", "qcow2");
  Convert("compressed.qcow2", "qcow2", {"-c"});
  Convert("dynamic.vhd", "vpc", {"-o", "force_size"});
  Convert("fixed.vhd", "vpc", {"-o", "subformat=fixed,force_size"});
  Convert("dynamic.vhdx", "vhdx");
  Convert("fixed.vhdx", "vhdx", {"-o", "subformat=fixed"});
  Convert("sparse.vmdk", "vmdk");
  Convert("stream.vmdk", "vmdk", {"-o", "subformat=streamOptimized"});
  Convert("flat.vmdk", "vmdk", {"-o", "subformat=monolithicFlat"});
  Convert("pieces.vmdk", "vmdk", {"-o", "subformat=twoGbMaxExtentSparse"});
  for (const char* name : {"sparse.qcow2", "compressed.qcow2", "dynamic.vhd", "fixed.vhd", "dynamic.vhdx",
                           "fixed.vhdx", "sparse.vmdk", "stream.vmdk", "flat.vmdk", "pieces.vmdk"}) {
    ExpectReportsOfTheRawImage(name);
  }
}

TEST_F(Containers, SnapshotsInAnImageAreNotItsContent) {
  Convert("snapshot.qcow2", "qcow2");
  Make({"qemu-img", "snapshot", "-c", "before", Path("snapshot.qcow2")});
  ExpectReportsOfTheRawImage("snapshot.qcow2");
}

TEST_F(Containers, EwfSegmentsAreFoundByTheirNames) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-S", "33554432", "-t", Path("evidence"),
        Path("raw.img")});
  ASSERT_TRUE(fs::exists(Path("evidence.E02")));
  ExpectReportsOfTheRawImage("evidence.E01");
  Make({"ewfacquire", "-q", "-u", "-f", "ewf", "-c", "best", "-t", Path("compressed"), Path("raw.img")});
  ExpectReportsOfTheRawImage(fs::exists(Path("compressed.e01")) ? "compressed.e01" : "compressed.E01");
  // One that has lost its ending is taken to be all there is.
  fs::rename(Path(fs::exists(Path("compressed.e01")) ? "compressed.e01" : "compressed.E01"),
             Path("renamed.image"));
  ExpectReportsOfTheRawImage("renamed.image");
}

TEST_F(Containers, EwfSegmentThatIsNotTheFirstIsRefused) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-S", "33554432", "-t", Path("evidence"),
        Path("raw.img")});
  ExpectRefused("evidence.E02", "is segment 2 of an E01 (EWF) image: name the first one");
}

TEST_F(Containers, EwfWithoutOneOfItsSegmentsIsRefused) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-S", "33554432", "-t", Path("evidence"),
        Path("raw.img")});
  ASSERT_TRUE(fs::exists(Path("evidence.E03")));
  fs::remove(Path("evidence.E02"));
  ExpectRefused(
      "evidence.E01",
      "is an E01 (EWF) image that has no end: a segment behind evidence.E01 is missing, or that one is cut");
}

// Where a checksum is wrong, the bytes are not shown; beside that they are.
TEST_F(Containers, EwfChunkWithAWrongChecksumIsUnreadable) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-t", Path("evidence"), Path("raw.img")});
  std::string bytes = ReadFile(Path("evidence.E01"));
  const std::size_t place = bytes.find("SAMPLE F16");
  ASSERT_NE(place, std::string::npos);
  bytes[place] = static_cast<char>(bytes[place] ^ 0x20);
  Write("evidence.E01", bytes);
  const Outcome outcome = Run("evidence.E01");
  EXPECT_NE(outcome.err.find("Global::Read failed, error 5\nError reading sector\n"), std::string::npos);
  EXPECT_EQ(outcome.out.find("sAMPLE F16"), std::string::npos);
  EXPECT_NE(outcome.out.find("Reading sector # 0 [as a raw sector]\n\n"), std::string::npos);
}

TEST_F(Containers, RawImageInPieces) {
  Make({"split", "-b", "30M", "-d", "-a", "3", Path("raw.img"), Path("zero.")});
  Make({"split", "-b", "30M", "--numeric-suffixes=1", "-a", "3", Path("raw.img"), Path("one.")});
  Make({"split", "-b", "30M", Path("raw.img"), Path("letters.")});
  for (const char* name : {"zero.000", "one.001", "letters.aa"})
    ExpectReportsOfTheRawImage(name);
}

TEST_F(Containers, TenThousandPieces) {
  Disk disk(10000);
  for (u64 sector = 0; sector < 10000; ++sector)
    disk.At(sector).Le64(0, sector + 1);
  disk.Write(Path("raw.img"));
  std::ifstream raw(Path("raw.img"), std::ios::binary);
  std::array<char, 512> bytes{};
  for (int piece = 1; raw.read(bytes.data(), bytes.size()); ++piece) {
    std::string number = std::to_string(piece);
    number.insert(0, number.size() < 3 ? 3 - number.size() : 0, '0');
    Write("disk." + number, std::string(bytes.data(), bytes.size()));
  }
  const Outcome pieces = Run("disk.001", {"0", "9999"});
  const Outcome whole = Run("raw.img", {"0", "9999"});
  EXPECT_TRUE(SameText(pieces.out, whole.out));
  EXPECT_EQ(pieces.err, "");
}

TEST_F(Containers, PiecesThatCannotBeOne) {
  Write("fifo.001", std::string(512, 'a'));
  ASSERT_EQ(mkfifo(Path("fifo.002").c_str(), 0600), 0);
  ExpectRefused("fifo.001", "is an image in pieces, of which " + Path("fifo.002") + " is no regular file");
  Write("folder.001", std::string(512, 'a'));
  fs::create_directory(Path("folder.002"));
  ExpectRefused("folder.001",
                "is an image in pieces, of which " + Path("folder.002") + " is no regular file");
  Write("gap.001", std::string(512, 'a'));
  Write("gap.003", std::string(512, 'a'));
  ExpectRefused("gap.001", "is an image in pieces, of which " + Path("gap.002") + " is missing");
}

TEST_F(Containers, PieceAloneIsAnImageOfItsOwn) {
  fs::copy_file(Path("raw.img"), Path("alone.001"));
  ExpectReportsOfTheRawImage("alone.001");
}

// PATH@N: the container's own bytes.
TEST_F(Containers, NameWithASectorSizeOpensTheFileItself) {
  Convert("disk.qcow2", "qcow2");
  const Outcome outcome = RunProgram(Build::kInventedCode, {Path("disk.qcow2") + "@512", "0"});
  EXPECT_NE(outcome.out.find("0x000  51 46 49 FB "), std::string::npos);
  EXPECT_EQ(outcome.status, 0);
}

// What is inside a container's disk is not opened once more.
TEST_F(Containers, ContainerInAContainerIsOpenedOnce) {
  Convert("inner.qcow2", "qcow2");
  Make({"qemu-img", "convert", "-f", "raw", "-O", "vhdx", Path("inner.qcow2"), Path("outer.vhdx")});
  const Outcome outcome = Run("outer.vhdx", {"0"});
  EXPECT_NE(outcome.out.find("0x000  51 46 49 FB "), std::string::npos);
}

TEST_F(Containers, ImageWithAParentIsOpenedWithIt) {
  Convert("base.qcow2", "qcow2");
  Make({"qemu-img", "create", "-q", "-f", "qcow2", "-b", "base.qcow2", "-F", "qcow2", Path("child.qcow2")});
  ExpectReportsOfTheRawImage("child.qcow2");
  fs::remove(Path("base.qcow2"));
  ExpectRefused("child.qcow2", "is a QCOW image that rests on the image base.qcow2, which is missing");
}

TEST_F(Containers, ParentOfAnotherKindIsRefused) {
  Make({"qemu-img", "create", "-q", "-f", "qcow2", "-b", Path("raw.img"), "-F", "raw", Path("child.qcow2")});
  ExpectRefused("child.qcow2",
                "is a QCOW image that rests on the image " + Path("raw.img") +
                    ", which is damaged or of another kind: convert it with \"qemu-img convert -O raw\"");
}

TEST_F(Containers, ParentThatIsTheFileItselfIsRefused) {
  Convert("self.qcow2", "qcow2");
  Make({"qemu-img", "rebase", "-u", "-f", "qcow2", "-b", "self.qcow2", "-F", "qcow2", Path("self.qcow2")});
  ExpectRefused("self.qcow2", "is a QCOW image that rests on the image self.qcow2, which rests on itself");
}

TEST_F(Containers, KindsThatAreKnownAndNotReadAreNamed) {
  Convert("disk.vdi", "vdi");
  ExpectRefused(
      "disk.vdi",
      "is a VDI image, which this program does not read: convert it with \"qemu-img convert -O raw\"");
  Write("disk.xz", std::string("\xFD\x37zXZ\0more", 10));
  ExpectRefused("disk.xz", "is an xz file, which this program does not read: unpack it first");
  Write("disk.zip", "PK\x03\x04 and more");
  ExpectRefused("disk.zip", "is a zip file, which this program does not read: unpack it first");
  Write("disk.Ex01", std::string("EVF2\x0D\x0A\x81\0more", 12));
  ExpectRefused("disk.Ex01",
                "is an Ex01 (EWF2) image, which this program does not read: write it as a raw or an E01 "
                "image with the program that made it");
  Write("disk.aff", std::string("AFF10\x0D\x0A\0more", 12));
  ExpectRefused("disk.aff",
                "is an AFF image, which this program does not read: write it as a raw image with "
                "\"affconvert -r\"");
}

// A VHDX that claims 2^63 bytes: what it says is in its metadata, at 2 MiB by the format's own rule for
// QEMU's files.
TEST_F(Containers, SizeOf2To63BytesIsRefused) {
  Convert("huge.vhdx", "vhdx");
  std::fstream file(Path("huge.vhdx"), std::ios::binary | std::ios::in | std::ios::out);
  std::string bytes(8 << 20, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.clear();
  const u64 size = fs::file_size(Path("raw.img"));
  std::string stored(8, '\0');
  for (std::size_t i = 0; i < 8; ++i)
    stored[i] = static_cast<char>(size >> 8 * i);
  std::size_t found = 0;
  for (std::size_t at = bytes.find(stored); at != std::string::npos; at = bytes.find(stored, at + 1)) {
    file.seekp(static_cast<std::streamoff>(at));
    file.write("\0\0\0\0\0\0\0\x80", 8);
    ++found;
  }
  file.close();
  ASSERT_EQ(found, 1u);
  const Outcome outcome = Run("huge.vhdx");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive<disk> for reading, error 5\n");
}

// Without its library a container is not taken for a disk.
TEST_F(Containers, MissingLibraryIsNamed) {
  Convert("disk.qcow2", "qcow2");
  const Outcome outcome = RunChild([&] {
    Execute({"unshare", "--mount", "sh", "-c",
             "for f in /usr/lib/*/libqcow.so.1*; do mount --bind /dev/null $f; done; exec " +
                 NativeProgramPath(Build::kShipped) + " " + Path("disk.qcow2")});
  });
  if (outcome.err.starts_with("unshare:")) GTEST_SKIP() << outcome.err;
  EXPECT_EQ(outcome.err,
            "Global::Open: \\\\.\\PhysicalDrive" + Path("disk.qcow2") +
                " is a QCOW image, and libqcow.so.1, which reads it, is missing: install the package "
                "libqcow1, or convert it with \"qemu-img convert -O raw\"\n");
  EXPECT_EQ(outcome.status, 1);
}

// Two thirds of the child's clusters are its parent's: every sector of a range is the right one's.
TEST_F(Containers, ChildAndParentTakeTurns) {
  Disk disk(8192);
  for (u64 sector = 0; sector < 8192; ++sector)
    disk.At(sector).Le64(0, sector + 1);
  disk.Write(Path("raw.img"));
  Convert("base.qcow2", "qcow2", {"-o", "cluster_size=4096"});
  Make({"qemu-img", "create", "-q", "-f", "qcow2", "-o", "cluster_size=512", "-b", "base.qcow2", "-F",
        "qcow2", Path("child.qcow2")});
  std::vector<std::string> words = {"qemu-io", "-f", "qcow2"};
  for (u64 sector = 0; sector < 8192; sector += 96) {
    words.insert(words.end(), {"-c", "write -P 17 " + std::to_string(sector * 512) + " 16384"});
    for (u64 written = sector; written < std::min<u64>(sector + 32, 8192); ++written)
      disk.At(written).Fill(0, 512, 17);
  }
  words.push_back(Path("child.qcow2"));
  Make(words);
  disk.Write(Path("raw.img"));
  const Outcome child = Run("child.qcow2", {"0", "8191"});
  EXPECT_TRUE(SameText(child.out, Run("raw.img", {"0", "8191"}).out));
  EXPECT_EQ(child.err, "");
}

// Its library takes them for what they refer to.
TEST_F(Containers, ZeroedClustersOfQcowAreRefused) {
  Convert("zeroed.qcow2", "qcow2");
  Make({"qemu-io", "-f", "qcow2", "-c", "write -P 1 0 256k", "-c", "write -z 64k 64k", Path("zeroed.qcow2")});
  ExpectRefused("zeroed.qcow2",
                "is a QCOW image that has zeroed clusters, which its library does not know: convert it with "
                "\"qemu-img convert -O raw\"");
}

TEST_F(Containers, EncryptedQcowIsRefused) {
  for (const char* const format : {"aes", "luks"}) {
    const std::string name = std::string(format) + ".qcow2";
    Convert(name, "qcow2",
            {"--object", "secret,id=s,data=secret", "-o",
             std::string("encrypt.key-secret=s,encrypt.format=") + format});
    ExpectRefused(
        name,
        "is a QCOW image that is encrypted: convert it with \"qemu-img convert -O raw\", which takes "
        "its key");
  }
}

// Behind its end the library finds what its memory held before.
TEST_F(Containers, CutQcowIsRefused) {
  const std::string words = "is a QCOW image that is cut: some of its clusters lie behind its end";
  Convert("plain.qcow2", "qcow2");
  Convert("compressed.qcow2", "qcow2", {"-c"});
  for (const char* const name : {"plain.qcow2", "compressed.qcow2"}) {
    fs::resize_file(Path(name), fs::file_size(Path(name)) - 512);
    ExpectRefused(name, words);
  }
}

// A disk that ends inside of a cluster needs no more of it than there is of the disk.
TEST_F(Containers, QcowOfADiskThatEndsInsideOfACluster) {
  fs::resize_file(Path("raw.img"), u64{1000} * 512);
  Convert("odd.qcow2", "qcow2");
  const Outcome outcome = Run("odd.qcow2", {"0", "999"});
  const Outcome raw = Run("raw.img", {"0", "999"});
  EXPECT_TRUE(SameText(outcome.out, raw.out));
  EXPECT_EQ(outcome.err, raw.err);
}

TEST_F(Containers, ChildOfVersion1OfQcowIsRefused) {
  Convert("base.qcow", "qcow");
  ExpectReportsOfTheRawImage("base.qcow");
  Make({"qemu-img", "create", "-q", "-f", "qcow", "-b", "base.qcow", "-F", "qcow", Path("child.qcow")});
  ExpectRefused(
      "child.qcow",
      "is a QCOW image that rests on another image, and is of version 1, of which its library reads "
      "none that do: convert it with \"qemu-img convert -O raw\"");
}

TEST_F(Containers, ZeroedGrainsOfVmdkAreRefused) {
  for (const char* const subformat : {"monolithicSparse", "twoGbMaxExtentSparse"}) {
    Convert("zeroed.vmdk", "vmdk", {"-o", std::string("zeroed_grain=on,subformat=") + subformat});
    ExpectReportsOfTheRawImage("zeroed.vmdk");
    Make({"qemu-io", "-f", "vmdk", "-c", "write -z 0 64k", Path("zeroed.vmdk")});
    ExpectRefused("zeroed.vmdk",
                  "is a VMDK image that has zeroed grains, which its library does not know: convert it with "
                  "\"qemu-img convert -O raw\"");
  }
}

// Extents of a descriptor that its library reads from elsewhere, or not at all.
TEST_F(Containers, VmdkExtentsThatAreNotWholeFilesAreRefused) {
  const std::string head =
      "# Disk DescriptorFile\nversion=1\nCID=12345678\nparentCID=ffffffff\ncreateType=\"custom\"\n";
  Write("extent.bin", std::string(std::size_t{4096} * 512, 'x'));
  Write("inside.vmdk", head + "RW 2048 FLAT \"extent.bin\" 1024\n");
  ExpectRefused("inside.vmdk",
                "is a VMDK image that has an extent that begins inside of its file, which its library reads "
                "from another place: convert it with \"qemu-img convert -O raw\"");
  Write("zero.vmdk", head + "RW 2048 FLAT \"extent.bin\" 0\nRW 63 ZERO\n");
  ExpectRefused("zero.vmdk",
                "is a VMDK image that has extents without a file, which its library does not know: convert "
                "it with \"qemu-img convert -O raw\"");
}

TEST_F(Containers, PartOfAVmdkWithoutItsDescriptorIsRefused) {
  Convert("pieces.vmdk", "vmdk", {"-o", "subformat=twoGbMaxExtentSparse"});
  ExpectRefused("pieces-s001.vmdk",
                "is a VMDK image that has no descriptor, being a part of one: name the file that has it");
}

TEST_F(Containers, ChildLargerThanItsParentIsRefused) {
  Convert("base.qcow2", "qcow2");
  Make({"qemu-img", "create", "-q", "-f", "qcow2", "-b", "base.qcow2", "-F", "qcow2", Path("child.qcow2"),
        "200M"});
  ExpectRefused("child.qcow2",
                "is a QCOW image that is larger than the image base.qcow2 that it rests on: convert it with "
                "\"qemu-img convert -O raw\"");
}

TEST_F(Containers, LinkToAFirstPieceLeadsToTheOthers) {
  Make({"split", "-b", "30M", Path("raw.img"), Path("letters.")});
  fs::create_directory(Path("elsewhere"));
  fs::create_symlink(Path("letters.aa"), Path("elsewhere/link.001"));
  ExpectReportsOfTheRawImage("elsewhere/link.001");
}

// An image over two drives, brought together by links.
TEST_F(Containers, LinksToPiecesStandSideBySide) {
  Make({"split", "-b", "60M", "--numeric-suffixes=1", "-a", "3", Path("raw.img"), Path("disk.")});
  for (const char* const number : {"001", "002"}) {
    fs::create_directory(Path(number));
    fs::rename(Path(std::string("disk.") + number), Path(std::string(number) + "/disk." + number));
    fs::create_symlink(Path(std::string(number) + "/disk." + number), Path(std::string("disk.") + number));
  }
  ExpectReportsOfTheRawImage("disk.001");
  ExpectRefused("disk.002",
                "is a further piece of an image, behind " + Path("disk.001") + ": name the first one");
}

// Where no first piece is, an ending counts days, machines, or nothing.
TEST_F(Containers, ImagesNamedByDayAreNoPieces) {
  for (const char* const name : {"disk.20261121", "disk.20261122", "vm.100", "vm.101", "old.dc", "old.dd"})
    fs::copy_file(Path("raw.img"), Path(name));
  for (const char* const name : {"disk.20261122", "vm.101", "old.dd"})
    ExpectReportsOfTheRawImage(name);
}

TEST_F(Containers, PieceBehindAnotherIsRefused) {
  Make({"split", "-b", "30M", "-d", "-a", "3", Path("raw.img"), Path("zero.")});
  Make({"split", "-b", "30M", Path("raw.img"), Path("letters.")});
  for (const auto& [piece, before] :
       {std::pair{"zero.001", "zero.000"}, {"zero.003", "zero.002"}, {"letters.ab", "letters.aa"}}) {
    ExpectRefused(piece, "is a further piece of an image, behind " + Path(before) + ": name the first one");
  }
}

// A section that is left out would move all that follows it.
TEST_F(Containers, EwfWithADamagedSectionIsRefused) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-t", Path("evidence"), Path("raw.img")});
  std::string bytes = ReadFile(Path("evidence.E01"));
  const std::size_t table = bytes.find(std::string("table\0", 6));
  ASSERT_NE(table, std::string::npos);
  bytes[table + 24] = static_cast<char>(bytes[table + 24] ^ 1);  // the section's size
  Write("evidence.E01", bytes);
  const Outcome outcome = Run("evidence.E01");
  EXPECT_TRUE(outcome.err.starts_with("Global::Open: ")) << outcome.err;
  EXPECT_EQ(outcome.status, 1);
}

TEST_F(Containers, EwfSegmentThatIsAFifoIsRefused) {
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "none", "-S", "33554432", "-t", Path("evidence"),
        Path("raw.img")});
  fs::remove(Path("evidence.E02"));
  ASSERT_EQ(mkfifo(Path("evidence.E02").c_str(), 0600), 0);
  const Outcome outcome = Run("evidence.E01");
  EXPECT_NE(outcome.err.find("has a segment that is no regular file: "), std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.status, 1);
}

TEST_F(Containers, RenamedVmdkOfOneFileIsReadItself) {
  Convert("old.vmdk", "vmdk");
  fs::rename(Path("old.vmdk"), Path("new.vmdk"));
  ExpectReportsOfTheRawImage("new.vmdk");
  Convert("stream.vmdk", "vmdk", {"-o", "subformat=streamOptimized"});
  fs::rename(Path("stream.vmdk"), Path("renamed.vmdk"));
  ExpectReportsOfTheRawImage("renamed.vmdk");
}

// What has the name that a copy still holds is not the copy's content.
TEST_F(Containers, CopyOfAVmdkIsReadItself) {
  Convert("original.vmdk", "vmdk");
  fs::copy_file(Path("original.vmdk"), Path("copy.vmdk"));
  Disk(2048).Write(Path("other.img"));
  Make({"qemu-img", "convert", "-O", "vmdk", Path("other.img"), Path("original.vmdk")});
  ExpectReportsOfTheRawImage("copy.vmdk");
}

TEST_F(Containers, VmdkWithoutOneOfItsFilesIsRefused) {
  Convert("flat.vmdk", "vmdk", {"-o", "subformat=monolithicFlat"});
  fs::remove(Path("flat-flat.vmdk"));
  ExpectRefused("flat.vmdk", "is a VMDK image that names the file flat-flat.vmdk, which is missing");
}

// Nobody may ever write to it: opening it would wait.
TEST_F(Containers, VmdkThatNamesAFifoIsRefusedAtOnce) {
  Convert("flat.vmdk", "vmdk", {"-o", "subformat=monolithicFlat"});
  fs::remove(Path("flat-flat.vmdk"));
  ASSERT_EQ(mkfifo(Path("flat-flat.vmdk").c_str(), 0600), 0);
  const auto start = std::chrono::steady_clock::now();
  ExpectRefused("flat.vmdk", "is a VMDK image that names the file flat-flat.vmdk, which is no regular file");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Cut at many places, and with many of its bytes changed: no crash, no end that is not the program's own.
TEST_F(Containers, DamagedOnesEndInMessages) {
  Disk small(2048);
  small.At(0).Text(0, "start");
  small.At(2047).Text(0, "end");
  small.Write(Path("raw.img"));
  Convert("a.qcow2", "qcow2", {"-c"});
  Convert("a.vhd", "vpc");
  Convert("a.vhdx", "vhdx");
  Convert("a.vmdk", "vmdk");
  Make({"ewfacquire", "-q", "-u", "-f", "encase6", "-c", "fast", "-t", Path("a"), Path("raw.img")});
  std::mt19937 random(2026);
  for (const std::string name : {"a.qcow2", "a.vhd", "a.vhdx", "a.vmdk", "a.E01"}) {
    const std::string whole = ReadFile(Path(name));
    const std::size_t head = std::min<std::size_t>(whole.size(), 65536);  // where the metadata is
    for (int i = 0; i < 60; ++i) {
      std::string bytes = whole;
      if (i % 3 == 0) bytes.resize(random() % bytes.size());
      for (int flips = static_cast<int>(random() % 6); flips >= 0 && !bytes.empty(); --flips) {
        const std::size_t room = std::min(bytes.size(), random() % 4 == 0 ? bytes.size() : head);
        char& byte = bytes[random() % room];
        byte = static_cast<char>(byte ^ (1 << random() % 8));
      }
      Write("damaged" + name.substr(1), bytes);
      const Outcome outcome = Run("damaged" + name.substr(1), {"0", "100"});
      ASSERT_TRUE(outcome.status == 0 || outcome.status == 1) << name << " " << i << ": " << outcome.status;
      if (outcome.status == 1) {
        EXPECT_TRUE(outcome.err.starts_with("Global::Open: ") || outcome.err.starts_with("There aren't"))
            << outcome.err;
      }
    }
  }
}

// Whatever a container is made of is only ever opened for reading.
TEST_F(Containers, AreOnlyEverOpenedForReading) {
  Convert("a.qcow2", "qcow2");
  Convert("a.vhd", "vpc");
  Convert("a.vhdx", "vhdx");
  Convert("a.vmdk", "vmdk");
  Make({"ewfacquire", "-q", "-u", "-t", Path("a"), Path("raw.img")});
  Make({"split", "-b", "30M", Path("raw.img"), Path("a.")});
  for (const char* name : {"a.qcow2", "a.vhd", "a.vhdx", "a.vmdk", "a.E01", "a.aa"}) {
    SCOPED_TRACE(name);
    const Trace trace = TraceProgram({Path(name)});
    EXPECT_EQ(trace.outcome.status, 0);
    EXPECT_GE(OpensOf(trace, folder_).size(), 2u);
    EXPECT_EQ(Changes(trace), std::vector<std::string>{});
  }
}

}  // namespace
}  // namespace trovisk::test
