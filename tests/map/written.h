// A map that the test has laid out, as a document.

#ifndef TROVISK_TESTS_MAP_WRITTEN_H
#define TROVISK_TESTS_MAP_WRITTEN_H

#include <string>
#include <vector>

#include "map/json_map.h"

namespace trovisk::test {

inline std::string Written(const DiskMap& map, const std::vector<Structure>& structures = {}) {
  std::string text;
  WriteMapAsJson(
      map,
      [&](const std::function<void(const Structure&)>& visit) {
        for (const Structure& structure : structures)
          visit(structure);
      },
      [&](std::string_view piece) { text += piece; });
  return text;
}

}  // namespace trovisk::test

#endif
