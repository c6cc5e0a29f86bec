#include "map/differences.h"

#include <algorithm>
#include <map>
#include <numeric>

#include "frame/examination.h"
#include "frame/report/report.h"
#include "map/byte_differences.h"
#include "map/item_pairs.h"
#include "map/json_writer.h"

namespace trovisk {
namespace {

constexpr u64 kMostLines = 10000;
constexpr std::size_t kLongestValue = 120;  // bytes

// A list of the document, and how its items are recognised and called.
struct Section {
  std::span<const std::string_view> labels;  // of the values that are compared
  std::vector<ItemKey> keys;
  std::string (*title)(const DocumentItem& item);
  std::vector<std::size_t> place;  // the values that say where an item is
};

// As it stands where it cannot be taken for anything else, otherwise as JSON writes it. A name of the disk's
// could be made to look like the rest of its line, or like another line's.
std::string Shown(std::string_view value) {
  const bool plain = !value.empty() && value.front() != ' ' && value.back() != ' ' &&
                     value.find("->") == std::string_view::npos &&
                     std::all_of(value.begin(), value.end(), [](char character) {
                       return character >= ' ' && character <= '~' && character != '"' && character != '\\';
                     });
  if (plain && value.size() <= kLongestValue) return std::string(value);
  const bool cut = value.size() > kLongestValue;
  if (cut) {
    std::size_t end = kLongestValue;
    while (end > 0 && (static_cast<u8>(value[end]) & 0xC0) == 0x80)
      --end;
    value = value.substr(0, end);
  }
  return JsonText(Json(value)) + (cut ? "..." : "");
}

// The same of what more words follow on its line.
std::string Word(std::string_view value) {
  const bool plain = value.find_first_of(":;,()") == std::string_view::npos;
  return plain || value.size() > kLongestValue ? Shown(value) : JsonText(Json(value));
}

std::string Range(const DocumentItem& extent) {
  return Word(extent.values[kExtentFirst]) + "-" + Word(extent.values[kExtentLast]);
}

std::string ExtentTitle(const DocumentItem& extent) {
  std::string text = Word(extent.values[kExtentKind]) + " " + Range(extent);
  if (!extent.values[kExtentTypeName].empty()) text.append(" ").append(Word(extent.values[kExtentTypeName]));
  if (!extent.values[kExtentName].empty()) text.append(", ").append(Word(extent.values[kExtentName]));
  return text.append(" (").append(Shown(extent.values[kExtentSource])).append(")");
}

std::string StructureTitle(const DocumentItem& structure) {
  return "structure " + Word(structure.values[kStructureKind]) + " in sector " +
         Word(structure.values[kStructureSector]) + " (" + Shown(structure.values[kStructureTitle]) + ")";
}

std::string CheckTitle(const DocumentItem& check) {
  return "check " + Word(check.values[kCheckName]) + " in sector " + Word(check.values[kCheckSector]);
}

std::string OtherTitle(const DocumentItem& other) {
  return Word(other.values[0]);
}

// Hands the lines over, as many as somebody reads.
class Lines {
 public:
  explicit Lines(const std::function<void(std::string_view)>& write) : write_(write) {}
  u64 Count() const { return count_; }
  void Add(const std::string& line) {
    if (++count_ <= kMostLines) write_(line + "\n");
  }
  void End() {
    if (count_ > kMostLines) write_("and " + std::to_string(count_ - kMostLines) + " more differences\n");
  }

 private:
  const std::function<void(std::string_view)>& write_;
  u64 count_ = 0;
};

std::string Turn(std::string_view before, std::string_view after) {
  return before == after ? Shown(before) : Shown(before) + " -> " + Shown(after);
}

// The fields of one label keep their order.
using FieldMap = std::map<std::pair<std::string_view, std::size_t>, const DocumentField*>;

FieldMap FieldsByLabel(const std::vector<DocumentField>& fields) {
  FieldMap byLabel;
  std::map<std::string_view, std::size_t> seen;
  for (const DocumentField& field : fields)
    byLabel[{field.label, seen[field.label]++}] = &field;
  return byLabel;
}

// Gives the bytes that the changed fields lie in.
std::vector<ByteRange> CompareFields(Lines& lines, const std::string& title,
                                     const std::vector<DocumentField>& before,
                                     const std::vector<DocumentField>& after) {
  std::vector<ByteRange> told;
  FieldMap rest = FieldsByLabel(after);
  std::map<std::string_view, std::size_t> seen;
  for (const DocumentField& field : before) {
    const auto other = rest.find({field.label, seen[field.label]++});
    if (other == rest.end()) {
      lines.Add("removed: " + title + ": " + Word(field.label) + ": " + Shown(field.value));
      continue;
    }
    if (field.value != other->second->value) {
      lines.Add("changed: " + title + ": " + Word(field.label) + ": " +
                Turn(field.value, other->second->value));
      if (field.offset && field.offset == other->second->offset)
        told.push_back({*field.offset, field.length});
    }
    rest.erase(other);
  }
  seen.clear();
  for (const DocumentField& field : after) {
    if (rest.contains({field.label, seen[field.label]++}))
      lines.Add("added: " + title + ": " + Word(field.label) + ": " + Shown(field.value));
  }
  return told;
}

bool IsWiped(const std::vector<u8>& bytes) {
  return !bytes.empty() && AllZero(bytes);
}

void CompareContents(Lines& lines, const std::string& title, const ItemContents& before,
                     const ItemContents& after) {
  if (!before.bytes.empty() && !IsWiped(before.bytes) && IsWiped(after.bytes)) {
    lines.Add("changed: " + title + ": the sector is all zeros now");
    return;
  }
  std::vector<ByteRange> told;
  // A structure that is no longer decoded loses all of its fields at once.
  if (after.fields.empty() && before.fields.size() > 1) {
    lines.Add("removed: " + title + ": all " + std::to_string(before.fields.size()) + " fields");
  } else if (before.fields.empty() && after.fields.size() > 1) {
    lines.Add("added: " + title + ": all " + std::to_string(after.fields.size()) + " fields");
  } else {
    told = CompareFields(lines, title, before.fields, after.fields);
  }
  const std::string bytes = ByteDifferences(before.bytes, after.bytes, told);
  if (!bytes.empty()) lines.Add("changed: " + title + ": " + bytes);
}

bool IsSamePlace(const Section& section, const DocumentItem& before, const DocumentItem& after) {
  return std::all_of(section.place.begin(), section.place.end(),
                     [&](std::size_t value) { return before.values[value] == after.values[value]; });
}

// Whether it is the same elsewhere, not of another size.
bool HasMoved(const Section& section, const DocumentItem& before, const DocumentItem& after) {
  if (IsSamePlace(section, before, after)) return false;
  const bool extent = section.title == ExtentTitle;
  return !extent ||
         (!before.values[kExtentSize].empty() && before.values[kExtentSize] == after.values[kExtentSize]);
}

std::string PlaceOf(const Section& section, const DocumentItem& item) {
  return section.title == ExtentTitle ? Range(item) : "sector " + Shown(item.values[section.place.front()]);
}

void CompareItems(Lines& lines, const Section& section, const DocumentItem& before,
                  const DocumentItem& after) {
  const std::string title = section.title(before);
  const bool moved = HasMoved(section, before, after);
  if (moved) lines.Add("moved: " + title + " -> " + PlaceOf(section, after));
  const bool turned =
      section.title == CheckTitle && before.values[kCheckVerdict] != after.values[kCheckVerdict];
  if (turned) {
    lines.Add("turned: " + title + ": " + Turn(before.values[kCheckVerdict], after.values[kCheckVerdict]) +
              "; found " + Turn(before.values[kCheckFound], after.values[kCheckFound]) + "; expected " +
              Turn(before.values[kCheckExpected], after.values[kCheckExpected]));
  }
  for (std::size_t value = 0; value < section.labels.size() && !turned; ++value) {
    const bool ofPlace = std::find(section.place.begin(), section.place.end(), value) != section.place.end();
    if ((moved && ofPlace) || before.values[value] == after.values[value]) continue;
    lines.Add("changed: " + title + ": " + std::string(section.labels[value]) + ": " +
              Turn(before.values[value], after.values[value]));
  }
  if (before.contents != after.contents)
    CompareContents(lines, title, Unpack(before.contents), Unpack(after.contents));
}

void CompareSections(Lines& lines, const Section& section, const DocumentItems& before,
                     const DocumentItems& after) {
  const ItemPairs items = PairItems(before, after, section.keys);
  for (const auto& [one, other] : items.pairs) {
    EndIfInterrupted();
    if (other != nullptr) {
      CompareItems(lines, section, *one, *other);
    } else {
      lines.Add("removed: " + section.title(*one));
    }
  }
  for (const DocumentItem* item : items.added)
    lines.Add("added: " + section.title(*item));
}

// What no other key tells apart is equal where all of it is.
ItemKey AllValues(std::size_t count) {
  ItemKey key(count);
  std::iota(key.begin(), key.end(), std::size_t{0});
  return key;
}

const Section& Extents() {
  static const Section section = {
      kExtentLabels,
      {{kExtentKind, kExtentId, kExtentType, kExtentTypeName, kExtentName, kExtentFirst, kExtentLast,
        kExtentSource},
       {kExtentKind, kExtentId, kExtentType, kExtentTypeName, kExtentName, kExtentFirst, kExtentLast},
       {kExtentKind, kExtentId},
       {kExtentKind, kExtentFirst, kExtentLast, kExtentTypeName},
       {kExtentKind, kExtentFirst, kExtentTypeName},
       {kExtentKind, kExtentType, kExtentTypeName, kExtentName, kExtentSize},
       {kExtentKind, kExtentSource, kExtentNumber},
       {kExtentKind, kExtentFirst},
       AllValues(kExtentSize + 1)},
      ExtentTitle,
      {kExtentFirst, kExtentLast}};
  return section;
}

const Section& Checks() {
  static const Section section = {kCheckLabels,
                                  {{kCheckSector, kCheckFound, kCheckExpected, kCheckVerdict, kCheckName},
                                   {kCheckSector, kCheckName},
                                   {kCheckFound, kCheckExpected, kCheckVerdict, kCheckName},
                                   AllValues(kCheckExpected + 1)},
                                  CheckTitle,
                                  {kCheckSector}};
  return section;
}

const Section& Structures() {
  static const Section section = {kStructureLabels,
                                  {{kStructureSector, kStructureTitle, kStructureKind},
                                   {kStructureSector, kStructureKind},
                                   {kStructureKind, kStructureTitle, kStructureSum},
                                   {kStructureSector},
                                   AllValues(kStructureSum + 1)},
                                  StructureTitle,
                                  {kStructureSector}};
  return section;
}

const Section& Others() {
  static const Section section = {{}, {{0}}, OtherTitle, {}};
  return section;
}

}  // namespace

u64 WriteDifferences(const Document& before, const Document& after,
                     const std::function<void(std::string_view)>& write) {
  Lines lines(write);
  CompareSections(lines, Others(), before.others, after.others);
  CompareSections(lines, Extents(), before.extents, after.extents);
  CompareSections(lines, Checks(), before.checks, after.checks);
  CompareSections(lines, Structures(), before.structures, after.structures);
  lines.End();
  return lines.Count();
}

}  // namespace trovisk
