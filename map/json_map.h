// The map as one JSON document, as map/map.schema.json describes it.

#ifndef TROVISK_MAP_JSON_MAP_H
#define TROVISK_MAP_JSON_MAP_H

#include <functional>
#include <string_view>

#include "map/model.h"

namespace trovisk {

// Hands the document over piece by piece, so that it need not fit into memory. Visits the structures of the
// surveyed disk, which must still be open.
void WriteMapAsJson(const DiskMap& map, const std::function<void(std::string_view)>& write);

}  // namespace trovisk

#endif
