// Reports of ReFS boot records and their backups, and what these register.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/disks/refs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kBoot = 2048;

// A disk with one volume, the backup included where it lies inside.
Disk DiskWith(const ReFsBootRecord& boot) {
  Disk disk(16384);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 12288}}});
  PutReFsBootRecord(disk, kBoot, boot);
  PutReFsBootRecord(disk, kBoot + 12288 - 1, boot);
  return disk;
}

TEST(ReFsBootRecord, WholeReport) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, kBoot), Expected("refs_boot_record.txt", disk)));
}

TEST(ReFsBootRecord, WholeReportOfTheBackup) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, 14335), Expected("refs_backup_boot_record.txt", disk)));
}

// Only 512 bytes are the boot record, the raw dump is the whole sector.
TEST(ReFsBootRecord, WholeReportOnSectorsOf4096Bytes) {
  Disk disk(16384, 4096);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 12288}}});
  PutReFsBootRecord(disk, kBoot);
  disk.At(kBoot).Text(4080, "the sector's end");
  EXPECT_TRUE(SameText(ReportOf(disk, kBoot), Expected("refs_boot_record.txt", disk)));
}

// Fields at their largest, each in a number as wide as itself. The volume is recognised by "ReFS" alone.
TEST(ReFsBootRecord, LargestFieldValues) {
  Disk disk = DiskWith({});
  for (const u64 sector : {kBoot, kBoot + 12288 - 1})
    disk.At(sector).Fill(0x000, 3, 0xFF).Fill(0x007, 0x200 - 0x007, 0xFF);
  constexpr char kHead[] =
      "Jmp                   : FFFFFF (Zeroes until ReFS boot is supported)\n"
      "FS Name               : [ ReFS<0xFF><0xFF><0xFF><0xFF> ]\n"
      "Identifier            : '<0xFF><0xFF><0xFF><0xFF>'\n"
      "Partition Header Size : 65535 bytes\n"
      "Checksum              : 0xFFFF\n"
      "Sector Count          : 18446744073709551615\n"
      "Sector Size           : 4294967295 bytes\n"
      "Sectors / Cluster     : 4294967295\n"
      "ReFS Version          : 255.255\n";
  constexpr char kUnknown[] =
      "Unknown #1            : 0xFFFF\n"
      "Unknown #2            : 0xFFFFFFFF\n"
      "Unknown #3            : 0xFFFFFFFFFFFFFFFF\n";
  constexpr char kTail[] =
      "Volume Serial Number  : 0xFFFFFFFFFFFFFFFF (FFFF-FFFF)\n"
      "Bytes / Container     : 18446744073709551615\n"
      "FS GUID               : FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF {FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}\n"
      "End Sector Mark       : 0xFFFF\n";
  EXPECT_TRUE(SameText(Section(ReportOf(disk, kBoot), "Jmp", "\nReading"), std::string(kHead) + kTail));

  // The volume's last sector, 2046, is the one that this count of -1 leads to.
  disk.At(2046).Bytes(0, disk.At(kBoot).View());
  EXPECT_TRUE(
      SameText(Section(ReportOf(disk, 2046), "Jmp", "\nReading"), std::string(kHead) + kUnknown + kTail));
}

TEST(ReFsBootRecord, NumbersAreZeroFilled) {
  const Disk disk = DiskWith({.checksum = 0x000B,
                              .unknown1 = 0,
                              .unknown2 = 0xC,
                              .unknown3 = 0xD,
                              .serialNumber = 0xE,
                              .endMark = 0x0001});
  const std::string report = ReportOf(disk, 14335);
  EXPECT_EQ(Section(report, "Checksum", "\nSector"), "Checksum              : 0x000B");
  EXPECT_EQ(Section(report, "Unknown #1", "\nBytes"),
            "Unknown #1            : 0x0000\n"
            "Unknown #2            : 0x0000000C\n"
            "Unknown #3            : 0x000000000000000D\n"
            "Volume Serial Number  : 0x000000000000000E (0000-000E)");
  EXPECT_EQ(Section(report, "End Sector", "\n\n"), "End Sector Mark       : 0x0001");
}

TEST(ReFsBootRecord, TextsEndAtTheirNul) {
  const Disk disk =
      DiskWith({.name = std::string_view("ReFS\0two", 8), .identifier = std::string_view("A\0BC", 4)});
  EXPECT_EQ(Section(ReportOf(disk, kBoot), "FS Name", "\nPartition"),
            "FS Name               : [ ReFS ]\n"
            "Identifier            : 'A'");
}

// Volumes of version 1 and 2 have no superblock that is understood here.
TEST(ReFsBootRecord, OldVersionsRegisterTheBackupOnly) {
  for (const u8 version : {u8{0}, u8{1}, u8{2}}) {
    EXPECT_EQ(TocOf(DiskWith({.versionMajor = version})),
              "         0\tMaster Boot Record\n"
              "      2048\tNTFS Boot Sector\n"
              "     14335\tBackup ReFS Volume Boot Record\n");
  }
}

TEST(ReFsBootRecord, NewVersionsRegisterTheSuperblock) {
  for (const u8 version : {u8{3}, u8{4}, u8{255}}) {
    EXPECT_EQ(TocOf(DiskWith({.sectorsPerCluster = 8, .versionMajor = version})),
              "         0\tMaster Boot Record\n"
              "      2048\tNTFS Boot Sector\n"
              "      2288\tReFS SUPB Sector\n"
              "     14335\tBackup ReFS Volume Boot Record\n");
  }
}

// 30 clusters of 64 KiB are 3840 sectors.
TEST(ReFsBootRecord, SuperblockBehindLargeClusters) {
  EXPECT_EQ(TocOf(DiskWith({.sectorsPerCluster = 128})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "      5888\tReFS SUPB Sector\n"
            "     14335\tBackup ReFS Volume Boot Record\n");
}

// 2048 + 30 * (2^32 - 1), beyond 32 bits and beyond the disk: registered, and the pass that gets there fails.
TEST(ReFsBootRecord, LargestClustersPlaceTheSuperblockBeyondTheDisk) {
  const Disk disk = DiskWith({.sectorsPerCluster = 0xFFFFFFFF});
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "     14335\tBackup ReFS Volume Boot Record\n"
            "128849020898\tReFS SUPB Sector\n");
  EXPECT_EQ(RunOn(disk).err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

// Zero sectors per cluster lead to the boot record itself, which keeps its entry.
TEST(ReFsBootRecord, ZeroSectorsPerCluster) {
  EXPECT_EQ(TocOf(DiskWith({.sectorsPerCluster = 0})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "     14335\tBackup ReFS Volume Boot Record\n");
}

TEST(ReFsBootRecord, SectorCountPlacesTheBackup) {
  EXPECT_EQ(TocOf(DiskWith({.sectorCount = 1000, .versionMajor = 1})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "      3047\tBackup ReFS Volume Boot Record\n");
}

// A volume of one sector is its own backup, one of none ends before it begins.
TEST(ReFsBootRecord, SectorCountsOfOneAndZero) {
  EXPECT_EQ(TocOf(DiskWith({.sectorCount = 1, .versionMajor = 1})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n");
  EXPECT_EQ(TocOf(DiskWith({.sectorCount = 0, .versionMajor = 1})),
            "         0\tMaster Boot Record\n"
            "      2047\tBackup ReFS Volume Boot Record\n"
            "      2048\tNTFS Boot Sector\n");
}

// Modulo 2^64, 2048 + (2^64 - 2048) - 1 is one before sector 0.
TEST(ReFsBootRecord, LargeSectorCountsWrap) {
  EXPECT_EQ(TocOf(DiskWith({.sectorCount = ~u64{0} - 2046, .versionMajor = 1})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n");
  EXPECT_EQ(TocOf(DiskWith({.sectorCount = ~u64{0} - 2045, .versionMajor = 1})),
            "         0\tMaster Boot Record\n"
            "         1\tBackup ReFS Volume Boot Record\n"
            "      2048\tNTFS Boot Sector\n");
}

// The first sector behind the disk: the loading pass reads there and ends, the run goes on.
TEST(ReFsBootRecord, BackupBehindTheDisk) {
  const Disk disk = DiskWith({.sectorCount = 16384 - kBoot + 1, .versionMajor = 1});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "     16384\tBackup ReFS Volume Boot Record\n");
}

// The backup registers nothing, whatever it says: here a volume length and clusters of its own.
TEST(ReFsBootRecord, BackupRegistersNothing) {
  Disk disk = DiskWith({.versionMajor = 1});
  PutReFsBootRecord(disk, 14335, {.sectorCount = 77, .sectorsPerCluster = 1, .versionMajor = 3});
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "     14335\tBackup ReFS Volume Boot Record\n");
}

// No mark and no signature is checked: all zeros are a boot record as well, where a first one points there.
TEST(ReFsBootRecord, EmptyBackup) {
  Disk disk = DiskWith({.sectorCount = 5000});
  EXPECT_TRUE(SameText(ReportOf(disk, 7047),
                       "Reading sector # 7047 [Backup ReFS Volume Boot Record]\n"
                       "\n"
                       "ReFS Backup Volume Boot Record\n"
                       "------------------------------\n"
                       "Jmp                   : 000000 (Zeroes until ReFS boot is supported)\n"
                       "FS Name               : [  ]\n"
                       "Identifier            : ''\n"
                       "Partition Header Size : 0 bytes\n"
                       "Checksum              : 0x0000\n"
                       "Sector Count          : 0\n"
                       "Sector Size           : 0 bytes\n"
                       "Sectors / Cluster     : 0\n"
                       "ReFS Version          : 0.0\n"
                       "Unknown #1            : 0x0000\n"
                       "Unknown #2            : 0x00000000\n"
                       "Unknown #3            : 0x0000000000000000\n"
                       "Volume Serial Number  : 0x0000000000000000 (0000-0000)\n"
                       "Bytes / Container     : 0\n"
                       "FS GUID               : 00000000000000000000000000000000 "
                       "{00000000-0000-0000-0000-000000000000}\n"
                       "End Sector Mark       : 0x0000\n"
                       "\n"
                       "Reading sector # 7047 [as a raw sector]\n"
                       "... empty ...\n"));
}

}  // namespace
}  // namespace trovisk::test
