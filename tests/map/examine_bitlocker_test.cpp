// The examination of BitLocker volumes.

#include "tests/disks/bitlocker.h"
#include "tests/disks/fat.h"
#include "tests/map/examined.h"
#include "volumes/examinations.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;
constexpr u64 kPartition = 1000;
constexpr std::array<u64, 3> kOffsets = {51200, 102400, 153600};  // sectors 163, 263, 363

Disk SevenDisk(const BitLockerSeven& boot = {.metadata = kOffsets}) {
  Disk disk(2000);
  PutBitLocker(disk, kVolume, boot);
  PutFveMetadataBlocks(disk, kVolume, {.offsets = kOffsets});
  return disk;
}

// The first block's place is a cluster of 4096 bytes.
constexpr std::array<u64, 3> kVistaOffsets = {409600, 412160, 414720};  // sectors 863, 868, 873

Disk VistaDisk() {
  Disk disk(2000);
  PutBitLocker(disk, kVolume, BitLockerVista{.metadataCluster = 100});
  PutFveMetadataBlocks(disk, kVolume, {.version = 1, .offsets = kVistaOffsets});
  return disk;
}

VolumeFindings ExaminedBitLocker(const Disk& disk) {
  return Examined(ExamineBitLocker, disk, kVolume, kPartition);
}

TEST(ExamineBitLocker, MetadataBlocksTakeWhatTheyState) {
  const VolumeFindings findings = ExaminedBitLocker(SevenDisk());
  EXPECT_EQ(findings.type, "BitLocker (Windows 7 and later)");
  EXPECT_EQ(findings.sectors, 0);
  EXPECT_EQ(AreasOf(findings),
            "163-164 FVE metadata block 1\n"
            "263-264 FVE metadata block 2\n"
            "363-364 FVE metadata block 3\n");
  EXPECT_EQ(Judged(findings, "BitLocker metadata block 3"),
            "sector 363 good: -FVE-FS-, version 2, -FVE-FS-, version 2");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineBitLocker, FirstBlockOfVistaNamesTheOthers) {
  const VolumeFindings findings = ExaminedBitLocker(VistaDisk());
  EXPECT_EQ(findings.type, "BitLocker (Windows Vista)");
  EXPECT_EQ(AreasOf(findings),
            "863-864 FVE metadata block 1\n"
            "868-869 FVE metadata block 2\n"
            "873-874 FVE metadata block 3\n");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineBitLocker, WithoutTheFirstBlockOfVistaTheOthersAreNotFound) {
  Disk disk = VistaDisk();
  disk.At(863).U8(0, '+');
  const VolumeFindings findings = ExaminedBitLocker(disk);
  EXPECT_EQ(Judged(findings, "BitLocker metadata block 1"),
            "sector 863 bad: +FVE-FS-, version 1, -FVE-FS-, version 1");
  EXPECT_EQ(Judged(findings, "BitLocker metadata block 2"),
            "sector 63 not checked: , nothing says where it is");
}

TEST(ExamineBitLocker, ToGoHasThePlacesElsewhere) {
  Disk disk(2000);
  Sector& boot = PutFat32BootSector(disk, kVolume, {});
  boot.GuidAt(0x1A8, Guid{"4967D63B-2E29-4AD8-8399-F6A339E3D001"});
  for (std::size_t i = 0; i < 3; ++i)
    boot.Le64(0x1B8 + 8 * i, kOffsets[i]);
  PutFveMetadataBlocks(disk, kVolume, {.offsets = kOffsets});
  const VolumeFindings findings = ExaminedBitLocker(disk);
  EXPECT_EQ(findings.type, "BitLocker To Go");
  EXPECT_EQ(findings.areas.size(), 3);
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineBitLocker, EndMarkIsMissed) {
  Disk disk = SevenDisk();
  disk.At(kVolume).Le16(0x1FE, 0);
  EXPECT_EQ(Judged(ExaminedBitLocker(disk), "BitLocker end mark"), "sector 63 bad: 0x0000, 0x55AA");
}

TEST(ExamineBitLocker, VersionOfAnotherLayout) {
  Disk disk = SevenDisk();
  PutFveMetadataBlock(disk, 263, {.version = 1});
  EXPECT_EQ(Judged(ExaminedBitLocker(disk), "BitLocker metadata block 2"),
            "sector 263 bad: -FVE-FS-, version 1, -FVE-FS-, version 2");
}

TEST(ExamineBitLocker, BlockOfZerosIsMissing) {
  Disk disk = SevenDisk();
  disk.At(363).Fill(0, 512, 0);
  const VolumeFindings findings = ExaminedBitLocker(disk);
  EXPECT_EQ(Judged(findings, "BitLocker metadata block 3"), "sector 363 missing: zeros, -FVE-FS-, version 2");
  EXPECT_EQ(AreasOf(findings),
            "163-164 FVE metadata block 1\n"
            "263-264 FVE metadata block 2\n"
            "363-363 FVE metadata block 3\n");
}

TEST(ExamineBitLocker, BlockBeyondTheEndOfTheDiskIsMissing) {
  const VolumeFindings findings = ExaminedBitLocker(SevenDisk({.metadata = {51200, 102400, u64{1} << 40}}));
  EXPECT_EQ(Judged(findings, "BitLocker metadata block 3"),
            "sector 2147483711 missing: unreadable, -FVE-FS-, version 2");
}

TEST(ExamineBitLocker, PlacesThatNoSectorHasEnd) {
  const VolumeFindings findings =
      ExaminedBitLocker(SevenDisk({.metadata = {~u64{0}, ~u64{0} - 511, u64{1} << 63}}));
  EXPECT_EQ(findings.checks.size(), 4);
}

// A size that no block has is not believed.
TEST(ExamineBitLocker, HugeBlockIsShownByItsFirstSector) {
  Disk disk = SevenDisk();
  PutFveMetadataBlock(disk, 163, {.size = 0xFFFFFFFF});
  EXPECT_TRUE(AreasOf(ExaminedBitLocker(disk)).starts_with("163-163 FVE metadata block 1\n"));
}

TEST(ExamineBitLocker, UnreadableBootSectorIsMissing) {
  Disk disk = SevenDisk();
  disk.Resize(kVolume);
  EXPECT_EQ(Judged(ExaminedBitLocker(disk), "BitLocker end mark"), "sector 63 missing: unreadable, 0x55AA");
}

}  // namespace
}  // namespace trovisk::test
