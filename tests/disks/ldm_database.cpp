// A small configuration area of a dynamic disk, complete with every kind of record.

#include "tests/disks/ldm.h"

namespace trovisk::test {
namespace {

// Sectors from the start of the configuration area.
constexpr u64 kTocSize = 60;
constexpr u64 kConfigRegion = 8;
constexpr u64 kConfigRegionSize = 6;
constexpr u64 kLogRegion = 20;
constexpr u64 kLogRegionSize = 2;
constexpr u64 kAlternate1 = 56;
constexpr u64 kAlternate2 = 63;

constexpr std::string_view kDiskId = "2f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80";
constexpr std::string_view kHostId = "1b77da20-c717-11d0-a5be-00a0c91db73c";
constexpr std::string_view kDisk3Id = "9c41b6e7-0d52-4a83-b1f6-27e8d9305c14";
constexpr std::string_view kGroupId = "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34";
constexpr u8 kGroupIdBytes[] = {0x6A, 0x0E, 0x9D, 0x52, 0x3C, 0x41, 0x4F, 0x7B,
                                0x8D, 0x22, 0x5B, 0x9E, 0x0F, 0x1A, 0x2C, 0x34};
constexpr std::string_view kGroupName = "SAMPLE-Dg0";
constexpr u64 kTimestamp = 133'000'000'000'000'000;  // 2022-06-18

void PutTables(Disk& disk, const LdmDatabase& place) {
  const Privhead header{.sequence = 3,
                        .minor = place.minorVersion,
                        .timestamp = kTimestamp,
                        .alternate1 = kAlternate1,
                        .alternate2 = kAlternate2,
                        .diskId = kDiskId,
                        .hostId = kHostId,
                        .groupId = kGroupId,
                        .groupName = kGroupName,
                        .logicalStart = place.logicalStart,
                        .logicalEnd = place.logicalSize,
                        .configStart = place.configStart,
                        .configSize = kLdmConfigSize,
                        .tocCount = place.minorVersion == 12 ? 2U : 4U,
                        .tocSize = kTocSize,
                        .configCount = 1,
                        .logCount = 1,
                        .configRegionSize = kConfigRegionSize,
                        .logRegionSize = kLogRegionSize,
                        .diskSignature = 0x1234ABCD,
                        .diskSetId = CountingBytes(0x10),
                        .diskSetIdCopy = CountingBytes(0x10)};
  for (const u64 sector :
       {place.privhead, place.configStart + kAlternate1, place.configStart + kAlternate2}) {
    PutPrivhead(disk, sector, header);
  }
  const TocBlock toc{
      .sequence1 = 1,
      .sequence2 = 1,
      .config = {.name = "config", .start = kConfigRegion, .size = kConfigRegionSize, .number = 6},
      .log = {.name = "log", .start = kLogRegion, .size = kLogRegionSize, .number = 6}};
  for (const u64 offset : {u64{1}, u64{2}, kTocSize, kTocSize + 1}) {
    const bool used = place.minorVersion != 12 || offset == 2 || offset == kTocSize;
    if (used) PutTocBlock(disk, place.configStart + offset, toc);
  }
  const ObjectCounts counts{.volumes = 2, .components = 2, .partitions = 3, .disks = 3};
  PutVmdb(disk, place.configStart + kConfigRegion,
          {.sequence = kConfigRegionSize * 4,
           .groupName = kGroupName,
           .groupId = kGroupId,
           .committedSequence = 21,
           .pendingSequence = 21,
           .committed = counts,
           .lastAccess = kTimestamp});
  for (u32 i = 0; i < kLogRegionSize; ++i) {
    PutKlog(
        disk, place.configStart + kLogRegion + i,
        {.logCount = 2, .klogCount = kLogRegionSize, .index = i, .identifiers = {19 + i, 20 + i, 21 + i}});
  }
}

VblkData Volume(int id, std::string_view name, u64 sectors) {
  VblkData data;
  data.Id({id}).Text(name).Text("gen").Byte(0).Chars("ACTIVE").Zeros(8);
  data.Byte(3).Zeros(1).Byte(static_cast<u64>(id)).Zeros(3).Byte(0x11);
  data.Number(1, 1).Be(18, 8).Be(18, 8).Number(sectors, 2).Zeros(4).Byte(0x07);
  data.Raw(CountingBytes(static_cast<u8>(id << 4)));
  return data;
}

VblkData Component(int id, std::string_view name, u64 type, u64 children, int volume) {
  VblkData data;
  data.Id({id}).Text(name).Text("ACTIVE").Byte(type).Zeros(4).Number(children, 1).Be(18, 8).Zeros(8);
  return data.Id({volume});
}

VblkData Partition(int id, std::string_view name, u64 start, u64 offset, u64 sectors, int component,
                   int disk) {
  VblkData data;
  data.Id({id}).Text(name).Zeros(4).Be(18, 8).Be(start, 8).Be(offset, 8).Number(sectors, 2);
  return data.Id({component}).Id({disk});
}

void PutRecords(Disk& disk, u64 sector) {
  u32 sequence = 4;
  const auto put = [&](VblkRecord record) {
    const u32 slot = sequence % 4;
    record.sequence = sequence;
    record.group = sequence;
    PutVblk(disk, sector + sequence / 4 - 1, slot, record);
    ++sequence;
  };
  put({.type = 0x35,
       .data = VblkData()
                   .Id({1})
                   .Text(kGroupName)
                   .Text(kGroupId)
                   .Zeros(4)
                   .Be(5, 8)
                   .Byte(2)
                   .Fill(2, 0xFF)
                   .Byte(2)
                   .Fill(2, 0xFF)});
  put({.type = 0x45,
       .data = VblkData()
                   .Id({1})
                   .Text(kGroupName)
                   .Raw(kGroupIdBytes)
                   .Raw(CountingBytes(0x30))
                   .Zeros(4)
                   .Be(5, 8)
                   .Byte(2)
                   .Fill(2, 0xFF)
                   .Byte(2)
                   .Zeros(2)});
  put({.type = 0x34, .data = VblkData().Id({2}).Text("Disk1").Text(kDiskId).Text("").Zeros(4).Be(6, 8)});
  put({.type = 0x44,
       .data = VblkData()
                   .Id({3})
                   .Text("Disk2")
                   .Raw(CountingBytes(0x40))
                   .Raw(CountingBytes(0x50))
                   .Zeros(3)
                   .Be(1, 2)
                   .Be(7, 8)});
  put({.flags = 0x02,
       .type = 0x51,
       .data = Volume(5, "Volume1", 2048).Text("E:").Raw(CountingBytes(0x60)).Byte(0)});
  put({.type = 0x32, .data = Component(6, "Volume1-01", 2, 1, 5)});
  put({.type = 0x33, .data = Partition(7, "Disk1-01", 0, 0, 2048, 6, 2)});
  put({});
  put({.type = 0x51, .data = Volume(8, "Stripe1", 4096).Raw(CountingBytes(0x70)).Byte(0)});
  put({.flags = 0x10,
       .type = 0x32,
       .data = Component(9, "Stripe1-01", 1, 2, 8).Zeros(1).Number(128, 1).Zeros(1).Number(2, 1)});
  put({.flags = 0x08, .type = 0x33, .data = Partition(10, "Disk1-02", 2048, 0, 2048, 9, 2).Number(0, 1)});
  put({.flags = 0x08, .type = 0x33, .data = Partition(11, "Disk2-01", 0, 0, 2048, 9, 3).Number(1, 1)});
  // A record of two slots, and one of a type that is not told apart.
  PutVblkFragments(
      disk, sector, {sequence - 4, sequence - 3},
      {.type = 0x34,
       .data = VblkData()
                   .Id({12})
                   .Text("Disk3")
                   .Text(kDisk3Id)
                   .Text("the disk on the second shelf from the left, whose name takes two slots")
                   .Zeros(4)
                   .Be(8, 8)});
  sequence += 2;
  put({.type = 0x61, .data = VblkData().Fill(20, 0x5A)});
  put({});
}

}  // namespace

void PutLdmDatabase(Disk& disk, const LdmDatabase& place) {
  PutTables(disk, place);
  PutRecords(disk, place.configStart + kConfigRegion + 1);
}

}  // namespace trovisk::test
