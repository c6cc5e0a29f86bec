// What belongs together, for a person: the volumes of a dynamic disk with their components and partitions,
// and the objects of a storage pool.

#include <algorithm>

#include "map/text_layout.h"
#include "map/text_map.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostLines = 500;

using Lines = std::vector<std::string>;

// The texts that are not empty, with commas.
std::string List(std::initializer_list<std::string> texts) {
  std::string list;
  for (const std::string& text : texts) {
    if (!text.empty()) list.append(list.empty() ? "" : ", ").append(text);
  }
  return list;
}

std::string InBraces(const std::string& guid) {
  return guid.empty() ? "" : "{" + guid + "}";
}

std::string DiskName(const std::string& name) {
  return name.empty() ? "an unknown disk" : name;
}

std::string PartitionLine(const DynamicPartition& partition, u64 columns, u32 sectorSize) {
  std::string where = "on " + DiskName(partition.disk);
  if (partition.onThisDisk)
    where += " (this disk, from sector " + std::to_string(partition.absoluteStart) + ")";
  else
    where += " from sector " + std::to_string(partition.start) + " of its data";
  const std::string column = columns > 1 ? "column " + std::to_string(partition.column) + ": " : "";
  const std::string offset =
      partition.volumeOffset == 0 ? "" : "at sector " + std::to_string(partition.volumeOffset) + " of it";
  return column + List({partition.name, SizeOfSectors(partition.size, sectorSize), where, offset});
}

// Lines of which the first is less far in.
std::string Item(std::size_t indent, const std::string& text, const TextStyle& style) {
  return Wrap(std::string(indent, ' '), indent + 2, text, style.width);
}

void AddVolume(const DynamicVolume& volume, u32 sectorSize, const TextStyle& style, Lines& lines) {
  const auto add = [&](std::size_t indent, const std::string& text) {
    lines.push_back(Item(indent, text, style));
  };
  add(2, List({volume.name, volume.type, SizeOfSectors(volume.size, sectorSize), volume.state, volume.hint}));
  for (const DynamicComponent& component : volume.components) {
    add(4, List({component.name, component.type,
                 component.columns > 1 ? Counted(component.columns, "column") : "",
                 component.stripeSize == 0 ? ""
                                           : "stripes of " + SizeOfSectors(component.stripeSize, sectorSize),
                 component.state}));
    for (const DynamicPartition& partition : component.partitions)
      add(6, PartitionLine(partition, component.columns, sectorSize));
  }
}

std::string Bounded(const Lines& lines, const TextStyle& style) {
  std::string text;
  for (std::size_t i = 0; i < lines.size() && (style.all || i < kMostLines); ++i)
    text += lines[i];
  return text + MoreLine(lines.size(), kMostLines, style);
}

std::string DynamicDiskText(const DynamicDisk& dynamic, u32 sectorSize, const TextStyle& style) {
  Lines lines;
  for (const DynamicDiskMember& member : dynamic.disks) {
    lines.push_back(Item(2,
                         "disk " + List({member.name, member.thisDisk ? "this one" : "",
                                         member.device.empty() ? "" : "last known as " + member.device,
                                         InBraces(member.guid)}),
                         style));
  }
  for (const DynamicVolume& volume : dynamic.volumes)
    AddVolume(volume, sectorSize, style, lines);
  for (const DynamicPartition& orphan : dynamic.orphans)
    lines.push_back(Item(2, "without a volume: " + PartitionLine(orphan, 0, sectorSize), style));
  for (const std::string& remark : dynamic.remarks)
    lines.push_back(Item(2, remark, style));
  const std::string group = List({dynamic.groupName, InBraces(dynamic.groupGuid)});
  return Item(0, "Dynamic disk of the group " + group, style) + Bounded(lines, style);
}

std::string StorageSpacesText(const StorageSpaces& spaces, const TextStyle& style) {
  Lines lines;
  if (!spaces.diskGuid.empty()) lines.push_back(Item(2, "disk {" + spaces.diskGuid + "}, this one", style));
  for (const SpacesObject& object : spaces.objects) {
    lines.push_back(Item(2,
                         object.kind + " " + std::to_string(object.id) + ": " +
                             List({object.name, InBraces(object.guid), Counted(object.parts, "record")}),
                         style));
  }
  for (const std::string& remark : spaces.remarks)
    lines.push_back(Item(2, remark, style));
  const std::string pool = List({spaces.poolName, InBraces(spaces.poolGuid)});
  return Item(0, "Storage pool " + pool + ", its database in sector " + std::to_string(spaces.sector),
              style) +
         Bounded(lines, style);
}

}  // namespace

std::string JoinedViews(const DiskMap& map, const TextStyle& style) {
  std::string text;
  if (map.dynamicDisk) text = DynamicDiskText(*map.dynamicDisk, map.disk.sectorSize, style);
  if (map.storageSpaces)
    text.append(text.empty() ? "" : "\n").append(StorageSpacesText(*map.storageSpaces, style));
  return text;
}

}  // namespace trovisk
