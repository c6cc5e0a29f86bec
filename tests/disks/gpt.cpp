#include "tests/disks/gpt.h"

#include <algorithm>

namespace trovisk::test {
namespace {

// The largest array that a CRC is computed of; a header that claims more is not a valid one anyway.
constexpr u64 kArrayLimit = 1 << 20;

u64 ArraySectors(const Disk& disk, const GptHeader& header) {
  const u64 bytes = u64{header.entryCount} * header.entrySize;
  return (bytes + disk.SectorSize() - 1) / disk.SectorSize();
}

// Bytes at a position on the disk, across sectors.
void PutBytes(Disk& disk, u64 position, trovisk::Bytes bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    disk.At((position + i) / disk.SectorSize()).U8((position + i) % disk.SectorSize(), bytes[i]);
  }
}

std::vector<u8> BytesAt(const Disk& disk, u64 position, u64 count) {
  std::vector<u8> bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto found = disk.Touched().find((position + i) / disk.SectorSize());
    if (found == disk.Touched().end()) continue;
    bytes[i] = U8At(found->second.View(), (position + i) % disk.SectorSize());
  }
  return bytes;
}

u32 ArrayCrc(const Disk& disk, u64 sector, const GptHeader& header) {
  const u64 bytes = u64{header.entryCount} * header.entrySize;
  if (bytes > kArrayLimit || sector > disk.Sectors()) return 0;
  return Crc32(BytesAt(disk, sector * disk.SectorSize(), bytes));
}

}  // namespace

u32 Crc32(trovisk::Bytes bytes) {
  u32 crc = ~u32{0};
  for (const u8 byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit)
      crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

void PutBootRecordBytes(Disk& disk, const BootRecord& record) {
  Disk scratch(1);
  PutBytes(disk, 0, PutBootRecord(scratch, 0, record).View());
}

void PutProtectiveMbr(Disk& disk) {
  const u64 count = std::min<u64>(disk.Sectors() - 1, 0xFFFFFFFF);
  PutBootRecordBytes(disk, {.entries = {{.startSector = 2,
                                         .type = 0xEE,
                                         .endHead = 0xFF,
                                         .endSector = 0xFF,
                                         .endCylinder = 0xFF,
                                         .first = 1,
                                         .count = static_cast<u32>(count)}}});
}

void PutGptEntries(Disk& disk, u64 sector, const std::vector<GptEntry>& entries, u32 stride) {
  u64 position = sector * disk.SectorSize();
  for (const GptEntry& entry : entries) {
    Sector bytes(128);
    bytes.GuidAt(0, entry.type).GuidAt(16, entry.unique);
    bytes.Le64(32, entry.first).Le64(40, entry.last).Le64(48, entry.attributes);
    bytes.Utf16(56, entry.name);
    PutBytes(disk, position, bytes.View());
    position += stride;
  }
}

void PutGptHeader(Disk& disk, u64 sector, const GptHeader& header) {
  const bool primary = sector == 1;
  const u64 lastSector = disk.Sectors() - 1;
  const u64 arraySectors = ArraySectors(disk, header);
  const u64 entriesLba = header.entriesLba.value_or(primary ? 2 : sector - arraySectors);
  Sector bytes(92);
  bytes.Text(0, "EFI PART").Bytes(8, header.revision).Le32(12, header.headerSize);
  bytes.Le64(24, header.ownLba.value_or(sector)).Le64(32, header.otherLba.value_or(primary ? lastSector : 1));
  bytes.Le64(40, header.firstUsable.value_or(2 + arraySectors));
  bytes.Le64(48, header.lastUsable.value_or(lastSector - arraySectors - 1));
  bytes.GuidAt(56, header.diskGuid).Le64(72, entriesLba);
  bytes.Le32(80, header.entryCount).Le32(84, header.entrySize);
  bytes.Le32(88, header.entriesCrc.value_or(ArrayCrc(disk, entriesLba, header)));
  bytes.Le32(16, header.headerCrc.value_or(Crc32(bytes.View())));
  PutBytes(disk, sector * disk.SectorSize(), bytes.View());
}

void PutGpt(Disk& disk, const std::vector<GptEntry>& entries) {
  const u64 lastSector = disk.Sectors() - 1;
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, entries);
  PutGptEntries(disk, lastSector - ArraySectors(disk, {}), entries);
  PutGptHeader(disk, 1);
  PutGptHeader(disk, lastSector);
}

}  // namespace trovisk::test
