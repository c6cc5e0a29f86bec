// A map that the test has laid out, as a document.

#ifndef TROVISK_TESTS_MAP_WRITTEN_H
#define TROVISK_TESTS_MAP_WRITTEN_H

#include <optional>
#include <string>
#include <vector>

#include "map/json_map.h"

namespace trovisk::test {

// The structures that the test has laid out, none of them left out.
inline StructureVisitor VisitorOf(const std::vector<Structure>& structures) {
  return [&](const std::function<void(const Structure&)>& visit) -> std::optional<u64> {
    for (const Structure& structure : structures)
      visit(structure);
    return std::nullopt;
  };
}

inline std::string Written(const DiskMap& map, const std::vector<Structure>& structures = {}) {
  std::string text;
  WriteMapAsJson(map, VisitorOf(structures), [&](std::string_view piece) { text += piece; });
  return text;
}

}  // namespace trovisk::test

#endif
