// Seeds of dynamic disks.

#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/fuzz/seeds.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectors = 200;
constexpr u64 kConfig = 64;
constexpr u64 kVmdb = kConfig + 8;
constexpr u64 kVblk = kVmdb + 1;

Disk DynamicDisk(u16 minorVersion = 12) {
  Disk disk(kSectors);
  PutBootRecord(disk, 0, {.entries = {{.bootIndicator = 0x80, .type = 0x42, .first = 140, .count = 50}}});
  PutLdmDatabase(disk, {.configStart = kConfig, .logicalSize = 60, .minorVersion = minorVersion});
  return disk;
}

// The database with this record in place of its first ones.
void AddRecord(std::vector<Seed>& seeds, const std::string& name, const VblkRecord& record) {
  Disk disk = DynamicDisk();
  disk.At(kVblk).Fill(0, 512, 0);
  PutVblk(disk, kVblk, 0, record);
  AddSeed(seeds, "ldm-" + name, disk);
}

VblkData Counting(std::size_t count) {
  VblkData data;
  for (std::size_t i = 0; i < count; ++i)
    data.Byte(i & 0xFF);
  return data;
}

// A volume record with every field that a flag or a length can add.
VblkData FullVolume() {
  VblkData data;
  data.Id({1}).Text("Volume").Text("gen").Byte(2).Be(0x1234, 2).Chars("ACTIVE").Zeros(8);
  data.Byte(4).Zeros(1).Byte(1).Zeros(3).Byte(0x13);
  data.Number(1, 1).Be(18, 8).Be(18, 8).Number(4096, 2).Number(7, 1).Zeros(3).Byte(0x07);
  data.Raw(CountingBytes(0x10)).Id({2}).Id({3}).Number(64, 2).Text("E:").Raw(CountingBytes(0x20)).Byte(9);
  return data;
}

}  // namespace

void AddLdmSeeds(std::vector<Seed>& seeds) {
  AddSeed(seeds, "ldm-mbr", DynamicDisk());
  AddSeed(seeds, "ldm-four-tocs", DynamicDisk(11));

  AddRecord(seeds, "volume", {.flags = 0xAA, .type = 0x51, .data = FullVolume()});
  AddRecord(seeds, "volume-plain", {.updateStatus = 2, .type = 0x51, .data = Counting(100)});
  AddRecord(seeds, "volume-long", {.updateStatus = 9, .flags = 0xFF, .type = 0x51, .data = Counting(400)});
  AddRecord(seeds, "component", {.flags = 0x10, .type = 0x32, .data = Counting(200)});
  AddRecord(seeds, "partition", {.flags = 0x08, .type = 0x33, .data = Counting(200)});
  AddRecord(seeds, "disk1", {.type = 0x34, .data = Counting(200)});
  AddRecord(seeds, "disk1-long-name", {.type = 0x34, .data = VblkData().Id({1}).Text(std::string(120, 'n'))});
  AddRecord(seeds, "disk2", {.type = 0x44, .data = Counting(200)});
  AddRecord(seeds, "group1", {.type = 0x35, .data = Counting(200)});
  AddRecord(seeds, "group2", {.type = 0x45, .data = Counting(200)});
  AddRecord(seeds, "unknown", {.count = 0, .type = 0x77, .dataLength = 0xFFFFFFFF, .data = Counting(40)});
  AddRecord(seeds, "number-8", {.type = 0x51, .data = VblkData().Fill(300, 0xFF)});

  const auto overwritten = [&](const std::string& name, u64 sector) {
    Disk disk = DynamicDisk();
    disk.At(sector).Fill(0, 64, 0x20);
    AddSeed(seeds, "ldm-no-" + name, disk);
  };
  overwritten("privhead", 6);
  overwritten("toc", kConfig + 2);
  overwritten("vmdb", kVmdb);
  overwritten("vblk", kVblk);
  overwritten("klog", kConfig + 20);

  for (const u16 status : {u16{2}, u16{3}, u16{4}}) {
    Disk disk = DynamicDisk();
    PutVmdb(disk, kVmdb, {.updateStatus = status});
    AddSeed(seeds, "ldm-vmdb-status" + std::to_string(status), disk);
  }
  Disk manyLogs = DynamicDisk();
  PutKlog(manyLogs, kConfig + 20, {.logCount = 0xFFFFFFFF, .klogCount = 0xFFFFFFFF});
  AddSeed(seeds, "ldm-klog-many", manyLogs);
  Disk endless = DynamicDisk();
  PutTocBlock(endless, kConfig + 2, {.config = {.start = 8, .size = ~u64{0}}, .log = {.start = ~u64{0}}});
  AddSeed(seeds, "ldm-endless", endless);
}

}  // namespace trovisk::test
