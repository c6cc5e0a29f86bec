// Seeds of NTFS, BitLocker, exFAT and ReFS volumes.

#include "tests/disks/bitlocker.h"
#include "tests/disks/exfat.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/refs.h"
#include "tests/fuzz/seeds.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectors = 200;
constexpr u64 kVolume = 63;

Disk DiskWithVolume(u32 sectorSize = 512) {
  Disk disk(kSectors, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 101}}});
  return disk;
}

void AddNtfsSeeds(std::vector<Seed>& seeds) {
  for (const BootCode code : {BootCode::kNtfsW1999, BootCode::kNtfsVista, BootCode::kNtfsWindows7,
                              BootCode::kNtfsWindows8Beta, BootCode::kNtfsWindows8}) {
    Disk disk = DiskWithVolume();
    for (const u64 sector : {kVolume, kVolume + 100})
      PutNtfsBootSector(disk, sector,
                        {.code = code, .totalSectors = 100, .clustersPerRecordSegment = 0xFFFFFFF6});
    PutNtfsBootCode(disk, kVolume + 1, {.loader = code == BootCode::kNtfsW1999 ? u"NTLDR" : u"BOOTMGR"});
    AddSeed(seeds, "ntfs-code" + std::to_string(static_cast<int>(code)), disk);
  }
  Disk message = DiskWithVolume();
  PutNtfsBootSector(message, kVolume, {.sectorsPerCluster = 0xF8, .totalSectors = 100});
  PutNtfsBootSector(message, kVolume + 100, {.endMark = 0});
  PutNtfsBootCode(message, kVolume + 1,
                  {.furtherNames = {u"BOOTTGT", u"BOOTNXT", u"$I30"}, .message = "Compressed\r\n"});
  AddSeed(seeds, "ntfs-message", message);
  Disk neither = DiskWithVolume();
  PutNtfsBootSector(neither, kVolume, {.sectorsPerCluster = 0x80});
  PutNtfsBootCode(neither, kVolume + 1, {.loader = u"\u001b[2J\u00e9", .index = u""});
  neither.At(kVolume + 1).Le16(0x05A, 0xFFFF);
  AddSeed(seeds, "ntfs-neither", neither);
  Disk invalid = DiskWithVolume();
  PutNtfsBootSector(invalid, kVolume, {.endMark = 0});
  AddSeed(seeds, "ntfs-no-end-mark", invalid);
  Disk large = DiskWithVolume(4096);
  PutNtfsBootSector(large, kVolume, {});
  AddSeed(seeds, "ntfs-4096", large);
}

void AddBitLockerSeeds(std::vector<Seed>& seeds) {
  Disk vista = DiskWithVolume();
  PutBitLocker(vista, kVolume, BitLockerVista{});
  AddSeed(seeds, "bitlocker-vista", vista);
  Disk seven = DiskWithVolume();
  PutBitLocker(seven, kVolume, BitLockerSeven{});
  AddSeed(seeds, "bitlocker-seven", seven);
  for (const int jump : {0x00, 0x53}) {
    Disk disk = DiskWithVolume();
    PutBitLocker(disk, kVolume, BitLockerVista{});
    disk.At(kVolume).Bytes(0, {jump == 0 ? 0xE9 : 0xEB, jump, 0x90});
    AddSeed(seeds, "bitlocker-jump" + std::to_string(jump), disk);
  }
  Disk invalid = DiskWithVolume();
  PutBitLocker(invalid, kVolume, BitLockerSeven{});
  invalid.At(kVolume).Le16(0x1FE, 0);
  AddSeed(seeds, "bitlocker-no-end-mark", invalid);
}

void AddExFatSeeds(std::vector<Seed>& seeds) {
  for (const u16 flags : {u16{0}, u16{0xF}}) {
    Disk disk = DiskWithVolume();
    PutExFatBootSector(disk, kVolume, {.flags = flags, .sectorShift = 0xFF});
    AddSeed(seeds, "exfat-flags" + std::to_string(flags), disk);
  }
  Disk invalid = DiskWithVolume();
  PutExFatBootSector(invalid, kVolume, {.endMark = 0});
  AddSeed(seeds, "exfat-no-end-mark", invalid);
}

// A volume of clusters of one sector: superblock in sector 30 of it, checkpoints in 40 and 48.
Disk ReFsDisk(const ReFsSuperblock& superblock, const ReFsCheckpoint& checkpoint) {
  Disk disk = DiskWithVolume();
  const ReFsBootRecord boot{.sectorCount = 100, .sectorsPerCluster = 1};
  PutReFsBootRecord(disk, kVolume, boot);
  PutReFsBootRecord(disk, kVolume + 99, boot);
  PutReFsSuperblock(disk, kVolume + 30, superblock);
  PutReFsCheckpoint(disk, kVolume + 40, checkpoint);
  PutReFsCheckpoint(disk, kVolume + 48, checkpoint);
  return disk;
}

}  // namespace

void AddVolumeSeeds(std::vector<Seed>& seeds) {
  AddNtfsSeeds(seeds);
  AddBitLockerSeeds(seeds);
  AddExFatSeeds(seeds);
  AddSeed(seeds, "unknown-volume", DiskWithVolume());
}

void AddReFsSeeds(std::vector<Seed>& seeds) {
  const ReFsSuperblock superblock{.references = {40, 48}};
  AddSeed(seeds, "refs", ReFsDisk(superblock, {}));
  AddSeed(seeds, "refs-crc32",
          ReFsDisk(superblock, {.descriptor = {.checksumType = 1, .checksumLength = 4}}));
  AddSeed(seeds, "refs-checksum-bytes",
          ReFsDisk(superblock, {.descriptor = {.checksumType = 9, .checksumLength = 500}}));
  AddSeed(seeds, "refs-checksum-negative",
          ReFsDisk(superblock, {.descriptor = {.checksumType = 9, .checksumLength = 0x8000}}));
  AddSeed(seeds, "refs-no-descriptor", ReFsDisk(superblock, {.descriptorLength = 0}));
  AddSeed(seeds, "refs-huge-descriptor", ReFsDisk(superblock, {.descriptorLength = 0xFFFFFFFF}));
  AddSeed(seeds, "refs-many-references",
          ReFsDisk({.references = {40, 48}, .referenceCount = 0xFFFFFFFF}, {}));
  Disk old = DiskWithVolume();
  PutReFsBootRecord(old, kVolume, {.sectorCount = 100, .versionMajor = 1});
  AddSeed(seeds, "refs-old", old);
  // A second volume, whose clusters have no sectors, is the last one decoded when the superblock comes.
  Disk two = ReFsDisk(superblock, {});
  PutBootRecord(two, 0,
                {.entries = {{.type = 0x07, .first = kVolume, .count = 100},
                             {.type = 0x07, .first = kVolume + 10, .count = 10}}});
  PutReFsBootRecord(two, kVolume + 10, {.sectorCount = 10, .sectorsPerCluster = 0});
  AddSeed(seeds, "refs-two", two);
}

}  // namespace trovisk::test
