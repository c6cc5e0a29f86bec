#include "map/structures.h"

#include <algorithm>
#include <optional>

#include "frame/decoders.h"
#include "frame/global.h"
#include "frame/progress.h"
#include "frame/report/report.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "map/catcher.h"
#include "map/structure_names.h"

namespace trovisk {
namespace {

// The label of a row without what leads to its value: "\tStarting LBA   : " is "Starting LBA".
std::string LabelText(std::string_view label) {
  label = label.substr(0, label.find(':'));
  if (label.ends_with("0x")) label.remove_suffix(2);
  const auto from = label.find_first_not_of(" \t");
  if (from == std::string_view::npos) return {};
  const auto to = label.find_last_not_of(" \t[{(\"");
  return std::string(label.substr(from, to - from + 1));
}

// What stands in front of that place on its line.
std::string_view LineBefore(std::string_view text, u64 place) {
  const std::string_view before = text.substr(0, place);
  return before.substr(before.rfind('\n') + 1);
}

// The lines of a value, one behind the other.
std::string OnOneLine(std::string_view value) {
  std::string line;
  for (std::size_t from = 0; from < value.size();) {
    const std::size_t end = std::min(value.find('\n', from), value.size());
    const std::string_view piece = value.substr(from, end - from);
    const std::size_t first = std::min(piece.find_first_not_of(" \t"), piece.size());
    const std::size_t last = piece.find_last_not_of(" \t");
    if (from == 0) {
      line = piece.substr(piece.starts_with('\t') ? 1 : 0);
    } else if (first < piece.size()) {
      line.append(line.ends_with(' ') ? "" : " ").append(piece.substr(first, last - first + 1));
    }
    from = end + 1;
  }
  return line;
}

std::vector<StructureField> FieldsOf(const Catcher::Caught& caught) {
  std::vector<StructureField> fields;
  for (const FieldNote& note : caught.fields) {
    if (note.begin > note.end || note.end > caught.text.size()) continue;
    std::string_view label = note.label;
    if (label.empty()) label = LineBefore(caught.text, note.begin);
    std::string value = OnOneLine(std::string_view(caught.text).substr(note.begin, note.end - note.begin));
    // A text that fills its field is shown with the NULs behind it.
    while (!value.empty() && (value.back() == '\n' || value.back() == ' ' || value.back() == '\0'))
      value.pop_back();
    if (label.ends_with("0x")) value.insert(0, "0x");  // else nobody tells 0x10 from 10
    fields.push_back({.label = LabelText(label),
                      .value = std::move(value),
                      .offset = note.offset.value_or(0),
                      .length = note.length,
                      .placed = note.offset.has_value()});
  }
  return fields;
}

// Catches the report of one structure alone: who shows it prints to the same report.
Structure Show(const SectorToc::Found& found, u64 lastOnDisk) {
  const u64 sector = found.first;
  const SectorDecoder decoder = found.entry.decoder;
  Structure structure{.sector = sector,
                      .title = ToNarrow(found.entry.description),
                      .structure = std::string(KindOf(decoder).name),
                      .messages = {},
                      .fields = {},
                      .text = {},
                      .bytes = {}};
  if (lastOnDisk != ~u64{0} && sector > lastOnDisk) {
    structure.valid = false;
    structure.count = found.last - sector + 1;
    structure.messages.emplace_back("It lies beyond the end of the disk.");
    return structure;
  }
  Catcher catcher;
  if (auto bytes = ReadSectors(sector, 1)) structure.bytes = std::move(*bytes);
  catcher.Take();
  u64 next = kEndPass;
  if (SeekToSector(sector)) next = decoder(found.entry.description, sector, true);
  Catcher::Caught caught = catcher.Take();
  structure.valid = IsValid(decoder, {.sector = sector,
                                      .next = next,
                                      .complained = !caught.messages.empty(),
                                      .readable = !structure.bytes.empty()});
  structure.fields = FieldsOf(caught);
  structure.messages = std::move(caught.messages);
  structure.text = std::move(caught.text);
  return structure;
}

// Fields of equal sectors in a row are read as well; they take time, if no place.
constexpr u64 kMostFieldsRead = 16 * kMostFields;

bool AreAlike(const Structure& a, const Structure& b) {
  return a.structure == b.structure && a.title == b.title && a.valid == b.valid && !b.bytes.empty() &&
         a.bytes == b.bytes && a.sector + a.count == b.sector;
}

}  // namespace

std::optional<u64> ShowStructures(const SectorToc& visited, u64 lastOnDisk,
                                  const std::function<void(const Structure&)>& show) {
  report.Start();                    // a report of its own: numbers begin as they do there
  std::optional<Structure> waiting;  // for others like it
  u64 structures = 0;                // with the one that waits
  u64 fields = 0;
  u64 fieldsRead = 0;
  std::optional<u64> cutBehind;
  BeginPass("structures", 0, lastOnDisk);
  for (u64 position = 0;;) {
    const auto found = visited.FirstAtOrAfter(position);
    if (!found) break;
    if (structures >= kMostStructures || fields >= kMostFields || fieldsRead >= kMostFieldsRead) {
      cutBehind = position - 1;
      break;
    }
    BetweenSectors(found->first);
    Structure structure = Show(*found, lastOnDisk);
    if (KindOf(found->entry.decoder).alike) structure.count = found->last - found->first + 1;
    position = structure.sector + structure.count;
    fieldsRead += structure.fields.size();
    if (waiting && AreAlike(*waiting, structure)) {
      waiting->count += structure.count;
    } else {
      if (waiting) show(*waiting);
      ++structures;
      fields += structure.fields.size();
      waiting = std::move(structure);
    }
    if (position == 0) break;
  }
  if (waiting) show(*waiting);
  return cutBehind;
}

}  // namespace trovisk
