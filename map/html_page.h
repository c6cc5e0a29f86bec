// The map as a page: one HTML document that holds all it needs, and loads nothing.

#ifndef TROVISK_MAP_HTML_PAGE_H
#define TROVISK_MAP_HTML_PAGE_H

#include <functional>
#include <string_view>

#include "map/json_map.h"
#include "map/model.h"

namespace trovisk {

// Hands the page over piece by piece. structures is called once. Texts of the disk go in as text: none can
// end the element that it stands in, and nothing but the page's own style and script is obeyed by a browser.
void WriteMapAsPage(const DiskMap& map, const StructureVisitor& structures,
                    const std::function<void(std::string_view)>& write);

}  // namespace trovisk

#endif
