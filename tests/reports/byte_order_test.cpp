// Fields whose values read differently in every order of their bytes, and differently in every width: fields
// that the whole reports show at values that do not tell.

#include <gtest/gtest.h>

#include "tests/disks/bitlocker.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/refs.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;

Disk DiskWithVolume() {
  Disk disk(2000);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1900}}});
  return disk;
}

void ExpectLine(const std::string& report, const std::string& line) {
  EXPECT_NE(report.find("\n" + line + "\n"), std::string::npos) << line << "\n" << report;
}

TEST(ByteOrder, DpomDataSizeIsLittleEndian) {
  Disk disk(200);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = 40, .last = 40}});
  PutDpom(disk, 40, {.dataSize = 0x01020304});
  ExpectLine(ReportOf(disk, 40), "Data Size (bytes) ?               : 16909060");
}

TEST(ByteOrder, DpodDataSizeIsLittleEndian) {
  Disk disk(200);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = 40, .last = 42}});
  PutDpom(disk, 40, {});
  PutDpod(disk, 41, {.dataSize = 0x01020304});
  ExpectLine(ReportOf(disk, 41), "Data Size (bytes) ?             : 16909060");
}

// Shown in twice its width: the field behind it does not count.
TEST(ByteOrder, BitLockerFatFlagsAreSixteenBits) {
  Disk disk = DiskWithVolume();
  PutBitLocker(disk, kVolume, BitLockerSeven{.fatFlags = 0x1234, .rootCluster = 0x9ABCDEF0});
  disk.At(kVolume).Bytes(0x02A, {0x56, 0x78});
  ExpectLine(ReportOf(disk, kVolume), "FAT Flags                              : 0x00001234");
}

TEST(ByteOrder, NtfsReservedSectorsAreLittleEndian) {
  Disk disk = DiskWithVolume();
  PutNtfsBootSector(disk, kVolume, {.reservedSectors = 0x0102});
  ExpectLine(ReportOf(disk, kVolume), "\tReserved Sector Count      : 258");
}

TEST(ByteOrder, ReFsJumpBytesAreInStoredOrder) {
  Disk disk = DiskWithVolume();
  PutReFsBootRecord(disk, kVolume, {.sectorCount = 1000, .sectorsPerCluster = 1});
  disk.At(kVolume).Bytes(0, {0xEB, 0x52, 0x90});
  disk.At(kVolume + 999).Bytes(0, disk.At(kVolume).View());
  const std::string line = "Jmp                   : EB5290 (Zeroes until ReFS boot is supported)";
  ExpectLine(ReportOf(disk, kVolume), line);
  ExpectLine(ReportOf(disk, kVolume + 999), line);
}

// Of both pages that have the header. The high half stands in front on disk too.
TEST(ByteOrder, ReFsTableIdentifierIsTwoLittleEndianHalves) {
  Disk disk = DiskWithVolume();
  PutReFsBootRecord(disk, kVolume, {.sectorCount = 1000, .sectorsPerCluster = 1});
  const ReFsPageHeader superblock{
      .signature = "SUPB", .tableIdHigh = 0x0123456789ABCDEF, .tableIdLow = 0x1032547698BADCFE};
  const ReFsPageHeader checkpoint{
      .signature = "CHKP", .tableIdHigh = 0x1133557799BBDDFF, .tableIdLow = 0x0022446688AACCEE};
  PutReFsSuperblock(disk, kVolume + 30, {.header = superblock, .references = {0x1E0}});
  PutReFsCheckpoint(disk, kVolume + 0x1E0, {.header = checkpoint});
  // A superblock that is not shown registers no checkpoint.
  const std::string report = RunOn(disk, {"93", "543"}).out;
  ExpectLine(report, "Table Identifier            : 0123456789ABCDEF-1032547698BADCFE");
  ExpectLine(report, "Table Identifier            : 1133557799BBDDFF-0022446688AACCEE");
}

}  // namespace
}  // namespace trovisk::test
