#include "map/json_map.h"

#include "map/base64.h"
#include "map/json_writer.h"

namespace trovisk {
namespace {

Json NumberOrNull(u64 number) {
  return number == 0 ? Json(nullptr) : JsonNumber(number);
}

void WriteDisk(JsonWriter& json, const DiskFacts& disk) {
  json.OpenObject("disk");
  json.Member("path", disk.path);
  json.Member("sector_size", disk.sectorSize);
  json.Member("sectors", NumberOrNull(disk.sectors));
  json.Member("bytes", NumberOrNull(disk.bytes));
  json.Member("scheme", disk.scheme);
  json.Member("id", disk.id);
  json.Member("first_usable", NumberOrNull(disk.firstUsable));
  json.Member("last_usable", NumberOrNull(disk.lastUsable));
  json.Member("table_length", NumberOrNull(disk.tableLength));
  json.Close();
}

Json ExtentAsJson(const Extent& extent) {
  Json flags = Json::array();
  for (const std::string_view flag : NamesOfFlags(extent.flags))
    flags.push_back(flag);
  return {{"first", JsonNumber(extent.first)},
          {"last", JsonNumber(extent.last)},
          {"kind", NameOfKind(extent.kind)},
          {"type", extent.type},
          {"type_name", extent.typeName},
          {"name", extent.name},
          {"source", extent.source},
          {"flags", std::move(flags)},
          {"depth", JsonNumber(extent.depth)},
          {"number", NumberOrNull(extent.number)},
          {"id", extent.id},
          {"attributes", JsonNumber(extent.attributes)}};
}

Json CheckAsJson(const Check& check) {
  return {{"sector", JsonNumber(check.sector)},
          {"check", check.name},
          {"verdict", NameOfVerdict(check.verdict)},
          {"found", check.found},
          {"expected", check.expected}};
}

Json FieldAsJson(const StructureField& field) {
  return {{"label", field.label},
          {"value", field.value},
          {"offset", field.placed ? JsonNumber(field.offset) : Json(nullptr)},
          {"length", field.placed ? JsonNumber(field.length) : Json(nullptr)}};
}

void WriteStructure(JsonWriter& json, const Structure& structure) {
  json.OpenObject();
  json.Member("sector", JsonNumber(structure.sector));
  json.Member("count", JsonNumber(structure.count));
  json.Member("title", structure.title);
  json.Member("structure", structure.structure);
  json.Member("valid", structure.valid);
  json.Member("messages", structure.messages);
  json.OpenList("fields");
  for (const StructureField& field : structure.fields)
    json.Item(FieldAsJson(field));
  json.Close();
  json.Member("text", structure.text);
  json.Member("bytes", Base64(structure.bytes));
  json.Close();
}

void WriteAreas(JsonWriter& json, const std::vector<Area>& areas) {
  json.OpenList("areas");
  for (const Area& area : areas) {
    json.Item({{"first", JsonNumber(area.first)}, {"last", JsonNumber(area.last)}, {"name", area.name}});
  }
  json.Close();
}

void WritePartitions(JsonWriter& json, std::string_view key,
                     const std::vector<DynamicPartition>& partitions) {
  json.OpenList(key);
  for (const DynamicPartition& partition : partitions) {
    json.Item({{"id", JsonNumber(partition.id)},
               {"name", partition.name},
               {"disk_id", JsonNumber(partition.diskId)},
               {"disk", partition.disk},
               {"on_this_disk", partition.onThisDisk},
               {"start", JsonNumber(partition.start)},
               {"absolute_start", partition.onThisDisk ? JsonNumber(partition.absoluteStart) : Json(nullptr)},
               {"size", JsonNumber(partition.size)},
               {"volume_offset", JsonNumber(partition.volumeOffset)},
               {"column", JsonNumber(partition.column)}});
  }
  json.Close();
}

void WriteVolume(JsonWriter& json, const DynamicVolume& volume) {
  json.OpenObject();
  json.Member("id", JsonNumber(volume.id));
  json.Member("name", volume.name);
  json.Member("type", volume.type);
  json.Member("state", volume.state);
  json.Member("size", JsonNumber(volume.size));
  json.Member("hint", volume.hint);
  json.Member("guid", volume.guid);
  json.Member("partition_type", JsonNumber(volume.partitionType));
  json.OpenList("components");
  for (const DynamicComponent& component : volume.components) {
    json.OpenObject();
    json.Member("id", JsonNumber(component.id));
    json.Member("name", component.name);
    json.Member("type", component.type);
    json.Member("state", component.state);
    json.Member("stripe_size", JsonNumber(component.stripeSize));
    json.Member("columns", JsonNumber(component.columns));
    WritePartitions(json, "partitions", component.partitions);
    json.Close();
  }
  json.Close();
  json.Close();
}

void WriteDynamicDisk(JsonWriter& json, const DynamicDisk& disk) {
  json.OpenObject("dynamic_disk");
  json.Member("group_name", disk.groupName);
  json.Member("group_guid", disk.groupGuid);
  json.Member("disk_guid", disk.diskGuid);
  json.Member("logical_start", JsonNumber(disk.logicalStart));
  json.Member("logical_size", JsonNumber(disk.logicalSize));
  json.Member("database_start", JsonNumber(disk.databaseStart));
  json.Member("database_size", JsonNumber(disk.databaseSize));
  WriteAreas(json, disk.areas);
  json.OpenList("disks");
  for (const DynamicDiskMember& member : disk.disks) {
    json.Item({{"id", JsonNumber(member.id)},
               {"name", member.name},
               {"guid", member.guid},
               {"device", member.device},
               {"this_disk", member.thisDisk}});
  }
  json.Close();
  json.OpenList("volumes");
  for (const DynamicVolume& volume : disk.volumes)
    WriteVolume(json, volume);
  json.Close();
  WritePartitions(json, "orphans", disk.orphans);
  json.Member("remarks", disk.remarks);
  json.Close();
}

void WriteStorageSpaces(JsonWriter& json, const StorageSpaces& spaces) {
  json.OpenObject("storage_spaces");
  json.Member("sector", JsonNumber(spaces.sector));
  json.Member("partition_last", JsonNumber(spaces.partitionLast));
  json.Member("disk_guid", spaces.diskGuid);
  json.Member("pool_guid", spaces.poolGuid);
  json.Member("pool_name", spaces.poolName);
  json.Member("pool_type", spaces.poolType);
  json.Member("spaceport_guid", spaces.spaceportGuid);
  WriteAreas(json, spaces.areas);
  json.OpenList("objects");
  for (const SpacesObject& object : spaces.objects) {
    json.Item({{"id", JsonNumber(object.id)},
               {"kind", object.kind},
               {"name", object.name},
               {"guid", object.guid},
               {"parts", JsonNumber(object.parts)}});
  }
  json.Close();
  json.Member("remarks", spaces.remarks);
  json.Close();
}

}  // namespace

std::string StructureAsText(const Structure& structure) {
  std::string text;
  JsonWriter json([&](std::string_view piece) { text += piece; });
  WriteStructure(json, structure);
  return text;
}

void WriteMapAsJson(const DiskMap& map, const StructureVisitor& structures,
                    const std::function<void(std::string_view)>& write) {
  JsonWriter json(write);
  json.OpenObject();
  json.Member("schema", kMapSchema);
  WriteDisk(json, map.disk);
  json.OpenList("extents");
  for (const Extent& extent : map.extents)
    json.Item(ExtentAsJson(extent));
  json.Close();
  json.OpenList("structures");
  const auto cutBehind = structures([&](const Structure& structure) { WriteStructure(json, structure); });
  json.Close();
  json.OpenList("checks");
  for (const Check& check : map.checks)
    json.Item(CheckAsJson(check));
  json.Close();
  if (map.dynamicDisk) {
    WriteDynamicDisk(json, *map.dynamicDisk);
  } else {
    json.Member("dynamic_disk", nullptr);
  }
  if (map.storageSpaces) {
    WriteStorageSpaces(json, *map.storageSpaces);
  } else {
    json.Member("storage_spaces", nullptr);
  }
  std::vector<std::string> cut = map.cut;
  if (cutBehind)
    cut.push_back("Structures behind sector " + std::to_string(*cutBehind) + " are not among these.");
  json.Member("cut", cut);
  json.Close();
}

}  // namespace trovisk
