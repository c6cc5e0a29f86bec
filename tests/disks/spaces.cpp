#include "tests/disks/spaces.h"

namespace trovisk::test {

Sector& PutSpaceDb(Disk& disk, u64 sector, const SpaceDb& header) {
  return disk.At(sector)
      .Text(0x00, header.signature)
      .Bytes(0x08, header.revision)
      .Be32(0x0C, header.crc32)
      .Be64(0x10, header.unknown10)
      .Be64(0x18, header.fileTime)
      .Bytes(0x20, header.storageGuid)
      .Bytes(0x30, header.spaceDbGuid)
      .Le64(0x40, header.number)
      .Be64(0x48, header.zeroes)
      .Be64(0x50, header.unknown50)
      .Be64(0x58, header.timeStamp);
}

Sector& PutSdbc(Disk& disk, u64 sector, const Sdbc& header) {
  return disk.At(sector)
      .Text(0x00, header.signature)
      .Bytes(0x08, header.revision)
      .Be32(0x0C, header.crc32)
      .Bytes(0x10, header.spaceportGuid)
      .Be64(0x20, header.unknown20)
      .Be32(0x28, header.unknown28 << 8 | header.poolType)
      .Be32(0x2C, header.unknown2C)
      .Be64(0x30, header.unknown30)
      .Be64(0x38, header.lastTransaction1)
      .Be64(0x40, header.lastTransaction2)
      .Be64(0x48, header.timeStamp);
}

Sector& PutSdbb(Disk& disk, u64 sector, std::vector<SdbbRecord> records) {
  Sector& bytes = disk.At(sector);
  std::size_t offset = 0;
  records.resize(8);
  for (const SdbbRecord& record : records) {
    bytes.Text(offset, record.signature)
        .Be32(offset + 4, record.identifier)
        .Be32(offset + 8, record.parent)
        .Be16(offset + 12, record.partIndex)
        .Be16(offset + 14, record.partCount)
        .Be16(offset + 16, record.type);
    offset += 64;
  }
  return bytes;
}

Sector& PutDpod(Disk& disk, u64 sector, const Dpod& record) {
  Sector& bytes = disk.At(sector)
                      .Text(0x00, record.signature)
                      .Le32(0x04, record.dataSize)
                      .GuidAt(0x08, record.partitionGuid)
                      .GuidAt(0x18, record.replicationGroupGuid);
  for (std::size_t i = 0; i < record.words.size(); ++i)
    bytes.Le32(0x28 + 4 * i, record.words[i]);
  return bytes;
}

Sector& PutDpom(Disk& disk, u64 sector, const Dpom& record) {
  Sector& bytes = disk.At(sector)
                      .Text(0x00, record.signature)
                      .Le32(0x04, record.dataSize)
                      .GuidAt(0x2C, record.diskGuid)
                      .GuidAt(0x3C, record.partitionGuid);
  for (std::size_t i = 0; i < record.words.size(); ++i)
    bytes.Le32(0x08 + 4 * i, record.words[i]);
  return bytes;
}

}  // namespace trovisk::test
