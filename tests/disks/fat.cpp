#include "tests/disks/fat.h"

#include "tests/disks/boot_code.h"
#include "tests/disks/mbr.h"

namespace trovisk::test {
namespace {

// Jump instruction, OEM name, BIOS parameter block, code and end mark: what all types have in one place.
template <typename Boot>
void PutCommon(Sector& sector, const Boot& boot, int jump) {
  sector.Bytes(0x000, {0xEB, jump, 0x90}).Text(0x003, boot.oemName);
  sector.Le16(0x00B, boot.bytesPerSector).U8(0x00D, boot.sectorsPerCluster);
  sector.Le16(0x00E, boot.reservedSectors).U8(0x010, boot.fats).Le16(0x011, boot.rootEntries);
  sector.Le16(0x013, boot.totalSectors16).U8(0x015, boot.media).Le16(0x016, boot.fatSize16);
  sector.Le16(0x018, boot.sectorsPerTrack).Le16(0x01A, boot.heads);
  sector.Le32(0x01C, boot.hiddenSectors).Le32(0x020, boot.totalSectors32);
  if (boot.code) PutInventedCode(sector, *boot.code);
  sector.Le16(0x1FE, boot.endMark);
}

}  // namespace

Disk FatDisk(u8 partitionType) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = partitionType, .first = kFatVolume, .count = 100000}}});
  return disk;
}

Sector& PutFatBootSector(Disk& disk, u64 sector, const FatBootSector& boot) {
  Sector& bytes = disk.At(sector);
  PutCommon(bytes, boot, 0x3C);
  bytes.U8(0x024, boot.drive).U8(0x026, boot.extendedSignature).Le32(0x027, boot.serial);
  return bytes.Text(0x02B, boot.label).Text(0x036, boot.type);
}

Sector& PutFat32BootSector(Disk& disk, u64 sector, const Fat32BootSector& boot) {
  Sector& bytes = disk.At(sector);
  PutCommon(bytes, boot, 0x58);
  bytes.Le32(0x024, boot.fatSize32).U8(0x02A, boot.versionMinor).U8(0x02B, boot.versionMajor);
  bytes.Le32(0x02C, boot.rootCluster).Le16(0x030, boot.fsInfoSector).Le16(0x032, boot.backupSector);
  bytes.U8(0x040, boot.drive).U8(0x042, boot.extendedSignature).Le32(0x043, boot.serial);
  return bytes.Text(0x047, boot.label).Text(0x052, boot.type);
}

Sector& PutFsInfo(Disk& disk, u64 sector, const FsInfo& fsInfo) {
  Sector& bytes = disk.At(sector);
  bytes.Le32(0x000, fsInfo.leadSignature).Le32(0x1E4, fsInfo.structureSignature);
  bytes.Le32(0x1E8, fsInfo.freeClusters).Le32(0x1EC, fsInfo.nextCluster);
  return bytes.Le16(0x1FE, fsInfo.endMark);
}

}  // namespace trovisk::test
