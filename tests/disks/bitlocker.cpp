#include "tests/disks/bitlocker.h"

namespace trovisk::test {

Sector& PutBitLockerCommon(Disk& disk, u64 sector, const BitLockerCommon& common) {
  Sector& bytes = disk.At(sector);
  bytes.Bytes(0x000, common.jump).Text(0x003, common.oemName);
  bytes.Le16(0x00B, common.bytesPerSector).U8(0x00D, common.sectorsPerCluster);
  bytes.Le16(0x00E, common.reservedSectors).U8(0x010, common.fats).Le16(0x011, common.rootEntries);
  bytes.Le16(0x013, common.totalSectors16).U8(0x015, common.mediaDescriptor);
  bytes.Le16(0x016, common.sectorsPerFat16).Le16(0x018, common.sectorsPerTrack).Le16(0x01A, common.heads);
  bytes.Le32(0x01C, common.hiddenSectors).Le32(0x020, common.totalSectors32);
  return bytes.Le16(0x1FE, common.endMark);
}

Sector& PutBitLocker(Disk& disk, u64 sector, const BitLockerVista& boot) {
  Sector& bytes = PutBitLockerCommon(disk, sector, boot.common);
  bytes.Bytes(0x024, {boot.diskUnit, boot.flags, boot.bpbVersion, boot.reserved});
  bytes.Le64(0x028, boot.totalSectors).Le64(0x030, boot.mftCluster).Le64(0x038, boot.metadataCluster);
  bytes.U8(0x040, boot.mftEntrySize).U8(0x044, boot.indexEntrySize);
  return bytes.Le64(0x048, boot.volumeSerial).Le32(0x050, boot.checksum);
}

Sector& PutBitLocker(Disk& disk, u64 sector, const BitLockerSeven& boot) {
  Sector& bytes = PutBitLockerCommon(disk, sector, boot.common);
  bytes.Le32(0x024, boot.sectorsPerFat).Le16(0x028, boot.fatFlags).Le32(0x02C, boot.rootCluster);
  bytes.Le16(0x030, boot.infoSector).Le16(0x032, boot.copySector);
  bytes.U8(0x040, boot.drive).U8(0x042, boot.extendedSignature).Le32(0x043, boot.volumeSerial);
  bytes.Text(0x047, boot.volumeLabel).Text(0x052, boot.fileSystem).GuidAt(0x0A0, boot.guid);
  for (std::size_t i = 0; i < boot.metadata.size(); ++i)
    bytes.Le64(0x0B0 + 8 * i, boot.metadata[i]);
  return bytes.Bytes(0x1FB, boot.messageOffsets);
}

void PutFveMetadataBlock(Disk& disk, u64 sector, const FveMetadataBlock& block) {
  Sector& bytes = disk.At(sector);
  bytes.Text(0x00, block.signature).Le16(0x0A, block.version).Le32(0x40, block.size);
  for (std::size_t i = 0; i < 3; ++i)
    bytes.Le64(0x20 + 8 * i, block.offsets[i]);
}

void PutFveMetadataBlocks(Disk& disk, u64 volume, const FveMetadataBlock& block) {
  for (const u64 offset : block.offsets)
    PutFveMetadataBlock(disk, volume + offset / disk.SectorSize(), block);
}

}  // namespace trovisk::test
