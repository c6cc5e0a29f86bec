// Reports of FSInfo sectors.

#include <gtest/gtest.h>

#include "tests/disks/fat.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFsInfo = kFatVolume + 1;

Disk DiskWithFsInfo(const FsInfo& fsInfo) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.fsInfoSector = 1});
  PutFsInfo(disk, kFsInfo, fsInfo);
  return disk;
}

std::string HintLines(const FsInfo& fsInfo) {
  const std::string report = ReportOf(DiskWithFsInfo(fsInfo), kFsInfo);
  const std::size_t begin = report.find("Last known");
  return report.substr(begin, report.find("Sector End Mark") - begin);
}

// Reported in both passes; the pass ends, so that the backup's own FSInfo sector stays unregistered.
void ExpectRefused(Disk disk, const std::string& message) {
  PutFat32BootSector(disk, kFatVolume + 6, {});
  EXPECT_TRUE(SameText(ReportOf(disk, kFsInfo, message),
                       "Reading sector # 64 [FAT32 Fileystem Information sector]\n" + message));
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tFAT32 Boot Sector\n"
                       "        64\tFAT32 Fileystem Information sector\n"
                       "        69\tBackup FAT boot sector\n"
                       "        95\tFAT directory sector\n"));
}

// No raw dump follows.
TEST(FsInfo, WholeReport) {
  const Disk disk = DiskWithFsInfo({});
  EXPECT_TRUE(SameText(ReportOf(disk, kFsInfo), Expected("fat32_fsinfo.txt", disk)));
}

// A count of 0xFFFFFFFF is "unknown"; one less is a number like any other.
TEST(FsInfo, FreeCountUnknownAndLargest) {
  EXPECT_TRUE(SameText(HintLines({.freeClusters = 0xFFFFFFFF}),
                       "Last known count of free clusters : Unknown\n"
                       "Cluster number to begin search    : 3\n"));
  EXPECT_TRUE(SameText(HintLines({.freeClusters = 0xFFFFFFFE}),
                       "Last known count of free clusters : 4294967294\n"
                       "Cluster number to begin search    : 3\n"));
}

TEST(FsInfo, NextClusterUnknownAndLargest) {
  EXPECT_TRUE(SameText(HintLines({.freeClusters = 0, .nextCluster = 0xFFFFFFFF}),
                       "Last known count of free clusters : 0\n"
                       "Cluster number to begin search    : Unknown\n"));
  EXPECT_TRUE(SameText(HintLines({.nextCluster = 0xFFFFFFFE}),
                       "Last known count of free clusters : 69999\n"
                       "Cluster number to begin search    : 4294967294\n"));
}

// Only the lead signature is checked.
TEST(FsInfo, WrongStructureSignatureIsShownAsFound) {
  // "r", a line feed, 0x80, "a"
  const std::string report = ReportOf(DiskWithFsInfo({.structureSignature = 0x61800A72}), kFsInfo);
  EXPECT_TRUE(SameText(report,
                       "Reading sector # 64 [FAT32 Fileystem Information sector]\n"
                       "\n"
                       "FAT32 Filesystem Information Sector\n"
                       "-----------------------------------\n"
                       "\n"
                       "Leading Signature                 : [ RRaA ]\n"
                       "FSI Structure Signatue            : [ r<LF><0x80>a ]\n"
                       "Last known count of free clusters : 69999\n"
                       "Cluster number to begin search    : 3\n"
                       "Sector End Mark                   : 0xAA55\n"));
}

TEST(FsInfo, BackupIsDecodedInTheSameWay) {
  Disk disk = DiskWithFsInfo({});
  PutFat32BootSector(disk, kFatVolume + 6, {});
  PutFsInfo(disk, kFatVolume + 7, {.freeClusters = 12, .nextCluster = 34});
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume + 7),
                       "Reading sector # 70 [FAT32 Fileystem Information sector]\n"
                       "\n"
                       "FAT32 Filesystem Information Sector\n"
                       "-----------------------------------\n"
                       "\n"
                       "Leading Signature                 : [ RRaA ]\n"
                       "FSI Structure Signatue            : [ rrAa ]\n"
                       "Last known count of free clusters : 12\n"
                       "Cluster number to begin search    : 34\n"
                       "Sector End Mark                   : 0xAA55\n"));
}

TEST(FsInfo, BadEndMark) {
  for (const u16 endMark : std::initializer_list<u16>{0xAA54, 0xAB55, 0x55AA, 0x0000}) {
    ExpectRefused(DiskWithFsInfo({.endMark = endMark}), "Not a valid FAT32 FSI sector end marker\n");
  }
}

TEST(FsInfo, BadLeadSignature) {
  ExpectRefused(DiskWithFsInfo({.leadSignature = 0x52526141}), "Not a valid FAT32 FSI signature\n");
  ExpectRefused(DiskWithFsInfo({.leadSignature = 0}), "Not a valid FAT32 FSI signature\n");
}

// The end mark is looked at first.
TEST(FsInfo, BadEndMarkAndLeadSignature) {
  ExpectRefused(DiskWithFsInfo({.leadSignature = 0, .endMark = 0}),
                "Not a valid FAT32 FSI sector end marker\n");
}

TEST(FsInfo, ReadErrorEndsThePass) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.fsInfoSector = 20, .backupSector = 21});
  PutFat32BootSector(disk, kFatVolume + 21, {});
  disk.Resize(kFatVolume + 20);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

}  // namespace
}  // namespace trovisk::test
