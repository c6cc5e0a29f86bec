// The map as one JSON document, as map/map.schema.json describes it.

#ifndef TROVISK_MAP_JSON_MAP_H
#define TROVISK_MAP_JSON_MAP_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "map/model.h"

namespace trovisk {

// What a document says of its own form. The number grows where a reader of the last form would be wrong.
inline constexpr std::string_view kMapSchema = "trovisk-map/1";

// Calls back for each structure, and gives what VisitStructures gives.
using StructureVisitor = std::function<std::optional<u64>(const std::function<void(const Structure&)>&)>;

// The item of one structure.
std::string StructureAsText(const Structure& structure);

// Hands the document over piece by piece, so that it need not fit into memory. structures is called once. '<'
// stands in no place but inside of strings.
void WriteMapAsJson(const DiskMap& map, const StructureVisitor& structures,
                    const std::function<void(std::string_view)>& write);

}  // namespace trovisk

#endif
