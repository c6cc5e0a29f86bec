// Seeds of boot records and FAT volumes.

#include "tests/disks/boot_code.h"
#include "tests/disks/fat.h"
#include "tests/disks/mbr.h"
#include "tests/fuzz/seeds.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectors = 120;

void PutTimeStamp(Sector& sector) {
  sector.Bytes(0x0DC, {0x80, 59, 58, 23});
}

std::string Numbered(const std::string& name, int number) {
  return name + std::to_string(number);
}

// A disk with one FAT volume in sector 63, behind an entry of that type.
Disk DiskOf(u8 type, const FatBootSector& boot) {
  Disk disk(kSectors);
  PutBootRecord(disk, 0, {.entries = {{.type = type, .first = 63, .count = 50}}});
  PutFatBootSector(disk, 63, boot);
  return disk;
}

Disk DiskOf(const Fat32BootSector& boot, const FsInfo& fsInfo = {}) {
  Disk disk(kSectors);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0C, .first = 63, .count = 50}}});
  for (const u64 sector : {u64{63}, u64{69}}) {
    PutFat32BootSector(disk, sector, boot);
    PutFsInfo(disk, sector + 1, fsInfo);
  }
  return disk;
}

// The system files and messages of code that keeps them so.
void PutFilesAndMessages(Sector& sector) {
  sector.Text(0x1D8, "IO      SYS").Text(0x1E3, "DOS     SYS").Text(0x1F1, "\x1b[2J\x9b  SYS");
  sector.Text(0x184, "Invalid system disk");
}

}  // namespace

void AddMbrSeeds(std::vector<Seed>& seeds) {
  for (const BootCode code :
       {BootCode::kMbrMsDos330, BootCode::kMbrWindows95B, BootCode::kMbrWindows2000, BootCode::kMbrUsbKey,
        BootCode::kMbrWindowsVista, BootCode::kMbrWindows2008R2}) {
    const std::string name = Numbered("mbr-code", static_cast<int>(code));
    Disk disk(kSectors);
    Sector& mbr = disk.At(0);
    PutInventedCode(mbr, code);
    if (code == BootCode::kMbrWindows95B) PutInventedCode(mbr, BootCode::kMbrWindows95BContinued);
    mbr.Bytes(0x1B5, {0x2C, 0x44, 0x63});
    if (code != BootCode::kMbrWindows2008R2 && code != BootCode::kMbrWindowsVista) mbr.Text(0x18B, "Error");
    PutBootRecord(disk, 0, {.diskSignature = 0x1234ABCD});
    AddSeed(seeds, name, disk);
    if (code == BootCode::kMbrMsDos330 || code == BootCode::kMbrWindows95B) {
      PutTimeStamp(mbr);
      AddSeed(seeds, name + "-time", disk);
    }
  }
  Disk half(kSectors);
  PutInventedCode(half.At(0), BootCode::kMbrWindows95B);
  AddSeed(seeds, "mbr-code-half", half);

  Disk types(kSectors);
  PutBootRecord(types, 0,
                {.entries = {{.bootIndicator = 0x80, .type = 0x42, .first = 20, .count = 0xFFFFFFFF},
                             {.type = 0xDE, .first = 21, .count = 9},
                             {.startHead = 1, .startSector = 0xC1, .type = 0x0B, .first = 22, .count = 9},
                             {.type = 0x01, .first = 23, .count = 9}}});
  types.At(0).Fill(0, 16, 0x90);
  AddSeed(seeds, "mbr-types", types);

  // A chain of four, the last of which points back.
  Disk extended(kSectors);
  PutBootRecord(extended, 0, {.entries = {{.type = 0x0F, .first = 63, .count = 40}}});
  for (const u64 sector : {u64{63}, u64{73}, u64{83}}) {
    PutBootRecord(extended, sector,
                  {.entries = {{.type = 0x07, .first = 5, .count = 4},
                               {.type = 0x05, .first = sector == 83 ? u32{0xFFFFFFF6} : u32{10}}}});
  }
  PutFatBootSector(extended, 68, {.hiddenSectors = 68, .code = BootCode::kFatMsDos50});
  extended.At(78).Text(3, "-FVE-FS-").Le16(0x1FE, 0xAA55);
  AddSeed(seeds, "mbr-extended", extended);

  for (const u32 sectorSize : {4096U, 520U, 128U, 1U, 0U}) {
    Disk disk(kSectors, sectorSize);
    if (sectorSize >= 512) {
      PutBootRecord(disk, 0, {.entries = {{.type = 0x0C, .first = 63, .count = 50}}});
      PutFat32BootSector(disk, 63, {});
    }
    AddSeed(seeds, Numbered("mbr-sectors-of-", static_cast<int>(sectorSize)), disk);
  }
}

void AddFatSeeds(std::vector<Seed>& seeds) {
  AddSeed(seeds, "fat12",
          DiskOf(0x01, {.totalSectors16 = kFat12TotalSectors, .code = BootCode::kFatMsDos50}));
  AddSeed(seeds, "fat12-plain",
          DiskOf(0x01, {.totalSectors16 = kFat12TotalSectors, .extendedSignature = 0x28}));
  AddSeed(seeds, "fat16", DiskOf(0x06, {.code = BootCode::kFatMsDos50}));
  AddSeed(seeds, "fat16-identified", DiskOf(0x07, {.code = BootCode::kFatMsDos50}));
  Disk win41 = DiskOf(0x0E, {.code = BootCode::kFatMsWin41});
  PutFilesAndMessages(win41.At(63));
  AddSeed(seeds, "fat16-win41", win41);
  AddSeed(seeds, "fat16-plain", DiskOf(0x04, {.totalSectors16 = 0, .totalSectors32 = 40113}));
  AddSeed(seeds, "fat16-no-end-mark", DiskOf(0x04, {.endMark = 0}));
  AddSeed(seeds, "fat16-no-bytes", DiskOf(0x04, {.bytesPerSector = 0}));
  AddSeed(seeds, "fat16-no-cluster", DiskOf(0x04, {.sectorsPerCluster = 0}));

  for (const BootCode code :
       {BootCode::kFat32MsWin41, BootCode::kFat32MsDos50, BootCode::kFat32Vista, BootCode::kFat32Windows8}) {
    Disk disk = DiskOf(Fat32BootSector{.code = code});
    if (code == BootCode::kFat32MsWin41) PutFilesAndMessages(disk.At(63));
    if (code == BootCode::kFat32Windows8) {
      disk.At(63).Text(0x1AC, "Read failed").Le16(0x1F8, 0x1AC).Le16(0x1FA, 0x1B8);
    }
    AddSeed(seeds, Numbered("fat32-code", static_cast<int>(code)), disk);
  }
  AddSeed(seeds, "fat32-plain", DiskOf(Fat32BootSector{.extendedSignature = 0x28}));
  AddSeed(seeds, "fat32-unknown-counts",
          DiskOf(Fat32BootSector{}, {.freeClusters = 0xFFFFFFFF, .nextCluster = 0xFFFFFFFF}));
  AddSeed(seeds, "fsinfo-no-end-mark", DiskOf(Fat32BootSector{}, {.endMark = 0}));
  AddSeed(seeds, "fsinfo-no-signature", DiskOf(Fat32BootSector{}, {.leadSignature = 0}));
}

}  // namespace trovisk::test
