// Image files as the shipped executable opens them: their reports against those of this system's program, and
// what stays as it is without them.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/disks/gpt.h"
#include "tests/disks/mbr.h"
#include "tests/disks/samples.h"
#include "tests/support/expected.h"
#include "tests/support/wine.h"
#include "tests/windows/raw_disk.h"

namespace trovisk::test {
namespace {

namespace fs = std::filesystem;

const std::string kBanner = "Trovisk version 1.4 built <date>\n\n";

// What is shown of the argument is not compared: the code page of Windows does not have every character, and
// the C locale of this system has ASCII alone.
Outcome Comparable(Outcome outcome) {
  static const std::regex shown("PhysicalDrive[^\n]*( \\[ whole disk \\]| sectors? [^\n]*)\n");
  outcome.out = std::regex_replace(WithoutDate(outcome.out), shown, "PhysicalDrive<disk>$1\n");
  return outcome;
}

// The program for Windows, with arguments as they are given there.
Outcome RunWindows(const std::vector<std::string>& arguments) {
  return Comparable(RunWindowsProgram(WindowsProgram("trovisk_invented_code.exe"), arguments, {}));
}

Outcome RunNative(const std::vector<std::string>& arguments) {
  return Comparable(RunCommand(NativeProgramPath(Build::kInventedCode), arguments, {}));
}

void ExpectTheSameReport(const std::vector<std::string>& windows, const std::vector<std::string>& native) {
  const Outcome expected = RunNative(native);
  const Outcome outcome = RunWindows(windows);
  EXPECT_TRUE(expected.out.starts_with(kBanner + "Last sector on disk is ")) << native[0];
  EXPECT_TRUE(SameText(outcome.out, expected.out)) << windows[0];
  EXPECT_EQ(outcome.err, expected.err) << windows[0];
  EXPECT_EQ(outcome.status, expected.status) << windows[0];
}

// An image is named by its path on both systems.
void ExpectTheSameWholeReport(const std::string& path, const std::string& suffix = "") {
  ExpectTheSameReport({WindowsPath(path) + suffix}, {path + suffix});
}

void ExpectLastSector(const std::string& argument, const std::string& last) {
  const std::string out = RunWindows({argument, "0"}).out;
  const std::string start = kBanner + "Last sector on disk is " + last + "\n";
  EXPECT_EQ(out.substr(0, start.size()), start) << argument;
}

// What is said of the drive that the argument does not name.
void ExpectNoDrive(const std::string& argument, const std::string& error) {
  const Outcome outcome = RunWindows({argument});
  EXPECT_EQ(outcome.out, kBanner);
  EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive" + argument +
                             " for reading, error " + error + "\n");
  EXPECT_EQ(outcome.status, 1);
}

void ExpectRefused(const std::string& argument, const std::string& words) {
  const Outcome outcome = RunWindows({argument});
  EXPECT_EQ(outcome.out, kBanner);
  EXPECT_EQ(outcome.err, "Global::Open: \\\\.\\PhysicalDrive" + argument + " " + words + "\n");
  EXPECT_EQ(outcome.status, 1);
}

std::string WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::string WriteScratch(const std::string& name, const std::string& bytes) {
  return WriteFile(ScratchPath(name), bytes);
}

std::string WriteDisk(const std::string& name, const Disk& disk) {
  std::string path = ScratchPath(name);
  disk.Write(path);
  return path;
}

std::string Folder(const std::string& name) {
  std::string path = ScratchPath(name);
  fs::create_directories(path);
  return path;
}

// Makes a folder the current one for as long as the object lives.
class CurrentFolder {
 public:
  explicit CurrentFolder(const std::string& folder) : before_(fs::current_path()) {
    fs::current_path(folder);
  }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() { fs::current_path(before_); }

 private:
  fs::path before_;
};

// Sectors that tell where they are from.
std::string Numbered(unsigned first, unsigned count) {
  std::string bytes;
  for (unsigned sector = first; sector < first + count; ++sector) {
    std::string text = "sector " + std::to_string(sector);
    text.resize(512);
    bytes += text;
  }
  return bytes;
}

// GENERIC_READ, all of FILE_SHARE, OPEN_EXISTING; the drive first, and the file in the form that knows no
// limit of length.
TEST(WindowsImageFile, IsOpenedForReadingAloneBehindTheDrive) {
  const std::string path = WindowsPath(WriteScratch("calls.img", Numbered(0, 4)));
  const RawDiskRun run = RunUnderRawDiskRules(WindowsProgram("trovisk.exe"), {path, "2"}, "");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_TRUE(SameText(
      run.calls, "CreateFileW \\\\.\\PhysicalDrive" + path +
                     " access 0x80000000 share 0x3 security none disposition 0x3 flags 0x0 template none\n"
                     "CreateFileW \\\\?\\" +
                     path +
                     " access 0x80000000 share 0x7 security none disposition 0x3 flags 0x0 template none\n"));
}

// A drive that is there but does not open is no reason to look for a file.
TEST(WindowsImageFile, IsNotLookedForWhereTheDriveRefuses) {
  const std::string path = WindowsPath(WriteScratch("refused.img", Numbered(0, 4)));
  for (const char* error : {"5", "32", "87"}) {
    const RawDiskRun run =
        RunUnderRawDiskRules(WindowsProgram("trovisk.exe"), {path}, std::string("open=") + error);
    EXPECT_EQ(run.outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive" + path +
                                   " for reading, error " + error + "\n");
    EXPECT_EQ(run.calls.find("\\\\?\\"), std::string::npos) << run.calls;
  }
}

// The numbers of a drive that does not exist, or whose path is none.
TEST(WindowsImageFile, IsLookedForWhereThereIsNoSuchDrive) {
  const std::string path = WindowsPath(WriteScratch("looked_for.img", Numbered(0, 4)));
  for (const char* error : {"2", "3", "123", "206"}) {
    const RawDiskRun run =
        RunUnderRawDiskRules(WindowsProgram("trovisk.exe"), {path, "1"}, std::string("open=") + error);
    EXPECT_EQ(run.outcome.err, "");
    EXPECT_EQ(run.outcome.status, 0);
  }
}

TEST(WindowsImageFile, ReportsOfTheSampleDisks) {
  ExpectTheSameWholeReport(WriteDisk("gpt.img", GptSample()));
  ExpectTheSameWholeReport(WriteDisk("mbr.img", MbrSample()));
  ExpectTheSameWholeReport(WriteDisk("dynamic.img", DynamicSample()));
}

TEST(WindowsImageFile, ReportsOf4096ByteSectors) {
  ExpectTheSameWholeReport(WriteDisk("gpt4096.img", GptSample(4096)));
  ExpectTheSameWholeReport(WriteDisk("mbr4096.img", MbrSample(4096)), "@4096");
  ExpectTheSameWholeReport(WriteDisk("dynamic4096.img", DynamicSample(4096)), "@4096");
}

TEST(WindowsImageFile, ReportsOfSectorsAndRanges) {
  const std::string path = WriteDisk("ranges.img", GptSample(4096));
  ExpectTheSameReport({WindowsPath(path), "1"}, {path, "1"});
  ExpectTheSameReport({WindowsPath(path), "0", "40"}, {path, "0", "40"});
  ExpectTheSameReport({WindowsPath(path) + "@512", "0", "100"}, {path + "@512", "0", "100"});
  ExpectTheSameReport({WindowsPath(path), "99999999"}, {path, "99999999"});
}

// Positions of more than 32 bits.
TEST(WindowsImageFile, BeyondFourGiB) {
  const std::string path = WriteScratch("large.img", Numbered(0, 1));
  constexpr u64 kSector = 9'000'000;
  fs::resize_file(path, kSector * 512);
  std::ofstream(path, std::ios::binary | std::ios::app) << Numbered(kSector, 2);
  ExpectTheSameReport({WindowsPath(path), "8999999", "9000001"}, {path, "8999999", "9000001"});
  EXPECT_NE(RunWindows({WindowsPath(path), "9000001"}).out.find("sector 9000001"), std::string::npos);
}

// An offset that no position can have; the number of the error is the system's.
TEST(WindowsImageFile, BeyondTheLargestPosition) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 18446744073709551614U, .entryCount = 0});
  const Outcome outcome = RunWindows({WindowsPath(WriteDisk("beyond.img", disk))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      outcome.err,
      "Global::Seek failed to seek to sector 36028797018963965, error 87\nFailed to seek to sector 2\n");
}

TEST(WindowsImageFile, SectorSizeOfTheName) {
  const std::string path = WriteScratch("sized.img", std::string(1048576, '\0'));
  ExpectLastSector(WindowsPath(path), "2047");
  ExpectLastSector(WindowsPath(path) + "@1", "1048575");
  ExpectLastSector(WindowsPath(path) + "@520", "2015");
  ExpectLastSector(WindowsPath(path) + "@1048576", "0");
  for (const char* suffix : {"@0", "@1048577", "@", "@x", "@512x", "@-512"}) {
    EXPECT_EQ(RunWindows({WindowsPath(path) + suffix}).status, 1) << suffix;
  }
}

// A file of the whole name comes first, and "@512" is then part of the name, not a size.
TEST(WindowsImageFile, WhoseNameHoldsAnAtSign) {
  WriteScratch("named", std::string(65536, '\0'));
  const std::string path = WindowsPath(WriteScratch("named@512", std::string(16384, '\0')));
  ExpectLastSector(path, "31");
  ExpectLastSector(path + "@1024", "15");
}

// Western, Cyrillic, Chinese, beyond 16 bits; no code page has them all.
TEST(WindowsImageFile, NamesOutsideAscii) {
  for (const char* name : {"\xC3\xA4\xC3\xB6\xC3\xBC \xC3\x9F.img", "\xD0\xB4\xD0\xB8\xD1\x81\xD0\xBA.img",
                           "\xE7\xA3\x81\xE7\x9B\x98.img", "\xF0\x9F\x92\xBE.img"}) {
    const std::string path = WriteScratch(name, Numbered(0, 8));
    ExpectTheSameReport({WindowsPath(path), "0", "7"}, {path, "0", "7"});
    ExpectTheSameReport({WindowsPath(path) + "@2048", "1"}, {path + "@2048", "1"});
  }
}

// What is shown is what is shown of every argument: the bytes of the code page (1252 here).
TEST(WindowsImageFile, NameIsShownInTheCodePage) {
  const CurrentFolder folder(Folder("shown"));
  WriteFile("caf\xC3\xA9-\xE6\x97\xA5.img", Numbered(0, 2));
  const Outcome outcome =
      RunWindowsProgram(WindowsProgram("trovisk.exe"), {"caf\xC3\xA9-\xE6\x97\xA5.img", "1"}, {});
  EXPECT_NE(outcome.out.find("Reading \\\\.\\PhysicalDrivecaf\xE9-?.img sector 1\n"), std::string::npos)
      << outcome.out;
  EXPECT_EQ(outcome.status, 0);
}

TEST(WindowsImageFile, RelativePathsAndForwardSlashes) {
  const std::string top = Folder("relative/below/deep");
  const std::string path = WriteScratch("relative/below/my disk.img", Numbered(0, 4));
  const CurrentFolder folder(ScratchPath("relative/below"));
  std::string slashes = WindowsPath(path);
  ReplaceAll(slashes, "\\", "/");
  for (const std::string& argument :
       {std::string("my disk.img"), std::string(".\\my disk.img"), std::string("./my disk.img"),
        std::string("..\\below\\my disk.img"), std::string("deep/../my disk.img"), slashes,
        slashes.substr(2)}) {  // the last one from the root of the current drive
    ExpectTheSameReport({argument, "0", "3"}, {path, "0", "3"});
  }
}

TEST(WindowsImageFile, PathsLongerThan260Characters) {
  std::string name = "long";
  for (int i = 0; i < 6; ++i)
    name += "/" + std::string(60, static_cast<char>('a' + i));
  const std::string top = Folder(name);
  const std::string path = WriteFile(top + "/disk.img", Numbered(0, 4));
  ASSERT_GT(WindowsPath(path).size(), 360U);
  ExpectTheSameReport({WindowsPath(path), "0", "3"}, {path, "0", "3"});
  ExpectTheSameReport({WindowsPath(path) + "@1024", "1"}, {path + "@1024", "1"});
  std::string slashes = WindowsPath(path);
  ReplaceAll(slashes, "\\", "/");
  ExpectTheSameReport({slashes, "0", "3"}, {path, "0", "3"});
  ExpectTheSameReport({"\\\\?\\" + WindowsPath(path), "0", "3"}, {path, "0", "3"});
  const CurrentFolder folder(ScratchPath("long"));
  std::string relative = path.substr(ScratchPath("long").size() + 1);
  ReplaceAll(relative, "/", "\\");
  ASSERT_GT(relative.size(), 260U);
  ExpectTheSameReport({relative, "0", "3"}, {path, "0", "3"});
  const RawDiskRun run = RunUnderRawDiskRules(WindowsProgram("trovisk.exe"), {relative, "0"}, "");
  EXPECT_NE(run.calls.find("CreateFileW \\\\?\\" + WindowsPath(path) + " "), std::string::npos) << run.calls;
}

// The name alone is as long as a name can be.
TEST(WindowsImageFile, LongestName) {
  const std::string path = WriteScratch(std::string(251, 'n') + ".img", Numbered(0, 8));
  ExpectTheSameReport({WindowsPath(path), "0", "7"}, {path, "0", "7"});
  ExpectTheSameReport({WindowsPath(path) + "@1024", "1"}, {path + "@1024", "1"});
}

TEST(WindowsImageFile, ThatIsNotThere) {
  const CurrentFolder folder(Folder("nothing"));
  ExpectNoDrive("missing.img", "2");
  ExpectNoDrive("missing.img@512", "2");
  ExpectNoDrive("", "2");
  ExpectNoDrive("no\\such\\folder.img", "3");
  ExpectNoDrive("Z:\\no\\such\\disk.img", "3");
  ExpectNoDrive("disk?.img", "123");
}

// What opens without being a file of a disk is none.
TEST(WindowsImageFile, ThatIsNoFile) {
  const CurrentFolder folder(Folder("folders"));
  Folder("folders/one");
  ExpectNoDrive("one", "2");
  ExpectNoDrive("one@512", "2");
  ExpectNoDrive(".", "2");
  ExpectNoDrive("NUL", "2");
  ExpectNoDrive("CON", "2");
}

TEST(WindowsImageFile, OfDigitsAloneIsADrive) {
  const CurrentFolder folder(Folder("digits"));
  WriteFile("7", Numbered(0, 4));
  WriteFile("4000000000", Numbered(0, 4));
  ExpectNoDrive("7", "2");
  ExpectNoDrive("4000000000", "2");
  ExpectLastSector(".\\7", "3");
  ExpectLastSector("7@1024", "1");
}

TEST(WindowsImageFile, OfNoWholeSector) {
  const std::string empty = WriteScratch("empty.img", "");
  ExpectTheSameWholeReport(empty);
  ExpectTheSameWholeReport(empty, "@4096");
  const std::string small = WriteScratch("small.img", std::string(100, 'x'));
  ExpectTheSameWholeReport(small);
  ExpectTheSameReport({WindowsPath(small), "0"}, {small, "0"});
  const std::string torn = WriteScratch("torn.img", Numbered(0, 3) + std::string(511, 'x'));
  ExpectTheSameReport({WindowsPath(torn), "0", "2"}, {torn, "0", "2"});
  ExpectTheSameReport({WindowsPath(torn), "3"}, {torn, "3"});
}

TEST(WindowsImageFile, OfAContainerIsRefused) {
  const CurrentFolder folder(Folder("containers"));
  const std::string rest = std::string(4096, '\0');
  const std::string convert = "which this program does not read: convert it with \"qemu-img convert -O raw\"";
  WriteFile("disk.vhdx", "vhdxfile" + rest);
  WriteFile("disk.qcow2", "QFI\xFB" + rest);
  WriteFile("disk.E01", std::string("EVF\x09\x0D\x0A\xFF\x00", 8) + rest);
  WriteFile("disk.img.xz", std::string("\xFD\x37zXZ\x00", 6) + rest);
  ExpectRefused("disk.vhdx", "is a VHDX image, " + convert);
  ExpectRefused("disk.qcow2", "is a QCOW image, " + convert);
  ExpectRefused("disk.E01",
                "is an E01 (EWF) image, which this program does not read: write it as a raw image with "
                "\"ewfexport\"");
  ExpectRefused("disk.img.xz", "is an xz file, which this program does not read: unpack it first");
}

TEST(WindowsImageFile, OfAContainerShowsItsOwnBytesWhereTheSectorSizeIsSaid) {
  const std::string path = WriteScratch("own.vhdx", "vhdxfile" + Numbered(0, 4));
  ExpectTheSameReport({WindowsPath(path) + "@512", "0", "3"}, {path + "@512", "0", "3"});
}

// The disk's bytes and a footer, big-endian, behind them.
TEST(WindowsImageFile, OfAFixedVhdIsReadWithoutItsFooter) {
  std::string footer = "conectix";
  footer.resize(512);
  footer[0x30 + 6] = 8;  // 2048 bytes
  unsigned sum = 0;
  for (const char byte : footer)
    sum += static_cast<unsigned char>(byte);
  for (std::size_t i = 0; i < 4; ++i)
    footer[0x40 + i] = static_cast<char>(~sum >> (24 - 8 * i));
  const std::string path = WriteScratch("fixed.vhd", Numbered(0, 4) + footer);
  ExpectLastSector(WindowsPath(path), "3");
  ExpectLastSector(WindowsPath(path) + "@512", "4");
  ExpectTheSameReport({WindowsPath(path), "0", "3"}, {path, "0", "3"});
}

TEST(WindowsImageFile, InPieces) {
  for (const char* name : {"pieces.img", "\xD0\xB4\xD0\xB8\xD1\x81\xD0\xBA \xE7\xA3\x81"}) {
    const std::string path = ScratchPath(name);
    WriteFile(path + ".001", Numbered(0, 3));
    WriteFile(path + ".002", Numbered(3, 3));
    WriteFile(path + ".003", Numbered(6, 1).substr(0, 100));
    WriteFile(path + ".004", Numbered(6, 2).substr(100));
    WriteFile(path, Numbered(0, 8));
    ExpectTheSameReport({WindowsPath(path) + ".001", "0", "7"}, {path, "0", "7"});
    ExpectTheSameReport({WindowsPath(path) + ".001", "0", "7"}, {path + ".001", "0", "7"});
    ExpectLastSector(WindowsPath(path) + ".001@512", "2");
    ExpectLastSector(WindowsPath(path) + ".002@512", "2");
  }
}

TEST(WindowsImageFile, InPiecesOfLetters) {
  const CurrentFolder folder(Folder("letters"));
  WriteFile("x.aa", Numbered(0, 2));
  WriteFile("x.ab", Numbered(2, 2));
  ExpectLastSector("x.aa", "3");
  ExpectTheSameReport({"x.aa", "0", "3"}, {ScratchPath("letters/x.aa"), "0", "3"});
  ExpectRefused("x.ab", "is a further piece of an image, behind x.aa: name the first one");
}

TEST(WindowsImageFile, InPiecesOfWhichOneIsMissing) {
  const CurrentFolder folder(Folder("missing"));
  WriteFile("disk.001", Numbered(0, 2));
  WriteFile("disk.003", Numbered(4, 2));
  ExpectRefused("disk.001", "is an image in pieces, of which disk.002 is missing");
  fs::create_directory("disk.002");
  ExpectRefused("disk.001", "is an image in pieces, of which disk.002 is no regular file");
}

TEST(WindowsImageFile, InPiecesWithALongPath) {
  std::string name = "deep";
  for (int i = 0; i < 5; ++i)
    name += "/" + std::string(60, static_cast<char>('p' + i));
  const std::string path = Folder(name) + "/disk.";
  WriteFile(path + "000", Numbered(0, 2));
  WriteFile(path + "001", Numbered(2, 2));
  ExpectLastSector(WindowsPath(path) + "000", "3");
}

}  // namespace
}  // namespace trovisk::test
