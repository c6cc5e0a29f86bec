#include "tests/disks/ldm_group.h"

#include <algorithm>

#include "tests/disks/mbr.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirstSector = 63;

// A number in as few bytes as it takes, at least one.
VblkData& Sized(VblkData& data, u64 value) {
  std::size_t width = 1;
  while (width < 8 && value >> (8 * width) != 0)
    ++width;
  return data.Number(value, width);
}

VblkData Object(u64 id, std::string_view name) {
  VblkData data;
  Sized(data, id);
  data.Text(name);
  return data;
}

}  // namespace

std::string GroupDiskGuid(int number) {
  return std::to_string(number) + "f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80";
}

VblkRecord VolumeRecord(const VolumeFields& fields) {
  VblkData data = Object(fields.id, fields.name);
  data.Text(fields.type).Byte(0).Chars(fields.state).Zeros(14 - fields.state.size());
  data.Byte(fields.typeByte).Zeros(1).Byte(fields.id).Zeros(3).Byte(fields.typeByte == 4 ? 0x13 : 0x11);
  Sized(data, fields.children).Be(18, 8).Be(18, 8);
  Sized(data, fields.size).Zeros(4).Byte(fields.partitionType).Raw(CountingBytes(fields.guid));
  if (!fields.hint.empty()) data.Text(fields.hint);
  return {.flags = fields.hint.empty() ? u8{0} : u8{0x02}, .type = 0x51, .data = data};
}

VblkRecord ComponentRecord(const ComponentFields& fields) {
  VblkData data = Object(fields.id, fields.name);
  data.Text(fields.state).Byte(fields.type).Zeros(4);
  Sized(data, fields.children).Be(18, 8).Zeros(8);
  Sized(data, fields.volume).Zeros(1);
  if (fields.stripeSize != 0) Sized(Sized(data, fields.stripeSize), fields.columns);
  return {.flags = fields.stripeSize == 0 ? u8{0} : u8{0x10}, .type = 0x32, .data = data};
}

VblkRecord PartitionRecord(const PartitionFields& fields) {
  VblkData data = Object(fields.id, fields.name);
  data.Zeros(4).Be(18, 8).Be(fields.start, 8).Be(fields.volumeOffset, 8);
  Sized(Sized(Sized(data, fields.size), fields.component), fields.disk);
  if (fields.column >= 0) Sized(data, static_cast<u64>(fields.column));
  return {.flags = fields.column < 0 ? u8{0} : u8{0x08}, .type = 0x33, .data = data};
}

VblkRecord DiskRecord(u64 id, std::string_view name, std::string_view guid, std::string_view device) {
  return {.type = 0x34, .data = Object(id, name).Text(guid).Text(device).Zeros(4).Be(18, 8)};
}

VblkRecord DiskRecord4(u64 id, std::string_view name, const std::array<u8, 16>& guid) {
  return {.type = 0x44,
          .data = Object(id, name).Raw(guid).Raw(CountingBytes(0x80)).Zeros(3).Be(1, 2).Be(18, 8)};
}

VblkRecord GroupRecord(u64 id, std::string_view name, std::string_view guid) {
  return {.type = 0x35, .data = Object(id, name).Text(guid).Zeros(4).Be(18, 8)};
}

Sector& PutGroupSlot(Disk& disk, u64 configStart, u64 slot, VblkRecord record) {
  record.sequence = static_cast<u32>(slot + 4);  // the VMDB has the room of four
  record.group = record.sequence;
  return PutVblk(disk, configStart + kGroupVmdb + 1 + slot / 4, slot % 4, record);
}

void PutFragments(Disk& disk, u64 configStart, const std::vector<u64>& slots, const VblkRecord& record) {
  PutVblkFragments(disk, configStart + kGroupVmdb + 1, slots, record);
}

Privhead GroupPrivhead(const GroupDisk& group) {
  static const std::string guids[] = {GroupDiskGuid(1), GroupDiskGuid(2), GroupDiskGuid(3)};
  return {.sequence = 1,
          .minor = group.minorVersion,
          .alternate1 = kGroupAlternate1,
          .alternate2 = kGroupAlternate2,
          .diskId = guids[group.number - 1],
          .hostId = "1b77da20-c717-11d0-a5be-00a0c91db73c",
          .groupId = kGroupGuid,
          .groupName = kGroupName,
          .logicalStart = kFirstSector,
          .logicalEnd = group.sectors - kGroupConfigSize - kFirstSector,
          .configStart = group.sectors - kGroupConfigSize,
          .configSize = kGroupConfigSize,
          .tocCount = group.minorVersion == 12 ? 2U : 4U,
          .tocSize = 2045,
          .configCount = 1,
          .logCount = 1,
          .configRegionSize = kGroupConfigRegion,
          .logRegionSize = kGroupLogSize};
}

Disk MakeGroupDisk(const GroupDisk& group) {
  Disk disk(group.sectors);
  const u64 config = group.sectors - kGroupConfigSize;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x42,
                              .first = static_cast<u32>(kFirstSector),
                              .count = static_cast<u32>(group.sectors - kFirstSector)}}});
  const Privhead header = GroupPrivhead(group);
  for (const u64 sector : {u64{6}, config + kGroupAlternate1, config + kGroupAlternate2})
    PutPrivhead(disk, sector, header);
  const TocBlock toc{.config = {.name = "config", .start = kGroupVmdb, .size = kGroupConfigRegion},
                     .log = {.name = "log", .start = kGroupLog, .size = kGroupLogSize}};
  for (const u64 place : {u64{1}, u64{2}, u64{2045}, u64{2046}}) {
    const bool used = group.minorVersion != 12 || place == 2 || place == 2045;
    if (used) PutTocBlock(disk, config + place, toc);
  }
  PutVmdb(disk, config + kGroupVmdb,
          {.sequence = kGroupConfigRegion * 4,
           .groupName = kGroupName,
           .groupId = kGroupGuid,
           .committedSequence = 18,
           .pendingSequence = 18,
           .committed = group.counts});
  for (u64 slot = 0; slot < (kGroupConfigRegion - 1) * 4; ++slot) {
    PutGroupSlot(disk, config, slot,
                 slot < group.records.size() ? group.records[slot] : VblkRecord{.count = 0});
  }
  PutKlog(disk, config + kGroupLog, {.klogCount = kGroupLogSize});
  return disk;
}

std::vector<VblkRecord> FiveVolumes() {
  return {
      GroupRecord(1, kGroupName, kGroupGuid),
      DiskRecord(2, "Disk1", GroupDiskGuid(1), "Harddisk1"),
      DiskRecord(3, "Disk2", GroupDiskGuid(2), "Harddisk2"),
      DiskRecord(4, "Disk3", GroupDiskGuid(3), "Harddisk3"),
      VolumeRecord({.id = 10, .name = "Simple", .size = 1000, .guid = 0x10, .hint = "E:"}),
      ComponentRecord({.id = 11, .name = "Simple-01", .volume = 10}),
      PartitionRecord({.id = 12, .name = "Disk1-01", .size = 1000, .component = 11, .disk = 2}),
      VolumeRecord({.id = 20, .name = "Span", .size = 2500, .guid = 0x20}),
      ComponentRecord({.id = 21, .name = "Span-01", .children = 2, .volume = 20}),
      PartitionRecord(
          {.id = 22, .name = "Disk1-02", .start = 1000, .size = 2000, .component = 21, .disk = 2}),
      PartitionRecord({.id = 23,
                       .name = "Disk1-03",
                       .start = 3000,
                       .volumeOffset = 2000,
                       .size = 500,
                       .component = 21,
                       .disk = 2}),
      VolumeRecord({.id = 30, .name = "Stripe", .size = 8192, .guid = 0x30}),
      ComponentRecord({.id = 31,
                       .name = "Stripe-01",
                       .type = 1,
                       .children = 2,
                       .volume = 30,
                       .stripeSize = 128,
                       .columns = 2}),
      PartitionRecord({.id = 33,
                       .name = "Disk2-01",
                       .start = 4096,
                       .size = 4096,
                       .component = 31,
                       .disk = 3,
                       .column = 1}),
      PartitionRecord({.id = 32,
                       .name = "Disk1-04",
                       .start = 4096,
                       .size = 4096,
                       .component = 31,
                       .disk = 2,
                       .column = 0}),
      VolumeRecord({.id = 40, .name = "Mirror", .children = 2, .size = 3000, .guid = 0x40}),
      ComponentRecord({.id = 41, .name = "Mirror-01", .volume = 40}),
      PartitionRecord(
          {.id = 42, .name = "Disk1-05", .start = 8192, .size = 3000, .component = 41, .disk = 2}),
      ComponentRecord({.id = 43, .name = "Mirror-02", .volume = 40}),
      PartitionRecord(
          {.id = 44, .name = "Disk2-02", .start = 8192, .size = 3000, .component = 43, .disk = 3}),
      VolumeRecord({.id = 50,
                    .name = "Raid",
                    .type = "raid5",
                    .typeByte = 4,
                    .size = 4096,
                    .guid = 0x60,
                    .hint = "R:"}),
      ComponentRecord({.id = 51,
                       .name = "Raid-01",
                       .type = 3,
                       .children = 3,
                       .volume = 50,
                       .stripeSize = 64,
                       .columns = 3}),
      PartitionRecord({.id = 52,
                       .name = "Disk1-06",
                       .start = 12288,
                       .size = 2048,
                       .component = 51,
                       .disk = 2,
                       .column = 0}),
      PartitionRecord({.id = 53,
                       .name = "Disk2-03",
                       .start = 12288,
                       .size = 2048,
                       .component = 51,
                       .disk = 3,
                       .column = 1}),
      PartitionRecord(
          {.id = 54, .name = "Disk3-01", .start = 0, .size = 2048, .component = 51, .disk = 4, .column = 2}),
  };
}

}  // namespace trovisk::test
