#include "map/sfdisk.h"

#include <algorithm>
#include <map>

namespace trovisk {
namespace {

constexpr u64 kGptEntrySize = 128;        // bytes; sfdisk writes no others
constexpr u64 kRegularEntries = 128;      // for which it makes room unless it is told otherwise
constexpr u64 kMostEntries = 0xFFFFFFFF;  // of the header's field
constexpr u64 kFirstLogical = 5;

// What the script may use of the disk. Absolute sectors, inclusive.
struct Room {
  u64 first = 0;
  u64 last = 0;
  u64 entries = 0;
};

// What earlier lines have taken: first and last sectors, none over another.
using Taken = std::map<u64, u64>;

bool Overlaps(const Taken& taken, u64 first, u64 last) {
  const auto behind = taken.upper_bound(last);
  return behind != taken.begin() && std::prev(behind)->second >= first;
}

bool IsOfGpt(const Extent& extent) {
  return extent.type.find('-') != std::string::npos;
}

bool IsExtended(const Extent& extent) {
  return extent.type == "0x05" || extent.type == "0x0f" || extent.type == "0x85";
}

// A header that leaves room for itself and its array at both ends of the disk.
bool IsPossible(const Room& room, const DiskMap& map) {
  if (room.entries == 0 || room.entries > kMostEntries || map.disk.sectorSize == 0) return false;
  const u64 sectorSize = map.disk.sectorSize;
  const u64 array = (room.entries * kGptEntrySize + sectorSize - 1) / sectorSize;
  return room.first >= 2 + array && room.first <= room.last && array + 1 < map.disk.sectors &&
         room.last < map.disk.sectors - array - 1;
}

// The range that the header states, or where that cannot be the regular one.
Room RoomOfGpt(const DiskMap& map) {
  const Room stated = {map.disk.firstUsable, map.disk.lastUsable, map.disk.tableLength};
  if (IsPossible(stated, map)) return stated;
  const u64 sectorSize = std::max<u64>(map.disk.sectorSize, 1);
  const u64 array = (kRegularEntries * kGptEntrySize + sectorSize - 1) / sectorSize;
  const Room regular = {2 + array, map.disk.sectors - array - 2, kRegularEntries};
  return IsPossible(regular, map) ? regular : Room();
}

// Inside of quotes: what sfdisk takes for something else, in hexadecimal behind \x.
std::string Quoted(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "\"";
  for (const char character : name) {
    const u8 byte = static_cast<u8>(character);
    if (byte < 0x20 || byte == 0x7F || std::string_view("\"\\$`").find(character) != std::string_view::npos) {
      text.append("\\x");
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 0xFU];
    } else {
      text += character;
    }
  }
  return text + "\"";
}

// Bits 0 to 2 by their names, 48 to 63 by their numbers; sfdisk knows no others.
std::string Attributes(u64 attributes) {
  std::string bits;
  for (unsigned bit = 48; bit < 64; ++bit) {
    if ((attributes >> bit & 1) != 0) bits.append(bits.empty() ? "GUID:" : ",").append(std::to_string(bit));
  }
  std::string text;
  if ((attributes & 1) != 0) text.append("RequiredPartition ");
  if ((attributes & 2) != 0) text.append("NoBlockIOProtocol ");
  if ((attributes & 4) != 0) text.append("LegacyBIOSBootable ");
  text.append(bits);
  if (text.ends_with(' ')) text.pop_back();
  return text;
}

bool HasAttributesThatGetLost(const Extent& extent) {
  return (extent.attributes >> 3 & ((u64{1} << 45) - 1)) != 0;
}

std::string Line(const Extent& extent) {
  std::string text = "disk" + std::to_string(extent.number) + " : start=" + std::to_string(extent.first);
  const u64 sectors = (extent.flags & (kFlagEmpty | kFlagReversed)) == 0 ? extent.last - extent.first + 1 : 0;
  if (sectors != 0) text.append(", size=").append(std::to_string(sectors));
  if (!IsOfGpt(extent)) {
    text.append(", type=").append(extent.type, std::min<std::size_t>(2, extent.type.size()));
    if ((extent.flags & kFlagActive) != 0) text.append(", bootable");
    return text;
  }
  text.append(", type=").append(extent.type).append(", uuid=").append(extent.id);
  if (!extent.name.empty()) text.append(", name=").append(Quoted(extent.name));
  const std::string attributes = Attributes(extent.attributes);
  if (!attributes.empty()) text.append(", attrs=\"").append(attributes).append("\"");
  return text;
}

// Why sfdisk would refuse the partition whatever the others are; empty: it would not.
std::string_view WhyNot(const Extent& extent) {
  if ((extent.flags & kFlagOtherCopy) != 0) return "in the other copy of the table";
  if ((extent.flags & kFlagOtherReading) != 0) return "by another reading of the extended partition";
  if ((extent.flags & kFlagEmpty) != 0) return "no sectors";
  if ((extent.flags & kFlagReversed) != 0) return "ends before it starts";
  if ((extent.flags & kFlagBeyondEnd) != 0) return "beyond the end of the disk";
  return {};
}

// Takes the lines one by one, as sfdisk does.
struct Script {
  bool gpt = false;
  Room room;
  Taken taken = {};
  Taken logical = {};  // with the record in front of each
  const Extent* extended = nullptr;
  std::string text = {};

  std::string_view Place(const Extent& extent);
  void Add(const Extent& extent);
};

// Takes the partition's sectors, or says why they are not to be had.
std::string_view Script::Place(const Extent& extent) {
  const std::string_view reason = WhyNot(extent);
  if (!reason.empty()) return reason;
  const bool logicalOne = !gpt && extent.number >= kFirstLogical;
  if (logicalOne) {
    const u64 record = extent.first - 1;
    if (extended == nullptr || extent.first <= extended->first || extent.last > extended->last)
      return "outside of the extended partition";
    if (Overlaps(logical, record, extent.last)) return "over another one, or no room for its record";
    logical[record] = extent.last;
    return {};
  }
  if (gpt && extent.number > room.entries) return "beyond the end of the array";
  if (extent.first < room.first || extent.last > room.last) return "outside of the usable sectors";
  if (!gpt && IsExtended(extent) && extended != nullptr) return "a second extended partition";
  if (Overlaps(taken, extent.first, extent.last)) return "over another one";
  taken[extent.first] = extent.last;
  if (!gpt && IsExtended(extent)) extended = &extent;
  return {};
}

void Script::Add(const Extent& extent) {
  const std::string_view reason = Place(extent);
  if (!reason.empty()) text.append("# ").append(reason).append(": ");
  text.append(Line(extent)).append("\n");
  if (reason.empty() && HasAttributesThatGetLost(extent))
    text.append("# of disk" + std::to_string(extent.number) +
                " sfdisk does not write attribute bits 3 to 47\n");
  if (reason.empty() && extent.nameReplaced)
    text.append("# in the name of disk" + std::to_string(extent.number) + " ? stands for other characters\n");
}

void AddHeader(Script& script, const DiskMap& map) {
  std::string& text = script.text;
  const bool idFits = !map.disk.id.empty() && script.gpt == (map.disk.id.find('-') != std::string::npos);
  text.append("label: ").append(script.gpt ? "gpt" : "dos").append("\n");
  if (idFits) text.append("label-id: ").append(map.disk.id).append("\n");
  text.append("unit: sectors\n");
  if (script.gpt && script.room.entries != 0) {
    text.append("first-lba: ").append(std::to_string(script.room.first)).append("\n");
    text.append("last-lba: ").append(std::to_string(script.room.last)).append("\n");
    text.append("table-length: ").append(std::to_string(script.room.entries)).append("\n");
  }
  text.append("sector-size: ").append(std::to_string(map.disk.sectorSize)).append("\n\n");
}

// What the table that is not written states, as comments.
void AddOtherTable(Script& script, const DiskMap& map) {
  bool any = false;
  for (const Extent& extent : map.extents) {
    const bool partition = extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical;
    if (!partition || extent.number == 0 || IsOfGpt(extent) == script.gpt || extent.type == "0xee") continue;
    if (!any)
      script.text.append(script.gpt
                             ? "\n# the MBR states too:\n"
                             : "\n# a GPT on this disk, which no entry of the MBR leads to, states:\n");
    any = true;
    script.text.append("# ").append(Line(extent)).append("\n");
  }
}

}  // namespace

std::string MapAsSfdisk(const DiskMap& map) {
  Script script{.gpt = map.disk.scheme.starts_with("GPT"), .room = {1, ~u64{0}, 4}};
  if (!script.gpt && map.disk.scheme != "MBR") return "# no partition table was found\n";
  if (script.gpt) script.room = RoomOfGpt(map);
  AddHeader(script, map);

  std::vector<const Extent*> partitions;
  for (const Extent& extent : map.extents) {
    const bool partition = extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical;
    // Those of a dynamic disk have no number: its database stands beside the table.
    if (partition && extent.number != 0 && IsOfGpt(extent) == script.gpt) partitions.push_back(&extent);
  }
  std::stable_sort(partitions.begin(), partitions.end(),
                   [](const Extent* a, const Extent* b) { return a->number < b->number; });
  if (std::any_of(partitions.begin(), partitions.end(),
                  [](const Extent* extent) { return (extent->flags & kFlagUnsound) != 0; })) {
    script.text.append("# no copy of this table has the checksums that it should have\n");
  }
  for (const Extent* extent : partitions)
    script.Add(*extent);
  AddOtherTable(script, map);
  for (const std::string& sentence : map.cut)
    script.text.append("# ").append(sentence).append("\n");
  return script.text;
}

}  // namespace trovisk
