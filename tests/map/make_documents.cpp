// Makes documents of maps that no single disk has: make_documents FOLDER

#include <cstdio>
#include <string>

#include "tests/map/written.h"

namespace trovisk::test {
namespace {

constexpr std::string_view kHarmful("\"</script>\\\x1b[31m\xff\xed\xa0\x80\n\0\xe2\x80\xae]}", 27);
constexpr u64 kMost = ~u64{0};

void Write(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return;
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

// An extent of each kind, each with another flag; then one with all of them.
void AddExtents(DiskMap& map) {
  for (u32 bit = 0; bit < 12; ++bit) {
    Extent extent;
    extent.first = bit;
    extent.last = kMost;
    extent.kind = static_cast<ExtentKind>(bit % 6);
    extent.flags = 1U << bit;
    map.extents.push_back(extent);
  }
  Extent& extent = map.extents.emplace_back();
  extent.flags = (1U << 12) - 1;
  extent.first = extent.last = extent.depth = extent.attributes = extent.number = kMost;
  extent.type = extent.typeName = extent.name = extent.source = extent.id = kHarmful;
}

DynamicPartition HarmfulPartition(bool onThisDisk) {
  DynamicPartition partition;
  partition.name = partition.disk = kHarmful;
  partition.onThisDisk = onThisDisk;
  partition.id = partition.diskId = partition.start = partition.absoluteStart = kMost;
  partition.size = partition.volumeOffset = partition.column = kMost;
  return partition;
}

void AddDynamicDisk(DiskMap& map) {
  const std::string harmful(kHarmful);
  DynamicDisk& disk = map.dynamicDisk.emplace();
  disk.groupName = disk.groupGuid = disk.diskGuid = harmful;
  disk.logicalStart = disk.logicalSize = disk.databaseStart = disk.databaseSize = kMost;
  disk.areas = {{0, kMost, harmful}, {}};
  disk.disks = {{kMost, harmful, harmful, harmful, true}, {}};
  disk.volumes.resize(2);
  DynamicVolume& volume = disk.volumes.back();
  volume.name = volume.type = volume.state = volume.hint = volume.guid = harmful;
  volume.id = volume.size = volume.partitionType = kMost;
  volume.components.resize(2);
  DynamicComponent& component = volume.components.back();
  component.name = component.type = component.state = harmful;
  component.id = component.stripeSize = component.columns = kMost;
  component.partitions = {HarmfulPartition(true), HarmfulPartition(false), {}};
  disk.orphans = component.partitions;
  disk.remarks = {harmful, ""};
}

void AddStorageSpaces(DiskMap& map) {
  const std::string harmful(kHarmful);
  StorageSpaces& spaces = map.storageSpaces.emplace();
  spaces.sector = spaces.partitionLast = kMost;
  spaces.diskGuid = spaces.poolGuid = spaces.poolName = harmful;
  spaces.poolType = spaces.spaceportGuid = harmful;
  spaces.areas = {{0, kMost, harmful}};
  spaces.objects = {{kMost, harmful, harmful, harmful, kMost}, {}};
  spaces.remarks = {harmful};
}

std::vector<Structure> Structures() {
  std::vector<Structure> structures(5);
  Structure& structure = structures.back();
  structure.sector = structure.count = kMost;
  structure.title = structure.structure = structure.text = kHarmful;
  structure.valid = false;
  structure.messages = {std::string(kHarmful), ""};
  structure.fields = {{std::string(kHarmful), std::string(kHarmful), kMost, kMost, true}, {}};
  for (std::size_t size = 0; size < structures.size(); ++size)
    structures[size].bytes.assign(size, 0xff);
  return structures;
}

DiskMap Everything() {
  const std::string harmful(kHarmful);
  DiskMap map;
  map.disk = {harmful, ~u32{0}, kMost, kMost, harmful, harmful, kMost, kMost, kMost};
  AddExtents(map);
  for (unsigned verdict = 0; verdict < 4; ++verdict)
    map.checks.push_back({kMost, harmful, static_cast<Verdict>(verdict), harmful, harmful});
  AddDynamicDisk(map);
  AddStorageSpaces(map);
  map.cut = {harmful};
  return map;
}

}  // namespace
}  // namespace trovisk::test

int main(int argc, char** argv) {
  using namespace trovisk;
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  test::Write(folder + "/empty.json", test::Written({}));
  test::Write(folder + "/everything.json", test::Written(test::Everything(), test::Structures()));
  DiskMap bare;
  bare.dynamicDisk.emplace();
  bare.storageSpaces.emplace();
  test::Write(folder + "/bare.json", test::Written(bare, {{}}));
  return 0;
}
