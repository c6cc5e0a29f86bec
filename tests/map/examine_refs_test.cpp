// The examination of ReFS volumes.

#include "tests/disks/refs.h"
#include "tests/map/examined.h"
#include "volumes/examinations.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 2048;
constexpr u64 kPartition = 12288;
constexpr u64 kBackup = kVolume + kPartition - 1;
constexpr u64 kSuperblock = kVolume + 30 * 8;
constexpr u64 kCheckpoint1 = kVolume + 0x1E0 * 8;
constexpr u64 kCheckpoint2 = kVolume + 0x1E8 * 8;

Disk ReFsDisk(const ReFsBootRecord& boot = {}) {
  Disk disk(20000);
  PutSummedReFsBootRecord(disk, kVolume, boot);
  PutSummedReFsBootRecord(disk, kBackup, boot);
  PutReFsSuperblock(disk, kSuperblock);
  PutReFsCheckpoint(disk, kCheckpoint1, {.checkpointClock = 1001});
  PutReFsCheckpoint(disk, kCheckpoint2, {.checkpointClock = 1000});
  return disk;
}

VolumeFindings ExaminedReFs(const Disk& disk, u64 sectors = kPartition) {
  return Examined(ExamineReFs, disk, kVolume, sectors);
}

TEST(ExamineReFs, AreasFromBootRecordToCheckpoints) {
  const VolumeFindings findings = ExaminedReFs(ReFsDisk());
  EXPECT_EQ(findings.type, "ReFS 3.4");
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(AreasOf(findings),
            "2048-2048 boot record\n"
            "14335-14335 backup boot record\n"
            "2288-2295 superblock\n"
            "5888-5895 checkpoint 1\n"
            "5952-5959 checkpoint 2\n");
  EXPECT_EQ(NotGood(findings), "");
}

// The volume has 1536 clusters.
TEST(ExamineReFs, CopiesOfTheSuperblockAreShownWhereTheyAreSeen) {
  Disk disk = ReFsDisk();
  PutReFsSuperblock(disk, kVolume + 1533 * 8);
  PutReFsSuperblock(disk, kVolume + 1534 * 8);
  const std::string areas = AreasOf(ExaminedReFs(disk));
  EXPECT_NE(areas.find("14312-14319 superblock copy 1\n14320-14327 superblock copy 2\n"), std::string::npos)
      << areas;
}

TEST(ExamineReFs, LargerSectorsOfTheVolumeAreConverted) {
  Disk disk(20000);
  PutReFsBootRecord(disk, kVolume, {.sectorCount = 1536, .sectorSize = 4096, .sectorsPerCluster = 1});
  PutReFsSuperblock(disk, kSuperblock);
  const VolumeFindings findings = ExaminedReFs(disk);
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_TRUE(
      AreasOf(findings).starts_with("2048-2055 boot record\n"
                                    "14328-14335 backup boot record\n"
                                    "2288-2295 superblock\n"));
}

TEST(ExamineReFs, ChecksumOfTheBootRecord) {
  Disk disk = ReFsDisk();
  disk.At(kVolume).Le16(0x16, ReFsBootChecksum(disk.At(kVolume).View()) ^ 1U);
  EXPECT_EQ(NotGood(ExaminedReFs(disk)), "ReFS boot record checksum\nReFS backup boot record\n");
}

// The sum turns by a bit from byte to byte, so that sixteen ones fill it; the next byte carries out of it.
TEST(ExamineReFs, ChecksumThatOverflowsGoesOnWithoutTheCarry) {
  Disk disk = ReFsDisk();
  Sector& boot = disk.At(kVolume);
  for (std::size_t i = 0x1E0; i < 0x1F0; ++i) {
    const bool one = (ReFsBootChecksum(boot.View().first(i)) >> 1 & 1) != 0;
    boot.U8(i, one ? 0 : 1);
  }
  boot.U8(0x1F0, 0x31);
  EXPECT_EQ(ReFsBootChecksum(boot.View().first(0x1F0)), 0xFFFF);
  EXPECT_EQ(ReFsBootChecksum(boot.View().first(0x1F1)), 0x0030);
  boot.Le16(0x16, ReFsBootChecksum(boot.View()));
  EXPECT_EQ(NotGood(ExaminedReFs(disk)), "ReFS backup boot record\n");
}

TEST(ExamineReFs, ChecksumOfMoreThanTheRecordIsNotChecked) {
  EXPECT_EQ(Judged(ExaminedReFs(ReFsDisk({.headerSize = 513})), "ReFS boot record checksum"),
            "sector 2048 not checked: , it is of 513 bytes");
}

TEST(ExamineReFs, TotalIsHeldAgainstThePartition) {
  EXPECT_EQ(Judged(ExaminedReFs(ReFsDisk(), kPartition - 1), "ReFS total sectors"),
            "sector 2048 bad: 12288, at most 12287");
}

TEST(ExamineReFs, BackupDiffersOrIsMissing) {
  Disk disk = ReFsDisk();
  disk.At(kBackup).U8(0x38, 0);
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS backup boot record"),
            "sector 14335 bad: other bytes from 0x038 on, the bytes of the boot record");
  disk.At(kBackup).Fill(0, 512, 0);
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS backup boot record"),
            "sector 14335 missing: zeros, the bytes of the boot record");
}

TEST(ExamineReFs, DamagedBootRecordIsReplacedByItsBackup) {
  Disk disk = ReFsDisk();
  disk.At(kVolume).Text(0x010, "FSRX");
  const VolumeFindings findings = ExaminedReFs(disk);
  EXPECT_EQ(findings.type, "ReFS 3.4");
  EXPECT_EQ(Judged(findings, "ReFS boot record"), "sector 2048 bad: the identifier 'FSRX', whole");
  EXPECT_EQ(Judged(findings, "ReFS backup boot record"), "sector 14335 good: whole, whole");
  EXPECT_EQ(findings.areas.size(), 5);
}

TEST(ExamineReFs, LaterCheckpointIsTheOneWithTheGreaterClock) {
  Disk disk = ReFsDisk();
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS newer checkpoint"),
            "sector 5888 good: checkpoint 1, virtual clock 1001, later than 1000");
  PutReFsCheckpoint(disk, kCheckpoint2, {.checkpointClock = 1002});
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS newer checkpoint"),
            "sector 5952 good: checkpoint 2, virtual clock 1002, later than 1001");
  PutReFsCheckpoint(disk, kCheckpoint2, {.checkpointClock = 1001});
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS newer checkpoint"),
            "sector 5888 not checked: , their virtual clocks are equal");
}

TEST(ExamineReFs, SignaturesOfThePages) {
  Disk disk = ReFsDisk();
  disk.At(kCheckpoint2).Text(0, "CHKQ");
  const VolumeFindings findings = ExaminedReFs(disk);
  EXPECT_EQ(Judged(findings, "ReFS checkpoint 2 signature"), "sector 5952 bad: CHKQ, CHKP");
  EXPECT_EQ(Judged(findings, "ReFS newer checkpoint"),
            "sector 2048 not checked: , there are not two of them");
  disk.At(kSuperblock).Fill(0, 512, 0);
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS superblock signature"), "sector 2288 missing: zeros, SUPB");
  EXPECT_EQ(Judged(ExaminedReFs(disk), "ReFS checkpoint 1 signature"), "no such check");
}

TEST(ExamineReFs, CheckpointsOutsideTheVolume) {
  Disk disk = ReFsDisk();
  PutReFsSuperblock(disk, kSuperblock, {.references = {1536, ~u64{0}}});
  const VolumeFindings findings = ExaminedReFs(disk);
  EXPECT_EQ(Judged(findings, "ReFS checkpoint 1 signature"), "sector 2048 bad: cluster 1536, below 1536");
  EXPECT_EQ(Judged(findings, "ReFS checkpoint 2 signature"),
            "sector 2048 bad: cluster 18446744073709551615, below 1536");
}

// Their layout is another one.
TEST(ExamineReFs, PagesOfVersionOneAreLeftAlone) {
  const VolumeFindings findings = ExaminedReFs(ReFsDisk({.versionMajor = 1, .versionMinor = 2}));
  EXPECT_EQ(findings.type, "ReFS 1.2");
  EXPECT_EQ(AreasOf(findings), "2048-2048 boot record\n14335-14335 backup boot record\n");
}

TEST(ExamineReFs, InsaneBootRecordWithoutBackupLeavesNothing) {
  for (const ReFsBootRecord& boot :
       {ReFsBootRecord{.name = "RiFS"}, ReFsBootRecord{.sectorCount = 0},
        ReFsBootRecord{.sectorCount = ~u64{0}}, ReFsBootRecord{.sectorSize = 0x80000000},
        ReFsBootRecord{.sectorsPerCluster = 0}, ReFsBootRecord{.sectorsPerCluster = 0x80000000}}) {
    const VolumeFindings findings = ExaminedReFs(ReFsDisk(boot));
    EXPECT_EQ(findings.sectors, 0);
    EXPECT_EQ(AreasOf(findings), "");
    EXPECT_EQ(NotGood(findings), "ReFS boot record\n");
  }
}

}  // namespace
}  // namespace trovisk::test
