// The disk as a bar to scale.

#ifndef TROVISK_MAP_DISK_BAR_H
#define TROVISK_MAP_DISK_BAR_H

#include <optional>
#include <string>
#include <vector>

#include "map/model.h"
#include "map/text_style.h"

namespace trovisk {

// What stands for an extent in the bar, for each of the map's extents: a number, counted from 0 in the order
// of the disk, or none. Partitions have one, or volumes where there are no partitions; those that state the
// same sectors share it.
std::vector<std::optional<std::size_t>> NumbersInBar(const DiskMap& map);

// The letter for that number; '*' from the 53rd on.
char LetterOf(std::size_t number);

// Two lines, the bar and its labels below, or one where there are more partitions than columns. Each
// partition has a column at least. Empty where the disk has no length.
std::string DiskBar(const DiskMap& map, const TextStyle& style);

}  // namespace trovisk

#endif
