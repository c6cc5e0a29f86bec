#include "tests/disks/refs.h"

namespace trovisk::test {
namespace {

void PutHeader(Sector& sector, const ReFsPageHeader& header) {
  sector.Text(0x00, header.signature).Le32(0x04, header.unknown).Le32(0x0C, header.volumeSignature);
  sector.Le64(0x10, header.allocatorClock).Le64(0x18, header.treeClock);
  for (std::size_t i = 0; i < 4; ++i)
    sector.Le64(0x20 + 8 * i, header.lcns[i]);
  sector.Le64(0x40, header.tableIdHigh).Le64(0x48, header.tableIdLow);
}

}  // namespace

Sector& PutReFsBootRecord(Disk& disk, u64 sector, const ReFsBootRecord& boot) {
  Sector& bytes = disk.At(sector);
  bytes.Text(0x003, boot.name).Text(0x010, boot.identifier);
  bytes.Le16(0x014, boot.headerSize).Le16(0x016, boot.checksum).Le64(0x018, boot.sectorCount);
  bytes.Le32(0x020, boot.sectorSize).Le32(0x024, boot.sectorsPerCluster);
  bytes.U8(0x028, boot.versionMajor).U8(0x029, boot.versionMinor);
  bytes.Le16(0x02A, boot.unknown1).Le32(0x02C, boot.unknown2).Le64(0x030, boot.unknown3);
  bytes.Le64(0x038, boot.serialNumber).Le64(0x040, boot.containerSize).GuidAt(0x048, boot.guid);
  return bytes.Le16(0x1FE, boot.endMark);
}

// As the published description adds it up, without the jump and the checksum itself.
u16 ReFsBootChecksum(Bytes boot) {
  u16 checksum = 0;
  for (std::size_t i = 3; i < boot.size(); ++i) {
    if (i == 0x16 || i == 0x17) continue;
    const int carried = (checksum & 1) != 0 ? 0x8000 : 0;
    checksum = static_cast<u16>(carried + (checksum >> 1) + boot[i]);
  }
  return checksum;
}

Sector& PutSummedReFsBootRecord(Disk& disk, u64 sector, const ReFsBootRecord& boot) {
  Sector& bytes = PutReFsBootRecord(disk, sector, boot);
  return bytes.Le16(0x16, ReFsBootChecksum(bytes.View()));
}

void PutReFsPageReference(Sector& sector, std::size_t offset, const ReFsPageReference& reference) {
  for (std::size_t i = 0; i < 4; ++i)
    sector.Le64(offset + 8 * i, reference.lcns[i]);
  sector.U8(offset + 0x22, reference.checksumType).U8(offset + 0x23, reference.checksumOffset);
  sector.Le16(offset + 0x24, reference.checksumLength).Le64(offset + 0x28, reference.checksum);
}

Sector& PutReFsSuperblock(Disk& disk, u64 sector, const ReFsSuperblock& superblock) {
  Sector& bytes = disk.At(sector);
  PutHeader(bytes, superblock.header);
  bytes.GuidAt(0x50, superblock.guid).Le64(0x68, superblock.version);
  bytes.Le32(0x70, superblock.referencesOffset);
  bytes.Le32(0x74, superblock.referenceCount.value_or(static_cast<u32>(superblock.references.size())));
  bytes.Le32(0x78, superblock.descriptorOffset).Le32(0x7C, superblock.descriptorLength);
  PutReFsPageReference(bytes, 0xD0, superblock.descriptor);
  for (std::size_t i = 0; i < superblock.references.size(); ++i)
    bytes.Le64(0xC0 + 8 * i, superblock.references[i]);
  return bytes;
}

Sector& PutReFsCheckpoint(Disk& disk, u64 sector, const ReFsCheckpoint& checkpoint) {
  Sector& bytes = disk.At(sector);
  PutHeader(bytes, checkpoint.header);
  bytes.Le16(0x50, checkpoint.flag1).Le16(0x52, checkpoint.flag2);
  bytes.Le16(0x54, checkpoint.versionMajor).Le16(0x56, checkpoint.versionMinor);
  bytes.Le32(0x58, checkpoint.descriptorOffset).Le32(0x5C, checkpoint.descriptorLength);
  bytes.Le64(0x60, checkpoint.checkpointClock).Le64(0x68, checkpoint.allocatorClock);
  bytes.Le64(0x70, checkpoint.oldestLogRecord).Le64(0x78, checkpoint.unknown);
  bytes.Le32(0x88, checkpoint.bufferOffset).Le32(0x8C, checkpoint.bufferLength);
  bytes.Le32(0x90, checkpoint.pointerCount);
  for (std::size_t i = 0; i < 13; ++i)
    bytes.Le32(0x94 + 4 * i, checkpoint.firstPointer + 100 * i);
  PutReFsPageReference(bytes, 0xD0, checkpoint.descriptor);
  return bytes;
}

}  // namespace trovisk::test
