#include "tests/disks/samples.h"

#include "tests/disks/bitlocker.h"
#include "tests/disks/exfat.h"
#include "tests/disks/fat.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/refs.h"
#include "tests/disks/spaces.h"

namespace trovisk::test {
namespace {

// A moment in 2025, as a FILETIME.
constexpr u64 kTimeStamp = 133976268000000000;

constexpr Guid kMicrosoftReservedType("E3C9E316-0B5C-4DB8-817D-F92DF00215AE");
constexpr Guid kLdmDataType("AF9B60A0-1431-4F62-BC68-3311714A69AD");

StoredGuid Counting(u8 first) {
  return CountingBytes(first);
}

// Boot sector, backup, FSInfo and its copy of a FAT32 volume of 71232 sectors.
void PutFat32Volume(Disk& disk, u64 sector, u32 hiddenSectors) {
  const Fat32BootSector boot = {.hiddenSectors = hiddenSectors,
                                .serial = 0x2A5B10F3,
                                .label = "SAMPLE FAT ",
                                .code = BootCode::kFat32Windows8};
  for (const u64 copy : {sector, sector + boot.backupSector}) {
    PutFat32BootSector(disk, copy, boot);
    PutFsInfo(disk, copy + boot.fsInfoSector, {.freeClusters = 65321, .nextCluster = 4712});
  }
  for (u32 fat = 0; fat < boot.fats; ++fat) {
    disk.At(sector + boot.reservedSectors + u64{fat} * boot.fatSize32)
        .Le32(0, 0x0FFFFFF8)
        .Le32(4, 0x0FFFFFFF)
        .Le32(8, 0x0FFFFFFF);
  }
}

// Boot sector and the first entries of both FATs: the media byte, and an end of chain of 12 or 16 bits.
void PutFatVolume(Disk& disk, u64 sector, const FatBootSector& boot, u32 firstEntries) {
  PutFatBootSector(disk, sector, boot);
  for (u64 fat = 0; fat < boot.fats; ++fat)
    disk.At(sector + boot.reservedSectors + fat * boot.fatSize16).Le32(0, firstEntries);
}

// Boot sector, second-stage boot code, first MFT records and backup of an NTFS volume.
void PutNtfsVolume(Disk& disk, u64 sector, u64 sectors, BootCode code) {
  const NtfsBootSector boot = {.code = code,
                               .hiddenSectors = static_cast<u32>(sector),
                               .totalSectors = sectors - 1,
                               .mftCluster = 64,
                               .mftMirrorCluster = 2,
                               .volumeSerial = 0x5E1F00C0FFEE1234};
  PutNtfsBootSector(disk, sector, boot);
  PutNtfsBootSector(disk, sector + boot.totalSectors, boot);
  PutNtfsBootCode(disk, sector + 1,
                  {.furtherNames = {u"BOOTTGT", u"BOOTNXT", u"$I30"},
                   .message = "The boot loader is compressed\r\n",
                   .codeOffset = 0x119});
  for (u64 next = 2; next <= 9; ++next)
    disk.At(sector + next).Fill(0, 64, static_cast<u8>(next));
  disk.At(sector + boot.mftMirrorCluster * boot.sectorsPerCluster).Text(0, "FILE0");
  disk.At(sector + boot.mftCluster * boot.sectorsPerCluster).Text(0, "FILE0");
}

// Boot record, backup, superblock and two checkpoints of a ReFS volume.
void PutReFsVolume(Disk& disk, u64 sector, u64 sectors) {
  ReFsBootRecord boot = {};
  boot.sectorCount = sectors;
  const u64 cluster = boot.sectorsPerCluster;
  PutSummedReFsBootRecord(disk, sector, boot);
  PutSummedReFsBootRecord(disk, sector + sectors - 1, boot);
  PutReFsSuperblock(disk, sector + 30 * cluster);
  PutReFsCheckpoint(disk, sector + 0x1E0 * cluster);
  PutReFsCheckpoint(disk, sector + 0x1E8 * cluster,
                    {.header = {.signature = "CHKP", .lcns = {0x1E8, 0, 0, 0}}, .checkpointClock = 1001});
}

void PutStorageSpaces(Disk& disk, u64 sector) {
  PutSpaceDb(disk, sector,
             {.crc32 = 0x8C1D5E2F,
              .unknown10 = 0x0000000000000001,
              .fileTime = kTimeStamp,
              .storageGuid = Counting(0x10),
              .spaceDbGuid = Counting(0x20),
              .number = 8,
              .unknown50 = 0x0000000000000200,
              .timeStamp = kTimeStamp});
  PutSdbc(disk, sector + 8,
          {.crc32 = 0x1B2C3D4E,
           .spaceportGuid = Counting(0x30),
           .unknown20 = 0x0000000000001000,
           .poolType = 0x23,
           .lastTransaction1 = 0x0000000000000471,
           .lastTransaction2 = 0x0000000000000471,
           .timeStamp = kTimeStamp});
  std::vector<SdbbRecord> records;
  for (u32 id = 1; id <= 8; ++id) {
    records.push_back(
        {.identifier = id, .parent = id, .partCount = static_cast<u16>(id <= 6 ? 1 : 0), .type = 1});
  }
  records[3].partCount = 2;  // an entry of two parts, and its second part
  records[4] = {.identifier = 5, .parent = 4, .partIndex = 1, .partCount = 2};
  PutSdbb(disk, sector + 9, records);
}

void PutStorageReplica(Disk& disk, u64 first, u64 last) {
  const Guid replica("7E57AB1E-0000-4000-8000-000000000001");
  PutDpom(disk, first, {.dataSize = 4096, .words = {1, 0, 2}, .diskGuid = replica, .partitionGuid = replica});
  for (u64 sector = first + 1; sector < last; ++sector) {
    PutDpod(disk, sector,
            {.dataSize = 512, .partitionGuid = replica, .words = {static_cast<u32>(sector - first), 0, 7}});
  }
}

// The superblock of an ext4 volume of blocks of 4096 bytes, as far as it names the volume.
void PutExt4Superblock(Disk& disk, u64 sector, u64 sectors) {
  constexpr u64 kOffset = 1024;  // bytes from the volume's start
  const u64 at = kOffset % disk.SectorSize();
  disk.At(sector + kOffset / disk.SectorSize())
      .Le32(at + 0x04, sectors * disk.SectorSize() / 4096)
      .Le32(at + 0x18, 2)  // blocks of 1024 << 2 bytes
      .Le16(at + 0x38, 0xEF53)
      .Le32(at + 0x4C, 1)     // dynamic revision
      .Le32(at + 0x60, 0x40)  // extents
      .Text(at + 0x78, "SAMPLE-EXT");
}

}  // namespace

Disk GptSample(u32 sectorSize) {
  Disk disk(196608, sectorSize);
  constexpr u64 kMiB = 2048;  // sectors
  const Guid unique("A0B1C2D3-E4F5-4607-8819-2A3B4C5D6E7F");
  PutFat32Volume(disk, 1 * kMiB, 1 * kMiB);
  PutBitLocker(disk, 38 * kMiB,
               BitLockerSeven{.common = {.jump = {0xEB, 0x58, 0x90}, .hiddenSectors = 38 * kMiB},
                              .metadata = FveMetadataBlock{}.offsets});
  PutFveMetadataBlocks(disk, 38 * kMiB);
  PutReFsVolume(disk, 39 * kMiB, 8 * kMiB);
  PutNtfsVolume(disk, 47 * kMiB, 4 * kMiB, BootCode::kNtfsWindows8);
  for (const u64 region : {51 * kMiB, 51 * kMiB + 12}) {
    PutExFatBootRegion(disk, region,
                       {.partitionOffset = 51 * kMiB, .volumeLength = 4 * kMiB, .clusterCount = 992});
  }
  PutNtfsVolume(disk, 55 * kMiB, 1 * kMiB, BootCode::kNtfsWindows7);
  PutLdmDatabase(disk, {.privhead = 57 * kMiB - 1,
                        .configStart = 56 * kMiB,
                        .logicalStart = 62 * kMiB,
                        .logicalSize = 2 * kMiB});
  PutStorageSpaces(disk, 58 * kMiB);
  PutStorageReplica(disk, 59 * kMiB, 59 * kMiB + 7);
  PutExt4Superblock(disk, 60 * kMiB, kMiB);
  PutGpt(
      disk,
      {{.type = kEfiSystemType,
        .unique = unique,
        .first = 1 * kMiB,
        .last = 36 * kMiB - 1,
        .name = u"EFI system"},
       {.type = kMicrosoftReservedType,
        .unique = unique,
        .first = 36 * kMiB,
        .last = 38 * kMiB - 1,
        .attributes = u64{1} << 63,
        .name = u"Microsoft reserved"},
       {.type = kBasicDataType,
        .unique = unique,
        .first = 38 * kMiB,
        .last = 39 * kMiB - 1,
        .name = u"BitLocker"},
       {.type = kBasicDataType, .unique = unique, .first = 39 * kMiB, .last = 47 * kMiB - 1, .name = u"ReFS"},
       {.type = kBasicDataType, .unique = unique, .first = 47 * kMiB, .last = 51 * kMiB - 1, .name = u"NTFS"},
       {.type = kBasicDataType,
        .unique = unique,
        .first = 51 * kMiB,
        .last = 55 * kMiB - 1,
        .name = u"exFAT"},
       {.type = kRecoveryType,
        .unique = unique,
        .first = 55 * kMiB,
        .last = 56 * kMiB - 1,
        .attributes = u64{1} << 63 | 1,
        .name = u"Recovery"},
       {.type = kLdmMetadataType,
        .unique = unique,
        .first = 56 * kMiB,
        .last = 57 * kMiB - 1,
        .name = u"LDM metadata"},
       {.type = kLdmDataType,
        .unique = unique,
        .first = 62 * kMiB,
        .last = 64 * kMiB - 1,
        .name = u"LDM data"},
       {.type = kStorageSpacesType,
        .unique = unique,
        .first = 58 * kMiB,
        .last = 59 * kMiB - 1,
        .name = u"Storage Spaces"},
       {.type = kStorageReplicaType,
        .unique = unique,
        .first = 59 * kMiB,
        .last = 59 * kMiB + 7,
        .name = u"Storage Replica"},
       {.type = kUnlistedType,
        .unique = unique,
        .first = 60 * kMiB,
        .last = 61 * kMiB - 1,
        .name = u"Unlisted"}});
  return disk;
}

Disk MbrSample(u32 sectorSize) {
  Disk disk(262144, sectorSize);
  constexpr u64 kMiB = 2048;  // sectors
  PutInventedCode(disk.At(0), BootCode::kMbrWindows2008R2);
  PutBootRecord(disk, 0,
                {.diskSignature = 0x1234ABCD,
                 .entries = {{.type = 0x01, .first = 1 * kMiB, .count = kFat12TotalSectors},
                             {.bootIndicator = 0x80, .type = 0x06, .first = 4 * kMiB, .count = 40113},
                             {.type = 0x0C, .first = 24 * kMiB, .count = 71232},
                             {.type = 0x0F, .first = 64 * kMiB, .count = 64 * kMiB}}});
  PutFatVolume(disk, 1 * kMiB,
               {.totalSectors16 = kFat12TotalSectors,
                .hiddenSectors = 1 * kMiB,
                .label = "SAMPLE F12 ",
                .type = "FAT12   ",
                .code = BootCode::kFatMsDos50},
               0x00FFFFF8);
  PutFatVolume(disk, 4 * kMiB,
               {.hiddenSectors = 4 * kMiB, .label = "SAMPLE F16 ", .code = BootCode::kFatMsWin41},
               0xFFFFFFF8);
  PutFat32Volume(disk, 24 * kMiB, 24 * kMiB);
  // The first record's link is the one that leads to the same sector whether it counts from the record itself
  // or from the start of the extended partition.
  constexpr u64 kExtended = 64 * kMiB;
  constexpr u64 kSecondRecord = kExtended + 4 * kMiB + 64;
  PutBootRecord(disk, kExtended,
                {.entries = {{.type = 0x07, .first = 64, .count = 4 * kMiB},
                             {.type = 0x05, .first = kSecondRecord - kExtended, .count = 4 * kMiB + 64}}});
  PutNtfsVolume(disk, kExtended + 64, 4 * kMiB, BootCode::kNtfsW1999);
  PutBootRecord(disk, kSecondRecord, {.entries = {{.type = 0x07, .first = 64, .count = 4 * kMiB}}});
  constexpr u64 kBitLocker = kSecondRecord + 64;
  PutBitLocker(disk, kBitLocker,
               BitLockerVista{.common = {.jump = {0xEB, 0x52, 0x90}, .hiddenSectors = kBitLocker},
                              .totalSectors = 4 * kMiB - 1,
                              .metadataCluster = 0x10});
  PutFveMetadataBlocks(disk, kBitLocker, {.version = 1});
  return disk;
}

Disk DynamicSample(u32 sectorSize) {
  Disk disk(65536, sectorSize);
  PutInventedCode(disk.At(0), BootCode::kMbrWindowsVista);
  PutBootRecord(disk, 0,
                {.diskSignature = 0x5EED0042, .entries = {{.type = 0x42, .first = 63, .count = 61377}}});
  PutLdmDatabase(
      disk,
      {.privhead = 6, .configStart = 63488, .logicalStart = 63, .logicalSize = 61377, .minorVersion = 11});
  return disk;
}

}  // namespace trovisk::test
