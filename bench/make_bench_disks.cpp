// Makes the disks that script/bench measures on: make_bench_disks FOLDER MIB
//
// MIB: the size of the random and of the empty disk. The others are sparse, or built from one sector written
// many times.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/disks/samples.h"
#include "tests/disks/spaces.h"

namespace trovisk::test {
namespace {

constexpr u64 kMiB = u64{1} << 20;

void WriteRandom(const std::string& path, u64 bytes) {
  std::ofstream image(path, std::ios::binary);
  std::mt19937_64 random(47);
  for (u64 written = 0; written < bytes; written += sizeof(u64)) {
    const u64 value = random();
    image.write(reinterpret_cast<const char*>(&value), sizeof value);
  }
}

void WriteZeros(const std::string& path, u64 bytes) {
  std::ofstream image(path, std::ios::binary);
  const std::vector<char> zeros(kMiB);
  for (u64 written = 0; written < bytes; written += zeros.size())
    image.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
}

// The same partitions on a disk of any size: the backup of the table stands at its end.
void WriteSized(const std::string& path, u64 bytes) {
  Disk disk(bytes / 512);
  std::vector<GptEntry> entries;
  for (u64 first = 2048; entries.size() < 4; first += 4096) {
    entries.push_back({.first = first, .last = first + 4095, .name = u"Data"});
  }
  PutGpt(disk, entries);
  disk.Write(path);
}

// A Storage Replica partition from sector 2048 on: one DPOM sector and so many DPOD sectors.
void WriteReplica(const std::string& path, u64 records) {
  constexpr u64 kFirst = 2048;
  Disk disk(kFirst + records + 4096);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst + records + 1}});
  PutDpom(disk, kFirst, {.dataSize = 4096});
  disk.Write(path);
  Disk scratch(1);
  const trovisk::Bytes record =
      PutDpod(scratch, 0, {.dataSize = 512, .partitionGuid = kStorageReplicaType, .words = {1, 0, 7}}).View();
  std::fstream image(path, std::ios::binary | std::ios::in | std::ios::out);
  image.seekp(static_cast<std::streamoff>((kFirst + 1) * 512));
  for (u64 i = 0; i < records; ++i)
    image.write(reinterpret_cast<const char*>(record.data()), 512);
}

// A partition table of so many entries, each of which has a sector to register. What stands there is empty,
// which ends the passes at the first of these sectors: the time is that of the tables.
void WriteEntries(const std::string& path, u64 count) {
  const u64 tableSectors = count * 128 / 512;
  Disk disk(2 + tableSectors + 4 * count);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.entryCount = static_cast<u32>(count)});
  disk.Write(path);
  std::fstream image(path, std::ios::binary | std::ios::in | std::ios::out);
  image.seekp(std::streamoff{2} * 512);
  for (u64 i = 0; i < count; i += 4) {
    Disk scratch(1);
    std::vector<GptEntry> entries;
    for (u64 entry = i; entry < i + 4; ++entry) {
      const u64 first = 2 + tableSectors + 4 * entry;
      entries.push_back({.type = kStorageSpacesType, .first = first, .last = first + 3, .name = u"Data"});
    }
    PutGptEntries(scratch, 0, entries);
    const trovisk::Bytes sector = scratch.At(0).View();
    image.write(reinterpret_cast<const char*>(sector.data()), 512);
  }
}

// A full table of 128 partitions that nothing is known of.
void WriteFull(const std::string& path, u64 bytes) {
  Disk disk(bytes / 512);
  constexpr u64 kEntries = 128;
  const u64 size = (disk.Sectors() - 4096) / kEntries / 2048 * 2048;
  std::vector<GptEntry> entries;
  for (u64 i = 0; i < kEntries; ++i)
    entries.push_back({.first = 2048 + i * size, .last = 2047 + (i + 1) * size, .name = u"Data"});
  PutGpt(disk, entries);
  disk.Write(path);
}

// A Storage Replica partition of so many sectors, all but the first of which are zeros.
void WriteEmptyReplica(const std::string& path, u64 sectors) {
  constexpr u64 kFirst = 2048;
  Disk disk(kFirst + sectors + 4096);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst + sectors - 1}});
  PutDpom(disk, kFirst, {.dataSize = 4096});
  disk.Write(path);
}

// So many logical partitions, each record's link the next one's.
void WriteChain(const std::string& path, u64 links) {
  constexpr u64 kFirst = 2048;
  constexpr u64 kStep = 4;
  Disk disk(kFirst + kStep * links);
  const auto count = static_cast<u32>(kStep * links);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0F, .first = kFirst, .count = count}}});
  disk.Write(path);
  std::fstream image(path, std::ios::binary | std::ios::in | std::ios::out);
  for (u64 i = 0; i < links; ++i) {
    BootRecord record = {.entries = {{.type = 0x83, .first = 1, .count = kStep - 1}}};
    const auto next = static_cast<u32>(kStep * (i + 1));
    if (i + 1 < links) record.entries[1] = {.type = 0x05, .first = next, .count = kStep};
    Disk scratch(1);
    const trovisk::Bytes sector = PutBootRecord(scratch, 0, record).View();
    image.seekp(static_cast<std::streamoff>((kFirst + kStep * i) * 512));
    image.write(reinterpret_cast<const char*>(sector.data()), 512);
  }
}

// A dynamic disk's database of so many sectors of partition records.
void WriteLdmRecords(const std::string& path, u64 sectors) {
  constexpr u64 kConfig = 64;
  constexpr u64 kRegion = 8;
  Disk disk(kConfig + kRegion + sectors + 4096);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 63, .count = 2048}}});
  const u64 size = kRegion + sectors + 64;
  PutPrivhead(disk, 6,
              {.alternate1 = size - 2,
               .alternate2 = size - 1,
               .logicalStart = 63,
               .logicalEnd = 2048,
               .configStart = kConfig,
               .configSize = size,
               .tocCount = 2,
               .tocSize = size - 8,
               .configCount = 1,
               .logCount = 1,
               .configRegionSize = sectors + 1,
               .logRegionSize = 1});
  PutTocBlock(disk, kConfig + 2, {.config = {.name = "config", .start = kRegion, .size = sectors + 1}});
  PutVmdb(disk, kConfig + kRegion, {});
  u32 sequence = 4;
  for (u64 sector = kConfig + kRegion + 1; sector <= kConfig + kRegion + sectors; ++sector) {
    for (std::size_t slot = 0; slot < 4; ++slot, ++sequence) {
      VblkData data;
      data.Be(0x04000000 + sequence, 5).Text("Disk1-01").Zeros(12).Be(sequence, 8).Be(0, 8);
      data.Number(2048, 2).Be(0x0106, 2).Be(0x0102, 2);
      PutVblk(disk, sector, slot, {.sequence = sequence, .group = sequence, .type = 0x33, .data = data});
    }
  }
  disk.Write(path);
}

// A Storage Spaces partition of so many sectors of records.
void WriteSpacesRecords(const std::string& path, u64 sectors) {
  constexpr u64 kFirst = 2048;
  Disk disk(kFirst + sectors + 8192);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = kFirst, .last = kFirst + sectors + 4096}});
  PutSpaceDb(disk, kFirst, {});
  PutSdbc(disk, kFirst + 8, {});
  for (u64 i = 0; i < sectors; ++i) {
    std::vector<SdbbRecord> records;
    for (u32 slot = 0; slot < 8; ++slot) {
      const u32 id = static_cast<u32>(8 * i) + slot + 1;
      records.push_back({.identifier = id, .parent = id, .type = 1});
    }
    PutSdbb(disk, kFirst + 9 + i, records);
  }
  disk.Write(path);
}

}  // namespace
}  // namespace trovisk::test

int main(int argc, char** argv) {
  using namespace trovisk::test;
  if (argc != 3) {
    std::cerr << "usage: make_bench_disks FOLDER MIB\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + '/';
  const trovisk::u64 bytes = std::strtoull(argv[2], nullptr, 10) * kMiB;
  std::filesystem::create_directories(folder);
  WriteRandom(folder + "random.img", bytes);
  WriteZeros(folder + "zeros.img", bytes);
  for (const unsigned power : {30U, 41U, 44U, 62U})
    WriteSized(folder + "size" + std::to_string(power) + ".img", trovisk::u64{1} << power);
  for (const trovisk::u64 records : {10U, 1000000U})
    WriteReplica(folder + "replica" + std::to_string(records) + ".img", records);
  for (const unsigned power : {18U, 19U, 20U})
    WriteEntries(folder + "entries" + std::to_string(power) + ".img", trovisk::u64{1} << power);
  WriteFull(folder + "full44.img", trovisk::u64{1} << 44);
  WriteEmptyReplica(folder + "replica31.img", trovisk::u64{1} << 31);
  WriteChain(folder + "chain.img", 1000000);
  WriteLdmRecords(folder + "ldm.img", 10000);
  WriteSpacesRecords(folder + "spaces.img", 10000);
  return 0;
}
