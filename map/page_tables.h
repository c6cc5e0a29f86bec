// The parts of a page that can be read without its script: facts, bar, checks, what belongs together,
// extents, structures. All give HTML; long tables are cut, and say so.

#ifndef TROVISK_MAP_PAGE_TABLES_H
#define TROVISK_MAP_PAGE_TABLES_H

#include <string>
#include <vector>

#include "map/model.h"

namespace trovisk {

// What the table of structures shows of one.
struct StructureLine {
  u64 sector = 0;
  u64 count = 1;
  std::string title;
  bool valid = true;
};

std::string VerdictOfPage(const DiskMap& map);
std::string FactsOfPage(const DiskMap& map);
std::string BarOfPage(const DiskMap& map);
std::string ChecksOfPage(const DiskMap& map);
std::string JoinedOfPage(const DiskMap& map);
std::string ExtentsOfPage(const DiskMap& map);
std::string StructuresOfPage(const std::vector<StructureLine>& structures);

}  // namespace trovisk

#endif
