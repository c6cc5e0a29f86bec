// Reports and registrations of FAT boot sectors.

#include <gtest/gtest.h>

#include "tests/disks/fat.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

// The report's heading for a FAT16 parameter block of so many clusters, one sector each.
std::string TypeOfClusters(u32 clusters, u8 partitionType, std::string_view typeText) {
  Disk disk = FatDisk(partitionType);
  PutFatBootSector(
      disk, kFatVolume,
      {.sectorsPerCluster = 1, .totalSectors16 = 0, .totalSectors32 = 113 + clusters, .type = typeText});
  const std::string report = ReportOf(disk, kFatVolume);
  const std::size_t heading = report.find("\n\n") + 2;
  return report.substr(heading, report.find('\n', heading) - heading);
}

// The lines between jump instruction and bootstrap: where the parts of the volume begin.
std::string LayoutLines(const std::string& report) {
  const std::size_t begin = report.find(" ]\n\n") + 4;
  return report.substr(begin, report.find("\n\n", begin) + 1 - begin);
}

std::string FatLayout(const FatBootSector& boot) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, boot);
  return LayoutLines(ReportOf(disk, kFatVolume));
}

std::string Fat32Layout(const Fat32BootSector& boot) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, boot);
  return LayoutLines(ReportOf(disk, kFatVolume));
}

// Two runs, one per disk: the sector is refused in the loading pass and again in the printing pass, and
// nothing that it names is registered.
void ExpectRefused(const Disk& disk) {
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume, "Not a valid FAT boot sector end marker\n"),
                       "Reading FAT sector # 63 [FAT32 Boot Sector]\n"
                       "Not a valid FAT boot sector end marker\n"));
  EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tFAT32 Boot Sector\n"));
}

TEST(FatBootSector, TypeFollowsFromTheClusterCount) {
  EXPECT_EQ(TypeOfClusters(0, 0x06, "FAT16   "), "FAT12 Boot Sector");
  EXPECT_EQ(TypeOfClusters(4084, 0x06, "FAT16   "), "FAT12 Boot Sector");
  EXPECT_EQ(TypeOfClusters(4085, 0x06, "FAT16   "), "FAT16 Boot Sector");
  EXPECT_EQ(TypeOfClusters(65524, 0x06, "FAT16   "), "FAT16 Boot Sector");
  EXPECT_EQ(TypeOfClusters(65525, 0x06, "FAT16   "), "FAT32 Boot Sector");
}

TEST(FatBootSector, PartitionTypeAndTypeTextDoNotDecideTheType) {
  EXPECT_EQ(TypeOfClusters(4084, 0x0C, "FAT32   "), "FAT12 Boot Sector");
  EXPECT_EQ(TypeOfClusters(4085, 0x01, "FAT12   "), "FAT16 Boot Sector");
  EXPECT_EQ(TypeOfClusters(65524, 0x0B, "FAT32   "), "FAT16 Boot Sector");
  EXPECT_EQ(TypeOfClusters(65525, 0x01, "FAT12   "), "FAT32 Boot Sector");
}

// A last cluster that is not whole does not count.
TEST(FatBootSector, ClusterCountIsRoundedDown) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = 113 + 4 * 4085 - 1});
  EXPECT_NE(ReportOf(disk, kFatVolume).find("\nFAT12 Boot Sector\n"), std::string::npos);
}

TEST(FatBootSector, Fat12And16ShowTheRootDirectory) {
  EXPECT_TRUE(SameText(FatLayout({}),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First root dir sector number  : 144\n"
                       "First data sector number      : 176\n"));
}

TEST(FatBootSector, WithoutFats) {
  EXPECT_TRUE(SameText(FatLayout({.fats = 0}),
                       "First root dir sector number  : 64\n"
                       "First data sector number      : 96\n"));
}

TEST(FatBootSector, MostFats) {
  std::string expected;
  for (int fat = 1; fat <= 255; ++fat) {
    expected += "First sector of FAT#" + std::to_string(fat) + "         : " +
                std::to_string(95 + 200 * (fat - 1)) + "\n";
  }
  expected += "First data sector number      : 51095\n";
  EXPECT_TRUE(SameText(Fat32Layout({.fats = 255, .totalSectors32 = 200000, .fatSize32 = 200}), expected));
}

// The root directory fills whole sectors; one of no entries takes none.
TEST(FatBootSector, RootDirectoryIsRoundedUpToSectors) {
  const auto firstData = [](u16 rootEntries, u16 bytesPerSector) {
    const std::string lines = FatLayout({.bytesPerSector = bytesPerSector, .rootEntries = rootEntries});
    return lines.substr(lines.find("First data"));
  };
  EXPECT_EQ(firstData(0, 512), "First data sector number      : 144\n");
  EXPECT_EQ(firstData(1, 512), "First data sector number      : 145\n");
  EXPECT_EQ(firstData(16, 512), "First data sector number      : 145\n");
  EXPECT_EQ(firstData(17, 512), "First data sector number      : 146\n");
  EXPECT_EQ(firstData(0, 1), "First data sector number      : 144\n");
  EXPECT_EQ(firstData(1, 1), "First data sector number      : 176\n");
}

TEST(FatBootSector, LargestRootDirectory) {
  // 65535 entries of 32 bytes: 4096 sectors of 512 bytes, 2097120 of one byte, 32 of 65535.
  EXPECT_TRUE(SameText(FatLayout({.rootEntries = 65535}),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First root dir sector number  : 144\n"
                       "First data sector number      : 4240\n"));
  EXPECT_TRUE(SameText(FatLayout({.bytesPerSector = 65535, .rootEntries = 65535}),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First root dir sector number  : 144\n"
                       "First data sector number      : 176\n"));
  EXPECT_TRUE(SameText(FatLayout({.bytesPerSector = 1,
                                  .sectorsPerCluster = 128,
                                  .rootEntries = 65535,
                                  .totalSectors16 = 0,
                                  .totalSectors32 = 2097201 + 128 * 5000}),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First root dir sector number  : 144\n"
                       "First data sector number      : 2097264\n"));
}

// 255 FATs of 2^32 - 1 sectors: the FAT area is 2^32 - 255 in 32 bits, while each FAT's first sector is
// summed in 64 bits.
TEST(FatBootSector, LargestFatSizeWrapsTheAreaIn32Bits) {
  std::string expected;
  for (u64 fat = 1; fat <= 255; ++fat) {
    expected += "First sector of FAT#" + std::to_string(fat) + "         : " +
                std::to_string(95 + (fat - 1) * 4294967295) + "\n";
  }
  expected += "First data sector number      : 4294967136\n";
  EXPECT_TRUE(SameText(Fat32Layout({.fats = 255, .totalSectors32 = 70000, .fatSize32 = 0xFFFFFFFF}),
                       // 70000 - (2^32 - 223) wraps to 70223 clusters.
                       expected));
}

// A root directory behind a FAT area near 2^32: the sum with the reserved sectors wraps, and the boot
// sector's own number is added afterwards.
TEST(FatBootSector, FirstRootSectorWrapsBeforeTheBaseIsAdded) {
  EXPECT_TRUE(SameText(Fat32Layout({.reservedSectors = 300,
                                    .fats = 1,
                                    .rootEntries = 16,
                                    .totalSectors32 = 10045,
                                    .fatSize32 = 0xFFFFFF00}),
                       // (2^32 - 256 + 300) wraps to 44, the data follows at 45: 10000 clusters, FAT16.
                       "First sector of FAT#1         : 363\n"
                       "First root dir sector number  : 107\n"
                       "First data sector number      : 108\n"));
}

// The same without the wrap: what the brackets give goes up to 2^32 - 1, the sum with the base goes beyond.
TEST(FatBootSector, SumsWithTheBaseAreWiderThan32Bits) {
  EXPECT_TRUE(SameText(Fat32Layout({.fats = 1, .totalSectors32 = 0x10000, .fatSize32 = 0xFFFFFFDF}),
                       "First sector of FAT#1         : 95\n"
                       // 2^32 - 1, and 65537 clusters
                       "First data sector number      : 4294967358\n"));
}

// 100 sectors cannot hold 113 of metadata: 100 - 113 wraps, which makes the volume FAT32.
TEST(FatBootSector, TotalSmallerThanTheMetadataWraps) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = 100});
  const std::string report = ReportOf(disk, kFatVolume);
  EXPECT_NE(report.find("\nFAT32 Boot Sector\n"), std::string::npos);
  EXPECT_TRUE(SameText(LayoutLines(report),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First data sector number      : 176\n"));
}

// The 32-bit counts matter only where the 16-bit ones are zero.
TEST(FatBootSector, SixteenBitCountsComeFirst) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.totalSectors16 = 132, .fatSize16 = 50});
  const std::string report = ReportOf(disk, kFatVolume);
  EXPECT_NE(report.find("\nFAT12 Boot Sector\n"), std::string::npos);
  EXPECT_TRUE(SameText(LayoutLines(report),
                       "First sector of FAT#1         : 95\n"
                       "First sector of FAT#2         : 145\n"
                       "First root dir sector number  : 195\n"
                       "First data sector number      : 195\n"));
}

TEST(FatBootSector, OemNameEndsAtItsNul) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.oemName = std::string_view("AB\x07\xC4\0XYZ", 8)});
  EXPECT_NE(ReportOf(disk, kFatVolume).find("OEM Name                      : [ AB<0x07><0xC4> ]\n\n"),
            std::string::npos);
}

TEST(FatBootSector, BadEndMark) {
  for (const u16 endMark : std::initializer_list<u16>{0xAA54, 0xAB55, 0x55AA, 0x0000}) {
    Disk disk = FatDisk(0x0C);
    PutFat32BootSector(disk, kFatVolume, {.endMark = endMark});
    ExpectRefused(disk);
  }
}

TEST(FatBootSector, ZeroBytesPerSectorIsNoBootSector) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.bytesPerSector = 0});
  ExpectRefused(disk);
}

TEST(FatBootSector, ZeroSectorsPerClusterIsNoBootSector) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.sectorsPerCluster = 0});
  ExpectRefused(disk);
}

// What a refused boot sector ends is the pass: the second partition is registered, never loaded.
TEST(FatBootSector, RefusedBootSectorEndsThePass) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x06, .first = 63, .count = 100},
                             {.type = 0x0C, .first = 200, .count = 100000}}});
  PutFatBootSector(disk, 63, {.endMark = 0});
  PutFat32BootSector(disk, 200, {.hiddenSectors = 200});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT Boot Sector\n"
                       "       200\tFAT32 Boot Sector\n"));
}

TEST(FatBootSector, ReadErrorEndsThePass) {
  Disk disk = FatDisk(0x06);
  disk.Resize(kFatVolume);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

// On larger sectors the record is still the first 512 bytes; the dump shows the whole sector.
TEST(FatBootSector, LargeSectors) {
  Disk disk(256, 4096);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x06, .first = 63, .count = 100}}});
  PutFatBootSector(disk, 63, {.bytesPerSector = 4096}).Text(0xFF0, "the last row");
  const std::string report = ReportOf(disk, 63);
  EXPECT_TRUE(SameText(LayoutLines(report),
                       "First sector of FAT#1         : 64\n"
                       "First sector of FAT#2         : 104\n"
                       "First root dir sector number  : 144\n"
                       "First data sector number      : 148\n"));
  EXPECT_TRUE(
      report.ends_with(ExpandExpected("\nReading sector # 63 [as a raw sector]\n{{dump 63}}\n", disk)));
}

// Behind a type that FAT shares with others the code gives the description; what is registered is the same.
TEST(FatBootSector, ReachedThroughItsCodeShowsTheClassName) {
  Disk disk = FatDisk(0x07);
  PutFat32BootSector(disk, kFatVolume, {.code = BootCode::kFat32MsWin41});
  PutFsInfo(disk, kFatVolume + 1, {});
  PutFat32BootSector(disk, kFatVolume + 6, {.fsInfoSector = 0});
  EXPECT_TRUE(ReportOf(disk, kFatVolume)
                  .starts_with("Reading FAT sector # 63 [MSWIN4.1 FAT32 boot sector]\n"
                               "\n"
                               "FAT32 Boot Sector\n"));
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tNTFS Boot Sector\n"
                       "        64\tFAT32 Fileystem Information sector\n"
                       "        69\tBackup FAT boot sector\n"
                       "        95\tFAT directory sector\n"));
}

// Only the FAT32 printer knows the Windows 8 code.
TEST(FatBootSector, Windows8CodeBehindASharedTypeIsUnknown) {
  Disk disk = FatDisk(0x07);
  PutFat32BootSector(disk, kFatVolume, {.code = BootCode::kFat32Windows8});
  EXPECT_TRUE(ReportOf(disk, kFatVolume).starts_with("Reading sector # 63 [Unknown boot sector]\n"));
  EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n"));
}

TEST(FatRegistrations, Fat16RegistersNothing) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {});
  EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tFAT Boot Sector\n"));
}

// Its bytes at the FSInfo and backup fields' places are label and code, not sector numbers.
TEST(FatRegistrations, Fat12RegistersNothing) {
  Disk disk = FatDisk(0x01);
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = kFat12TotalSectors});
  EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tFAT Boot Sector\n"));
}

// The primary names the backup, which names no further backup but the FSInfo sector beside itself.
TEST(FatRegistrations, Fat32PrimaryAndBackup) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {});
  PutFsInfo(disk, kFatVolume + 1, {});
  PutFat32BootSector(disk, kFatVolume + 6, {});
  PutFsInfo(disk, kFatVolume + 7, {});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT32 Boot Sector\n"
                       "        64\tFAT32 Fileystem Information sector\n"
                       "        69\tBackup FAT boot sector\n"
                       "        70\tFAT32 Fileystem Information sector\n"
                       "        95\tFAT directory sector\n"));
  EXPECT_TRUE(
      ReportOf(disk, 69).starts_with("Reading FAT sector # 69 [Backup FAT boot sector]\n\n"
                                     "FAT32 Boot Sector\n-----------------\n"));
  // Shown raw, and empty here.
  EXPECT_EQ(ReportOf(disk, 95), "Reading sector # 95 [FAT directory sector]\n... empty ...\n");
}

// A logical partition's hidden sectors may count from its extended boot record.
TEST(FatRegistrations, HiddenSectorsThatAreNotTheStartRegisterTheFsInfoAlone) {
  for (const u32 hidden : {0U, 62U, 64U, 0xFFFFFFFFU}) {
    Disk disk = FatDisk(0x0C);
    PutFat32BootSector(disk, kFatVolume, {.hiddenSectors = hidden});
    PutFsInfo(disk, kFatVolume + 1, {});
    EXPECT_TRUE(SameText(TocOf(disk),
                         "         0\tMaster Boot Record\n"
                         "        63\tFAT32 Boot Sector\n"
                         "        64\tFAT32 Fileystem Information sector\n"));
  }
}

// All three are listed. The first of them that is read in the loading pass, the backup, ends it.
TEST(FatRegistrations, FsInfoAndBackupBeyondTheDisk) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.fsInfoSector = 0xFFFF, .backupSector = 0xFFFE});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT32 Boot Sector\n"
                       "        95\tFAT directory sector\n"
                       "     65597\tBackup FAT boot sector\n"
                       "     65598\tFAT32 Fileystem Information sector\n"));
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

// Where the three fields name the same sectors, the first registration stands: backup, FAT, FSInfo.
TEST(FatRegistrations, OneSectorNamedTwice) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.reservedSectors = 6, .fsInfoSector = 6, .backupSector = 6});
  PutFat32BootSector(disk, kFatVolume + 6, {.fsInfoSector = 0});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT32 Boot Sector\n"
                       "        69\tBackup FAT boot sector\n"));
  PutFat32BootSector(disk, kFatVolume, {.reservedSectors = 7, .fsInfoSector = 7, .backupSector = 0});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT32 Boot Sector\n"
                       "        70\tFAT directory sector\n"));
}

// Fields of zero name the boot sector itself, which keeps its entry.
TEST(FatRegistrations, FieldsOfZeroNameTheBootSectorItself) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.reservedSectors = 0, .fsInfoSector = 0, .backupSector = 0});
  EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tFAT32 Boot Sector\n"));
}

}  // namespace
}  // namespace trovisk::test
