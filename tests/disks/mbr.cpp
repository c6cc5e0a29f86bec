#include "tests/disks/mbr.h"

namespace trovisk::test {

Sector& PutBootRecord(Disk& disk, u64 sector, const BootRecord& record) {
  Sector& bytes = disk.At(sector);
  bytes.Le32(0x1B8, record.diskSignature);
  std::size_t offset = 0x1BE;
  for (const PartitionEntry& entry : record.entries) {
    bytes.Bytes(offset, {entry.bootIndicator, entry.startHead, entry.startSector, entry.startCylinder,
                         entry.type, entry.endHead, entry.endSector, entry.endCylinder});
    bytes.Le32(offset + 8, entry.first).Le32(offset + 12, entry.count);
    offset += 16;
  }
  return bytes.Le16(0x1FE, record.endMark);
}

}  // namespace trovisk::test
