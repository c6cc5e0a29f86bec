// Seeds of GPT disks, and of Storage Spaces and Storage Replica partitions on them.

#include "tests/disks/fat.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/spaces.h"
#include "tests/fuzz/seeds.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectors = 190;

// Protective MBR, both headers and both arrays, of a few entries: a run shows every one of them.
void PutShortGpt(Disk& disk, const std::vector<GptEntry>& entries) {
  constexpr u32 kEntries = 8;
  const u64 last = disk.Sectors() - 1;
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, entries);
  PutGptEntries(disk, last - kEntries * 128 / disk.SectorSize(), entries);
  for (const u64 sector : {u64{1}, last})
    PutGptHeader(disk, sector, {.entryCount = kEntries});
}

Disk DiskWith(const Guid& type, u64 first, u64 last, u32 sectorSize = 512) {
  Disk disk(kSectors, sectorSize);
  PutShortGpt(disk, {{.type = type, .first = first, .last = last, .name = u"seed"}});
  return disk;
}

// SPACEDB in sector 100, SDBC in 108, SDBB from 109 on.
Disk SpacesDisk(const SpaceDb& spaceDb, const Sdbc& sdbc, const std::vector<SdbbRecord>& records = {}) {
  Disk disk = DiskWith(kStorageSpacesType, 100, 150);
  PutSpaceDb(disk, 100, spaceDb);
  PutSdbc(disk, 108, sdbc);
  PutSdbb(disk, 109, records);
  return disk;
}

}  // namespace

void AddGptSeeds(std::vector<Seed>& seeds) {
  Disk all(kSectors);
  PutShortGpt(
      all,
      {{.type = kEfiSystemType, .first = 10, .last = 13, .attributes = 1, .name = u"EFI"},
       {.type = kBasicDataType, .first = 14, .last = 16, .attributes = ~u64{0}, .name = u"\u00e9\U0001F4BF"},
       {.type = kRecoveryType, .first = 17, .last = 19, .name = u"\u001b[2J\u0085\xD800"},
       {.type = kLdmMetadataType, .first = 20, .last = 99, .name = u"LDM"},
       {.type = kStorageSpacesType, .first = 100, .last = 129},
       {.type = kStorageReplicaType, .first = 130, .last = 139},
       {.type = kUnlistedType, .first = 9, .last = 3},
       {}});
  PutFat32BootSector(all, 10, {.hiddenSectors = 10});
  PutNtfsBootSector(all, 14, {.totalSectors = 2});
  PutLdmDatabase(all, {.privhead = 99, .configStart = 22, .logicalStart = 140, .logicalSize = 40});
  PutSpaceDb(all, 100, {.timeStamp = 133976268000000000});
  PutSdbc(all, 108, {});
  PutSdbb(all, 109);
  PutDpom(all, 130, {});
  for (u64 sector = 131; sector < 133; ++sector)
    PutDpod(all, sector, {});
  AddSeed(seeds, "gpt-all", all);

  Disk large(kSectors, 4096);
  PutGpt(large, {{.type = kBasicDataType, .first = 40, .last = 49, .name = u"4096"}});
  AddSeed(seeds, "gpt-4096", large);

  Disk noHeader(kSectors);
  PutProtectiveMbr(noHeader);
  AddSeed(seeds, "gpt-no-header", noHeader);

  const auto headerSeed = [&](const std::string& name, const GptHeader& header) {
    Disk disk(40);
    PutProtectiveMbr(disk);
    PutGptHeader(disk, 1, header);
    AddSeed(seeds, name, disk);
  };
  headerSeed("gpt-header-many", {.entryCount = 0xFFFFFFFF, .entriesCrc = 0});
  headerSeed("gpt-header-large-entries", {.entrySize = 0x80000000, .entriesCrc = 0});
  headerSeed("gpt-header-no-entries", {.entrySize = 0});
  headerSeed("gpt-header-own-sector", {.otherLba = 1, .entriesLba = 1, .entriesCrc = 0});
}

void AddSpacesSeeds(std::vector<Seed>& seeds) {
  const u64 time = 133976268000000000;
  AddSeed(seeds, "spaces",
          SpacesDisk({.fileTime = time, .timeStamp = time}, {.timeStamp = time},
                     {{.identifier = 1, .parent = 1, .partCount = 2},
                      {.identifier = 2, .parent = 1, .partIndex = 1, .partCount = 2},
                      {.identifier = 3, .partCount = 0}}));
  AddSeed(seeds, "spaces-no-time", SpacesDisk({.fileTime = ~u64{0}}, {}));
  AddSeed(seeds, "spaces-no-spacedb", SpacesDisk({.signature = "nothing "}, {}));
  AddSeed(seeds, "spaces-no-sdbc", SpacesDisk({}, {.signature = "nothing "}));
  AddSeed(seeds, "spaces-no-sdbb", SpacesDisk({}, {}, {{.signature = "SDBC"}}));
  for (const int type : {0x1B, 0x1C, 0x20, 0x23, 0x29, 0x2A, 0x2D, 0x33, 0x99})
    AddSeed(seeds, "spaces-pool" + std::to_string(type), SpacesDisk({}, {.poolType = static_cast<u8>(type)}));

  Disk replica = DiskWith(kStorageReplicaType, 100, 120);
  PutDpom(replica, 100, {});
  for (u64 sector = 101; sector < 104; ++sector)
    PutDpod(replica, sector, {.partitionGuid = kBasicDataType, .words = {1, 2, 3}});
  AddSeed(seeds, "replica", replica);
  AddSeed(seeds, "replica-empty", DiskWith(kStorageReplicaType, 100, 120));
  Disk beyond = DiskWith(kStorageReplicaType, 180, kSectors + 100);
  PutDpom(beyond, 180, {});
  for (u64 sector = 181; sector < 185; ++sector)
    PutDpod(beyond, sector, {});
  AddSeed(seeds, "replica-beyond", beyond);
}

}  // namespace trovisk::test
