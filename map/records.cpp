// The map as records for programs: a line each, columns separated by tabs, the record's name first, '-' for
// what is empty. A line that begins with '#' names the columns of the records of one kind.

#include <initializer_list>

#include "map/extent_rows.h"
#include "map/text_map.h"

namespace trovisk {
namespace {

// No value ends its column or its line, and none looks like none.
std::string Value(std::string_view text) {
  if (text == "-") return "\"-\"";
  return text.empty() ? "-" : SafeUtf8(text);
}

std::string Value(u64 number) {
  return std::to_string(number);
}

std::string Record(std::initializer_list<std::string> values) {
  std::string line;
  for (const std::string& value : values)
    line.append(line.empty() ? "" : "\t").append(value);
  return line.append("\n");
}

std::string FlagsValue(u32 flags) {
  std::string text;
  for (const std::string_view name : NamesOfFlags(flags))
    text.append(text.empty() ? "" : ",").append(name);
  return Value(text);
}

std::string Extents(const DiskMap& map) {
  std::string text = Record({"#extent", "first", "last", "sectors", "kind", "type", "type_name", "name",
                             "source", "flags", "depth", "number", "id", "attributes"});
  for (const Extent& extent : map.extents) {
    const u64 sectors = SectorsOf(extent);
    const bool counted = sectors != 0 || (extent.flags & kFlagEmpty) != 0;
    text +=
        Record({"extent", Value(extent.first), Value(extent.last), counted ? Value(sectors) : "-",
                Value(NameOfKind(extent.kind)), Value(extent.type), Value(extent.typeName),
                Value(extent.name), Value(extent.source), FlagsValue(extent.flags), Value(extent.depth),
                extent.number == 0 ? "-" : Value(extent.number), Value(extent.id), Value(extent.attributes)});
  }
  return text;
}

std::string Checks(const DiskMap& map) {
  std::string text = Record({"#check", "sector", "verdict", "check", "found", "expected"});
  for (const Check& check : map.checks) {
    text += Record({"check", Value(check.sector), Value(NameOfVerdict(check.verdict)), Value(check.name),
                    Value(check.found), Value(check.expected)});
  }
  return text;
}

std::string Piece(const DynamicPartition& piece, std::string_view volume, std::string_view component) {
  return Record({"piece", Value(volume), Value(component), Value(piece.name), Value(piece.disk),
                 piece.onThisDisk ? Value(piece.absoluteStart) : "-", Value(piece.start), Value(piece.size),
                 Value(piece.volumeOffset), Value(piece.column)});
}

std::string DynamicRecords(const DynamicDisk& dynamic) {
  std::string text = Record({"#group", "name", "guid", "disk_guid", "logical_start", "logical_size",
                             "database_start", "database_size"});
  text += Record({"group", Value(dynamic.groupName), Value(dynamic.groupGuid), Value(dynamic.diskGuid),
                  Value(dynamic.logicalStart), Value(dynamic.logicalSize), Value(dynamic.databaseStart),
                  Value(dynamic.databaseSize)});
  text += Record({"#member", "name", "guid", "state", "device"});
  for (const DynamicDiskMember& member : dynamic.disks) {
    text += Record({"member", Value(member.name), Value(member.guid),
                    member.thisDisk ? "this disk" : "another disk", Value(member.device)});
  }
  text += Record({"#volume", "name", "type", "state", "size", "hint", "guid", "partition_type"});
  text += Record({"#component", "volume", "name", "type", "state", "stripe_size", "columns"});
  text += Record({"#piece", "volume", "component", "name", "disk", "sector", "start", "size", "volume_offset",
                  "column"});
  for (const DynamicVolume& volume : dynamic.volumes) {
    text += Record({"volume", Value(volume.name), Value(volume.type), Value(volume.state), Value(volume.size),
                    Value(volume.hint), Value(volume.guid), Value(volume.partitionType)});
    for (const DynamicComponent& component : volume.components) {
      text += Record({"component", Value(volume.name), Value(component.name), Value(component.type),
                      Value(component.state), Value(component.stripeSize), Value(component.columns)});
      for (const DynamicPartition& piece : component.partitions)
        text += Piece(piece, volume.name, component.name);
    }
  }
  for (const DynamicPartition& orphan : dynamic.orphans)
    text += Piece(orphan, {}, {});
  return text;
}

std::string SpacesRecords(const StorageSpaces& spaces) {
  std::string text = Record({"#pool", "sector", "last", "name", "guid", "disk_guid"});
  text += Record({"pool", Value(spaces.sector), Value(spaces.partitionLast), Value(spaces.poolName),
                  Value(spaces.poolGuid), Value(spaces.diskGuid)});
  text += Record({"#object", "kind", "id", "name", "guid", "records"});
  for (const SpacesObject& object : spaces.objects) {
    text += Record({"object", Value(object.kind), Value(object.id), Value(object.name), Value(object.guid),
                    Value(object.parts)});
  }
  return text;
}

// Sentences on a part of the map.
std::string Remarks(std::string_view part, const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences)
    text += Record({"remark", Value(part), Value(sentence)});
  return text;
}

}  // namespace

std::string MapAsRecords(const DiskMap& map) {
  std::string text =
      Record({"#disk", "path", "sector_size", "sectors", "bytes", "scheme", "id", "structures", "invalid"});
  text += Record({"disk", Value(map.disk.path), Value(map.disk.sectorSize), Value(map.disk.sectors),
                  Value(map.disk.bytes), Value(map.disk.scheme), Value(map.disk.id), Value(map.structures),
                  Value(map.invalidStructures)});
  text += Extents(map) + Checks(map);
  if (map.dynamicDisk) text += DynamicRecords(*map.dynamicDisk);
  if (map.storageSpaces) text += SpacesRecords(*map.storageSpaces);
  text += Record({"#remark", "part", "sentence"});
  text += Remarks("cut", map.cut);
  if (map.dynamicDisk) text += Remarks("dynamic disk", map.dynamicDisk->remarks);
  if (map.storageSpaces) text += Remarks("storage spaces", map.storageSpaces->remarks);
  text += Record({"#verdict", "status", "sentence"});
  return text + Record({"verdict", Value(static_cast<u64>(map.ExitStatus())), VerdictInWords(map)});
}

}  // namespace trovisk
