#include "tests/disks/exfat.h"

#include "tests/disks/boot_code.h"

namespace trovisk::test {

Sector& PutExFatBootSector(Disk& disk, u64 sector, const ExFatBootSector& boot) {
  Sector& bytes = disk.At(sector);
  bytes.Bytes(0x000, {0xEB, 0x76, 0x90}).Text(0x003, "EXFAT   ");
  bytes.Le64(0x040, boot.partitionOffset).Le64(0x048, boot.volumeLength);
  bytes.Le32(0x050, boot.fatOffset).Le32(0x054, boot.fatLength);
  bytes.Le32(0x058, boot.clusterHeapOffset).Le32(0x05C, boot.clusterCount).Le32(0x060, boot.rootCluster);
  bytes.Le32(0x064, boot.serialNumber);
  bytes.U8(0x068, boot.revisionMinor).U8(0x069, boot.revisionMajor).Le16(0x06A, boot.flags);
  bytes.U8(0x06C, boot.sectorShift).U8(0x06D, boot.clusterShift).U8(0x06E, boot.fatCount);
  bytes.U8(0x06F, boot.driveSelect).U8(0x070, boot.percentInUse);
  PutInventedCode(bytes, BootCode::kExFat);
  bytes.Text(0x16C, "No media found.").Text(0x17C, "Disk is broken.").Text(0x18C, "Press any key\r\n");
  for (std::size_t i = 0; i < 3; ++i)
    bytes.U8(0x1FB + i, boot.messageOffsets[i]);
  return bytes.Le16(0x1FE, boot.endMark);
}

// As the published description adds it up: over eleven sectors, without the flags and the percentage in use.
u32 ExFatBootChecksum(Disk& disk, u64 first) {
  u32 checksum = 0;
  for (u64 sector = 0; sector < 11; ++sector) {
    for (std::size_t i = 0; i < disk.SectorSize(); ++i) {
      if (sector == 0 && (i == 106 || i == 107 || i == 112)) continue;
      checksum =
          ((checksum & 1) != 0 ? 0x80000000U : 0U) + (checksum >> 1) + disk.At(first + sector).View()[i];
    }
  }
  return checksum;
}

void PutExFatBootRegion(Disk& disk, u64 first, const ExFatBootSector& boot) {
  PutExFatBootSector(disk, first, boot);
  const u32 checksum = ExFatBootChecksum(disk, first);
  for (std::size_t i = 0; i < disk.SectorSize(); i += 4)
    disk.At(first + 11).Le32(i, checksum);
}

}  // namespace trovisk::test
