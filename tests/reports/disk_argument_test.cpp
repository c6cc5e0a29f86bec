// The disk argument away from Windows: numbers, paths, sector sizes, and what is no disk.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

const std::string kBanner = "Trovisk version 1.4 built <date>\n\n";

Outcome RunShipped(const std::vector<std::string>& arguments) {
  Outcome outcome = RunProgram(Build::kShipped, arguments);
  outcome.out = WithoutDate(outcome.out);
  return outcome;
}

void ExpectOpenFails(const std::string& argument, int error, const std::string& shown) {
  const Outcome outcome = RunShipped({argument});
  EXPECT_EQ(outcome.out, kBanner);
  EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive" + shown + " for reading, error " +
                             std::to_string(error) + "\n");
  EXPECT_EQ(outcome.status, 1);
}

void ExpectOpenFails(const std::string& argument, int error) {
  ExpectOpenFails(argument, error, argument);
}

void ExpectGeometryFails(const std::string& argument, int error) {
  const Outcome outcome = RunShipped({argument});
  EXPECT_EQ(outcome.out, kBanner);
  EXPECT_EQ(outcome.err, "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrive" + argument +
                             " IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error " + std::to_string(error) + "\n");
  EXPECT_EQ(outcome.status, 1);
}

// So many bytes, "EFI PART" at each of the offsets.
std::string WriteImage(const std::string& name, std::size_t bytes,
                       const std::vector<std::size_t>& signatures = {}) {
  std::string image(bytes, '\0');
  for (const std::size_t offset : signatures)
    image.replace(offset, 8, "EFI PART");
  std::string path = ScratchPath(name);
  std::ofstream(path, std::ios::binary) << image;
  return path;
}

void ExpectLastSector(const std::string& argument, const std::string& last) {
  const std::string out = RunShipped({argument, "0"}).out;
  const std::string start = kBanner + "Last sector on disk is " + last + "\n";
  EXPECT_EQ(out.substr(0, start.size()), start) << argument;
}

TEST(DiskArgument, ThatDoesNotExist) {
  ExpectOpenFails("abc", ENOENT);
  ExpectOpenFails("/no/such/folder/disk.img", ENOENT);
  ExpectOpenFails("", ENOENT);
  ExpectOpenFails(" 0", ENOENT);
  ExpectOpenFails("-1", ENOENT);
  ExpectOpenFails("0x0", ENOENT);
  ExpectOpenFails(WriteImage("file", 512) + "/below", ENOTDIR);
}

TEST(DiskArgument, NumberBeyondTheDisksOfTheMachine) {
  ExpectOpenFails("99999", ENOENT);
  ExpectOpenFails("18446744073709551615", ENOENT);
  ExpectOpenFails("99999999999999999999999999999999999999", ENOENT);
}

// Digits name a disk, never a file of that name in the current folder.
TEST(DiskArgument, DigitsAreNoPath) {
  const std::string before = std::filesystem::current_path();
  WriteImage("99998", 512);
  std::filesystem::current_path(std::filesystem::path(ScratchPath("x")).parent_path());
  ExpectOpenFails("99998", ENOENT);
  ExpectLastSector("./99998", "0");
  std::filesystem::current_path(before);
}

TEST(DiskArgument, DirectoryHasNoGeometry) {
  const std::string path = ScratchPath("folder");
  std::filesystem::create_directory(path);
  ExpectGeometryFails(path, ENOTTY);
}

// Opened without waiting for a writer.
TEST(DiskArgument, FifoHasNoGeometry) {
  const std::string path = ScratchPath("fifo");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  ExpectGeometryFails(path, ENOTTY);
}

TEST(DiskArgument, SocketHasNoGeometry) {
  const std::string path = ScratchPath("socket");
  const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.c_str(), path.size());
  ASSERT_EQ(bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ExpectGeometryFails(path, EBADF);
  close(listening);
}

TEST(DiskArgument, CharacterDeviceHasNoGeometry) {
  ExpectGeometryFails("/dev/null", ENOTTY);
  ExpectGeometryFails("/dev/zero", ENOTTY);
}

TEST(DiskArgument, SymbolicLinkIsFollowed) {
  const std::string target = WriteImage("target", 1024);
  const std::string link = ScratchPath("link");
  std::filesystem::create_symlink(target, link);
  ExpectLastSector(link, "1");
  const std::string loop = ScratchPath("loop");
  std::filesystem::create_symlink(loop, loop);
  ExpectOpenFails(loop, ELOOP);
}

// No sector at all: the number before the first, and every read falls short.
TEST(DiskArgument, EmptyFile) {
  const Outcome outcome = RunShipped({WriteImage("empty", 0)});
  const std::string failure = "Global::Read short read, needed 512, got 0\nError reading sector\n";
  EXPECT_TRUE(SameText(outcome.out,
                       kBanner + "Last sector on disk is 18446744073709551615\nReading \\\\.\\PhysicalDrive" +
                           ScratchPath("empty") +
                           " [ whole disk ]\n\nLoading TOC ...\n\n"
                           "Reading sector # 0 [Master Boot Record]\n" +
                           kTocHeading + "         0\tMaster Boot Record\n"));
  EXPECT_EQ(outcome.err, failure + failure);
  EXPECT_EQ(outcome.status, 0);
}

TEST(DiskArgument, ImageShorterThanASector) {
  const Outcome outcome = RunShipped({WriteImage("short", 100), "0"});
  EXPECT_TRUE(outcome.out.starts_with(kBanner + "Last sector on disk is 18446744073709551615\n"));
  EXPECT_TRUE(outcome.err.starts_with("Global::Read short read, needed 512, got 100\n"));
}

// What is left over behind the last whole sector is no sector.
TEST(DiskArgument, ImageThatEndsInMidSector) {
  const std::string path = WriteImage("torn", 3 * 512 + 511);
  ExpectLastSector(path, "2");
  const Outcome outcome = RunShipped({path, "3"});
  EXPECT_EQ(outcome.err, "There aren't that many sectors on the disk !!\n");
  EXPECT_EQ(outcome.status, 1);
}

TEST(ImageSectorSize, IsWhereTheGptHeaderStandsInTheSecondSector) {
  ExpectLastSector(WriteImage("plain", 65536), "127");
  ExpectLastSector(WriteImage("gpt512", 65536, {512}), "127");
  ExpectLastSector(WriteImage("gpt1024", 65536, {1024}), "63");
  ExpectLastSector(WriteImage("gpt2048", 65536, {2048}), "31");
  ExpectLastSector(WriteImage("gpt4096", 65536, {4096}), "15");
  ExpectLastSector(WriteImage("gpt8192", 65536, {8192}), "127");
}

TEST(ImageSectorSize, SmallestThatFitsIsTaken) {
  ExpectLastSector(WriteImage("both", 65536, {1024, 4096}), "63");
  ExpectLastSector(WriteImage("all", 65536, {512, 1024, 2048, 4096}), "127");
}

TEST(ImageSectorSize, SignatureCutOffByTheEndOfTheFileDoesNotCount) {
  ExpectLastSector(WriteImage("whole", 4104, {4096}), "0");
  std::filesystem::resize_file(ScratchPath("whole"), 4103);
  ExpectLastSector(ScratchPath("whole"), "7");
}

TEST(ImageSectorSize, IsWhatTheArgumentSays) {
  const std::string path = WriteImage("sized", 1048576, {512});
  ExpectLastSector(path + "@1", "1048575");
  ExpectLastSector(path + "@520", "2015");
  ExpectLastSector(path + "@4096", "255");
  ExpectLastSector(path + "@1048576", "0");
  ExpectLastSector(path + "@00512", "2047");
}

TEST(ImageSectorSize, OutsideItsLimitsIsPartOfThePath) {
  const std::string path = WriteImage("sized", 1048576);
  for (const char* suffix : {"@0", "@1048577", "@4294967808", "@99999999999999999999", "@", "@x", "@512x",
                             "@-512", "@+512", "@ 512", "@0x200", "@5.12"}) {
    ExpectOpenFails(path + suffix, ENOENT);
  }
  ExpectOpenFails(ScratchPath("missing") + "@512", ENOENT);
}

// A file of the whole name comes first, and "@512" is then part of the name, not a size.
TEST(ImageSectorSize, FileWhoseNameHoldsAnAtSign) {
  WriteImage("named", 65536, {4096});
  const std::string path = WriteImage("named@512", 16384, {4096});
  ExpectLastSector(path, "3");
  ExpectLastSector(path + "@512", "31");
  ExpectLastSector(path + "@1024", "15");
}

// The file's name is as long as a name can be, its name with a size longer.
TEST(ImageSectorSize, BehindTheLongestName) {
  const std::string path = WriteImage(std::string(255, 'n'), 65536);
  ExpectLastSector(path + "@4096", "15");
  ExpectOpenFails(path + "x", ENAMETOOLONG);
}

TEST(ImageSectorSize, IsForImageFilesAlone) {
  ExpectGeometryFails("/dev/null@512", ENOTTY);
}

// Bytes of 16 per row at least: a sector of 1 byte has a heading and no rows.
TEST(ImageSectorSize, OddSizesAreDumpedAsFarAsTheirWholeRowsGo) {
  Disk disk(4, 520);
  PutBootRecord(disk, 0, {});
  disk.At(2).Text(0, "five hundred and twenty").U8(519, 0xEE);
  EXPECT_TRUE(SameText(
      ReportOf(disk, 2),
      ExpandExpected("Reading sector # 2 [Raw Sector]\n\n"
                     "       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n{{rows 2 0 512}}\n\n",
                     disk)));
}

// The text that is shown has a '?' for every byte, of the ASCII ones too; the file opens all the same.
TEST(DiskArgument, OutsideAsciiIsShownAsQuestionMarks) {
  for (const char* name : {"d\xC3\xA9j\xC3\xA0", "\xE9t\xE9", "\xFF\xFE\x80"}) {
    const std::string path = WriteImage(name, 1024);
    const Outcome outcome = RunShipped({path, "1"});
    EXPECT_TRUE(SameText(
        outcome.out, kBanner + "Last sector on disk is 1\nReading \\\\.\\PhysicalDrive" +
                         std::string(path.size(), '?') +
                         " sector 1\n\nLoading TOC ...\n\nReading sector # 1 [Raw Sector]\n... empty ...\n"));
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
  }
  ExpectOpenFails("missing-\xC3\xA9", ENOENT, std::string(10, '?'));
}

// ... whatever the environment's character set is.
TEST(DiskArgument, LocaleOfTheEnvironmentChangesNothing) {
  const std::string path = WriteImage("\xC3\xA9.img", 1024);
  const std::string out = RunProgram(Build::kShipped, {path, "1"}, {"LC_ALL=C.UTF-8"}).out;
  EXPECT_NE(out.find("PhysicalDrive" + std::string(path.size(), '?') + " sector 1\n"), std::string::npos);
}

}  // namespace
}  // namespace trovisk::test
