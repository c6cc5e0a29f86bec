// Sectors of another size than the disk's: a disk that was partitioned behind a bridge which made larger or
// smaller ones of its sectors, or the image of one, whose tables count in the wrong unit since.

#ifndef TROVISK_MAP_SECTOR_SIZE_H
#define TROVISK_MAP_SECTOR_SIZE_H

#include "map/partitions.h"

namespace trovisk {

// Adds a check that is bad where the GPT, or the boot sector of a partition, is not where sectors of the
// disk's size have it and is where those of another size do. lastOnDisk: all ones where unknown.
void CheckSectorSize(PartitionTables& tables, u64 lastOnDisk);

}  // namespace trovisk

#endif
