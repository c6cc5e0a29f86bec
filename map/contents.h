// What stands in the partitions: volumes with their areas, dynamic disks, Storage Spaces, contents of other
// systems.

#ifndef TROVISK_MAP_CONTENTS_H
#define TROVISK_MAP_CONTENTS_H

#include "map/model.h"
#include "map/partitions.h"

namespace trovisk {

// Adds to the map what the partitions hold: extents, checks, joined views. Registers the sectors that hold a
// structure which a decoder reads and no table leads to; moves the tables' extents into the map. lastOnDisk:
// all ones where unknown.
void ReadContents(DiskMap& map, PartitionTables& tables, u64 lastOnDisk);

}  // namespace trovisk

#endif
