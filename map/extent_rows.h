// The extents as rows of a table for a person.

#ifndef TROVISK_MAP_EXTENT_ROWS_H
#define TROVISK_MAP_EXTENT_ROWS_H

#include <array>
#include <string>
#include <vector>

#include "map/model.h"
#include "map/text_layout.h"

namespace trovisk {

enum ExtentColumn : u8 { kLetter, kFirst, kLast, kSize, kKind, kType, kName, kSource, kFlags };
inline constexpr std::size_t kExtentColumns = 9;

struct ExtentRow {
  std::array<std::string, kExtentColumns> cells;  // by ExtentColumn
  Colour colour = Colour::kNone;                  // of the letter, or of a gap as a whole
  bool wrong = false;                             // its flags say so
};

// A row for each extent. But where there are more than a person reads, runs of areas or structures that
// nothing is to be said of are one row with their number, and what is still too much in the middle is one
// that says so; style.all: all of them.
std::vector<ExtentRow> RowsOfExtents(const DiskMap& map, const TextStyle& style);

// The sectors that an extent takes; none where it states none or ends before it starts.
u64 SectorsOf(const Extent& extent);

}  // namespace trovisk

#endif
