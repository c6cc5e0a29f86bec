#include "tests/disks/ldm.h"

namespace trovisk::test {

std::array<u8, 16> CountingBytes(u8 first) {
  std::array<u8, 16> bytes{};
  for (u8& byte : bytes)
    byte = first++;
  return bytes;
}

Sector& PutPrivhead(Disk& disk, u64 sector, const Privhead& header) {
  return disk.At(sector)
      .Text(0x000, header.signature)
      .Be32(0x008, header.sequence)
      .Be16(0x00C, header.major)
      .Be16(0x00E, header.minor)
      .Be64(0x010, header.timestamp)
      .Be64(0x020, header.alternate1)
      .Be64(0x028, header.alternate2)
      .Text(0x030, header.diskId)
      .Text(0x070, header.hostId)
      .Text(0x0B0, header.groupId)
      .Text(0x0F0, header.groupName)
      .Be64(0x11B, header.logicalStart)
      .Be64(0x123, header.logicalEnd)
      .Be64(0x12B, header.configStart)
      .Be64(0x133, header.configSize)
      .Be64(0x13B, header.tocCount)
      .Be64(0x143, header.tocSize)
      .Be32(0x14B, header.configCount)
      .Be32(0x14F, header.logCount)
      .Be64(0x153, header.configRegionSize)
      .Be64(0x15B, header.logRegionSize)
      .Be32(0x163, header.diskSignature)
      .Bytes(0x167, header.diskSetId)
      .Bytes(0x177, header.diskSetIdCopy);
}

Sector& PutTocBlock(Disk& disk, u64 sector, const TocBlock& toc) {
  return disk.At(sector)
      .Text(0, toc.signature)
      .Be32(8, toc.sequence1)
      .Be32(16, toc.sequence2)
      .Text(36, toc.config.name)
      .Be16(44, toc.config.flags)
      .Be64(46, toc.config.start)
      .Be64(54, toc.config.size)
      .Be64(62, toc.config.number)
      .Text(70, toc.log.name)
      .Be16(78, toc.log.flags)
      .Be64(80, toc.log.start)
      .Be64(88, toc.log.size)
      .Be64(96, toc.log.number);
}

Sector& PutVmdb(Disk& disk, u64 sector, const Vmdb& vmdb) {
  return disk.At(sector)
      .Text(0, vmdb.signature)
      .Be32(4, vmdb.sequence)
      .Be32(8, vmdb.vblkSize)
      .Be32(12, vmdb.vblkOffset)
      .Be16(16, vmdb.updateStatus)
      .Be16(18, vmdb.major)
      .Be16(20, vmdb.minor)
      .Text(22, vmdb.groupName)
      .Text(53, vmdb.groupId)
      .Be64(117, vmdb.committedSequence)
      .Be64(125, vmdb.pendingSequence)
      .Be32(133, vmdb.committed.volumes)
      .Be32(137, vmdb.committed.components)
      .Be32(141, vmdb.committed.partitions)
      .Be32(145, vmdb.committed.disks)
      .Be32(161, vmdb.pending.volumes)
      .Be32(165, vmdb.pending.components)
      .Be32(169, vmdb.pending.partitions)
      .Be32(173, vmdb.pending.disks)
      .Be64(189, vmdb.lastAccess);
}

Sector& PutKlog(Disk& disk, u64 sector, const Klog& klog) {
  Sector& bytes = disk.At(sector);
  std::size_t offset = 0x19;
  for (const u64 identifier : klog.identifiers) {
    bytes.Le64(offset, identifier);
    offset += 8;
  }
  return bytes.Text(0x00, klog.signature)
      .Be32(0x0C, klog.logCount)
      .Be32(0x10, klog.klogCount)
      .Be32(0x14, klog.index);
}

VblkData& VblkData::Be(u64 value, std::size_t width) {
  for (std::size_t i = width; i-- > 0;)
    bytes_.push_back(i < 8 ? static_cast<u8>(value >> (8 * i)) : u8{0});
  return *this;
}

VblkData& VblkData::Fill(std::size_t count, u8 value) {
  bytes_.insert(bytes_.end(), count, value);
  return *this;
}

VblkData& VblkData::Chars(std::string_view text) {
  for (const char character : text)
    Byte(static_cast<u8>(character));
  return *this;
}

VblkData& VblkData::Raw(Bytes bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

VblkData& VblkData::Text(std::string_view text) {
  return Byte(text.size()).Chars(text);
}

VblkData& VblkData::Id(std::initializer_list<int> bytes) {
  Byte(bytes.size());
  for (const int byte : bytes)
    Byte(static_cast<u8>(byte));
  return *this;
}

VblkData& VblkData::Number(u64 value, std::size_t width) {
  return Byte(width).Be(value, width);
}

void PutVblkFragments(Disk& disk, u64 sector, const std::vector<u64>& slots, const VblkRecord& record) {
  constexpr u64 kPiece = 112;
  constexpr u64 kSlotsOfTheVmdb = 4;  // which sequence numbers count too
  VblkData whole;
  whole.Be(record.updateStatus, 2).Byte(record.flags).Byte(record.type);
  whole.Be(record.data.View().size(), 4).Raw(record.data.View());
  for (u64 i = 0; i < slots.size(); ++i) {
    const Bytes piece = SliceAt(whole.View(), i * kPiece, kPiece);
    const std::size_t start = slots[i] % 4 * 128;
    Sector& bytes = disk.At(sector + slots[i] / 4);
    for (std::size_t slot = 0; slot < 4; ++slot)
      bytes.Text(slot * 128, "VBLK");
    bytes.Be32(start + 4, slots[i] + kSlotsOfTheVmdb)
        .Be32(start + 8, slots[0] + kSlotsOfTheVmdb)
        .Be16(start + 12, i)
        .Be16(start + 14, slots.size())
        .Fill(start + 16, kPiece, 0)
        .Bytes(start + 16, piece);
  }
}

Sector& PutVblk(Disk& disk, u64 sector, std::size_t slot, const VblkRecord& record) {
  const Bytes data = record.data.View();
  const std::size_t start = slot * 128;
  const std::size_t room = 512 - (start + 24);
  Sector& bytes = disk.At(sector)
                      .Be32(start + 4, record.sequence)
                      .Be32(start + 8, record.group)
                      .Be16(start + 12, record.number)
                      .Be16(start + 14, record.count)
                      .Be16(start + 16, record.updateStatus)
                      .U8(start + 18, record.flags)
                      .U8(start + 19, record.type)
                      .Be32(start + 20, record.dataLength.value_or(static_cast<u32>(data.size())))
                      .Bytes(start + 24, SliceAt(data, 0, room));
  for (std::size_t i = 0; i < 4; ++i)
    bytes.Text(i * 128, "VBLK");
  return bytes;
}

}  // namespace trovisk::test
