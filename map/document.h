// A map that was written as JSON, as far as it can be compared with another one.

#ifndef TROVISK_MAP_DOCUMENT_H
#define TROVISK_MAP_DOCUMENT_H

#include <array>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"
#include "map/item_contents.h"
#include "map/item_values.h"
#include "map/json_map.h"

namespace trovisk {

// One extent, structure or check, or one object of what belongs together.
struct DocumentItem {
  ItemValues values = {};     // in the order of the section's labels
  std::string contents = {};  // packed
};

using DocumentItems = std::vector<DocumentItem>;

// Where the values of an item stand.
enum ExtentValue : std::size_t {
  kExtentFirst,
  kExtentLast,
  kExtentKind,
  kExtentType,
  kExtentTypeName,
  kExtentName,
  kExtentSource,
  kExtentFlags,
  kExtentNumber,
  kExtentId,
  kExtentAttributes,
  kExtentSize,  // sectors; of no member of the document, and empty where the extent is reversed
};
enum StructureValue : std::size_t {
  kStructureSector,
  kStructureKind,
  kStructureTitle,
  kStructureValid,
  kStructureCount,
  kStructureMessages,
  kStructureSum,  // CRC-32 of its bytes; of no member of the document, and empty where there are no bytes
};
enum CheckValue : std::size_t { kCheckSector, kCheckName, kCheckVerdict, kCheckFound, kCheckExpected };

// The members of an item that its values come from.
inline constexpr std::array<std::string_view, 11> kExtentLabels = {
    "first", "last", "kind", "type", "type_name", "name", "source", "flags", "number", "id", "attributes"};
inline constexpr std::array<std::string_view, 6> kStructureLabels = {"sector", "structure", "title",
                                                                     "valid",  "count",     "messages"};
inline constexpr std::array<std::string_view, 5> kCheckLabels = {"sector", "check", "verdict", "found",
                                                                 "expected"};

// The gaps are left out: they are what the other extents leave.
struct Document {
  std::string cut;  // the first sentence on what the map leaves out; empty: nothing
  u64 bytes = 0;    // that the items take: at most 24 MiB
  DocumentItems extents;
  DocumentItems structures;
  DocumentItems checks;
  // The disk but for its path, what belongs together, what was cut: an item for each object, whose only value
  // is the way to it: "dynamic_disk.volumes[Volume1]".
  DocumentItems others;
};

// None where the text is no document, or its items take too much; then complaint says why, in words that go
// on behind the file's name. Nothing in it is taken on trust: what is missing is empty.
std::optional<Document> ParseDocument(std::istream& text, std::string& complaint);

// The document of a map that has just been surveyed, as if it had been saved and parsed.
std::optional<Document> DocumentOf(const DiskMap& map, const StructureVisitor& structures,
                                   std::string& complaint);

}  // namespace trovisk

#endif
