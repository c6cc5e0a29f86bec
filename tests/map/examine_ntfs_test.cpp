// The examination of NTFS volumes.

#include "tests/disks/ntfs.h"
#include "tests/map/examined.h"
#include "volumes/examinations.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;
constexpr u64 kPartition = 1001;  // one more than the volume counts

// $MFT at 95, $MFTMirr at 79, the backup at 1063.
Disk NtfsDisk(const NtfsBootSector& boot = {}) {
  Disk disk(2000);
  PutNtfsBootSector(disk, kVolume, boot);
  PutNtfsBootSector(disk, kVolume + 1000, boot);
  disk.At(kVolume + 32).Text(0, "FILE0");
  disk.At(kVolume + 16).Text(0, "FILE0");
  return disk;
}

VolumeFindings ExaminedNtfs(const Disk& disk, u64 sectors = kPartition) {
  return Examined(ExamineNtfs, disk, kVolume, sectors);
}

TEST(ExamineNtfs, AreasThatTheBootSectorStates) {
  const VolumeFindings findings = ExaminedNtfs(NtfsDisk());
  EXPECT_EQ(findings.type, "NTFS");
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(AreasOf(findings),
            "63-78 boot code\n"
            "1063-1063 backup boot sector\n"
            "95-102 $MFT\n"
            "79-86 $MFTMirr\n");
  EXPECT_EQ(NotGood(findings), "");
}

// 0xF4: clusters of 2^12 sectors.
TEST(ExamineNtfs, LargeClustersAreNegativePowersOfTwo) {
  Disk disk(50000);
  PutNtfsBootSector(
      disk, kVolume,
      {.sectorsPerCluster = 0xF4, .totalSectors = 40960, .mftCluster = 2, .mftMirrorCluster = 1});
  const VolumeFindings findings = ExaminedNtfs(disk, 40961);
  EXPECT_EQ(AreasOf(findings),
            "63-78 boot code\n"
            "41023-41023 backup boot sector\n"
            "8255-12350 $MFT\n"
            "4159-8254 $MFTMirr\n");
}

// A record of 1024 bytes in clusters of 512.
TEST(ExamineNtfs, RecordLargerThanAClusterTakesItsOwnSize) {
  const VolumeFindings findings =
      ExaminedNtfs(NtfsDisk({.sectorsPerCluster = 1, .mftCluster = 32, .mftMirrorCluster = 16}));
  EXPECT_EQ(AreasOf(findings),
            "63-78 boot code\n"
            "1063-1063 backup boot sector\n"
            "95-96 $MFT\n"
            "79-80 $MFTMirr\n");
}

TEST(ExamineNtfs, SectorsOf512OnADiskOf4096AreConverted) {
  Disk disk(2000, 4096);
  PutNtfsBootSector(disk, 10, {.totalSectors = 1007});
  const VolumeFindings findings = Examined(ExamineNtfs, disk, 10, 126);
  EXPECT_EQ(findings.sectors, 126);
  EXPECT_EQ(AreasOf(findings),
            "10-11 boot code\n"
            "135-135 backup boot sector\n"
            "14-14 $MFT\n"
            "12-12 $MFTMirr\n");
}

TEST(ExamineNtfs, EndMarkIsMissed) {
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk({.endMark = 0})), "NTFS end mark"), "sector 63 bad: 0x0000, 0x55AA");
}

// The backup has the partition's last sector.
TEST(ExamineNtfs, TotalIsOneLessThanThePartition) {
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk()), "NTFS total sectors"), "sector 63 good: 1000, at most 1000");
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk(), kPartition - 1), "NTFS total sectors"),
            "sector 63 bad: 1000, at most 999");
}

TEST(ExamineNtfs, BackupDiffers) {
  Disk disk = NtfsDisk();
  disk.At(kVolume + 1000).U8(0x048, 0);
  EXPECT_EQ(Judged(ExaminedNtfs(disk), "NTFS backup boot sector"),
            "sector 1063 bad: other bytes from 0x048 on, the bytes of the boot sector");
}

TEST(ExamineNtfs, BackupIsMissing) {
  Disk disk = NtfsDisk();
  disk.At(kVolume + 1000).Fill(0, 512, 0);
  EXPECT_EQ(Judged(ExaminedNtfs(disk), "NTFS backup boot sector"),
            "sector 1063 missing: zeros, the bytes of the boot sector");
  disk.Resize(1000);
  EXPECT_EQ(Judged(ExaminedNtfs(disk), "NTFS backup boot sector"),
            "sector 1063 missing: unreadable, the bytes of the boot sector");
}

// 1000 sectors are 125 clusters.
TEST(ExamineNtfs, MftLiesInTheVolume) {
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk()), "NTFS $MFT place"), "sector 63 good: cluster 4, from 1 to 124");
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk({.mftCluster = 125})), "NTFS $MFT place"),
            "sector 63 bad: cluster 125, from 1 to 124");
  EXPECT_EQ(Judged(ExaminedNtfs(NtfsDisk({.mftMirrorCluster = 0})), "NTFS $MFTMirr place"),
            "sector 63 bad: cluster 0, from 1 to 124");
}

TEST(ExamineNtfs, MftThatNoSectorHolds) {
  const VolumeFindings findings = ExaminedNtfs(NtfsDisk({.mftCluster = ~u64{0}}));
  EXPECT_EQ(Judged(findings, "NTFS $MFT signature"),
            "sector 63 not checked: , no place or record size that there can be");
  EXPECT_EQ(Judged(findings, "NTFS $MFTMirr first record"),
            "sector 79 not checked: , one of the two is unreadable");
}

TEST(ExamineNtfs, SignaturesOfTheFirstRecords) {
  Disk disk = NtfsDisk();
  disk.At(kVolume + 32).Text(0, "BAAD");
  disk.At(kVolume + 16).Fill(0, 512, 0);
  const VolumeFindings findings = ExaminedNtfs(disk);
  EXPECT_EQ(Judged(findings, "NTFS $MFT signature"), "sector 95 bad: BAAD, FILE");
  EXPECT_EQ(Judged(findings, "NTFS $MFTMirr signature"), "sector 79 missing: zeros, FILE");
}

// The record has 1024 bytes: its second sector counts.
TEST(ExamineNtfs, MirrorDiffers) {
  Disk disk = NtfsDisk();
  disk.At(kVolume + 17).U8(511, 1);
  EXPECT_EQ(Judged(ExaminedNtfs(disk), "NTFS $MFTMirr first record"),
            "sector 79 bad: other bytes from 0x3FF on, the bytes of $MFT's");
}

TEST(ExamineNtfs, DamagedBootSectorIsReplacedByItsBackup) {
  Disk disk = NtfsDisk();
  disk.At(kVolume).Fill(0, 512, 0x41);
  const VolumeFindings findings = ExaminedNtfs(disk);
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(findings.areas.size(), 4);
  EXPECT_EQ(Judged(findings, "NTFS boot sector"), "sector 63 bad: the name 'AAAAAAAA', whole");
  EXPECT_EQ(Judged(findings, "NTFS backup boot sector"), "sector 1063 good: whole, whole");
  EXPECT_EQ(NotGood(findings), "NTFS boot sector\n");
}

TEST(ExamineNtfs, InsaneBootSectorWithoutBackupLeavesNothing) {
  for (const NtfsBootSector& boot :
       {NtfsBootSector{.bytesPerSector = 513}, NtfsBootSector{.sectorsPerCluster = 0x81},
        NtfsBootSector{.totalSectors = 0}, NtfsBootSector{.totalSectors = u64{1} << 51}}) {
    const VolumeFindings findings = ExaminedNtfs(NtfsDisk(boot));
    EXPECT_EQ(findings.sectors, 0);
    EXPECT_EQ(AreasOf(findings), "");
    EXPECT_EQ(NotGood(findings), "NTFS boot sector\n");
  }
}

}  // namespace
}  // namespace trovisk::test
