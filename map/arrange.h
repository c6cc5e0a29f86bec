// Puts extents into order: marks what overlaps or lies beyond the end, fills the gaps.

#ifndef TROVISK_MAP_ARRANGE_H
#define TROVISK_MAP_ARRANGE_H

#include <vector>

#include "map/model.h"

namespace trovisk {

// Marks partitions and structures that claim the same sectors, MBR partitions beside a GPT, and whatever lies
// beyond the end of the disk; adds a gap for each stretch that no partition, structure or bare volume claims;
// sorts, outer extents before what they hold, and sets the depths. sectors: of the disk, 0: unknown.
void ArrangeExtents(std::vector<Extent>& extents, u64 sectors);

// For tests: what is wrong with arranged extents, nothing while they are in order and, with the gaps, leave
// no sector of the disk out.
std::string ComplaintAbout(const std::vector<Extent>& extents, u64 sectors);

}  // namespace trovisk

#endif
