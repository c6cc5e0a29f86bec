// The partitions as a script for sfdisk(8), for whoever rebuilds a damaged table with a tool that writes.

#ifndef TROVISK_MAP_SFDISK_H
#define TROVISK_MAP_SFDISK_H

#include <string>

#include "map/model.h"

namespace trovisk {

// The form that sfdisk --dump prints: label, usable range, one line a partition, numbers in sectors. The
// partitions are those of the copy of the GPT that the map follows, also where a hybrid MBR stands beside it,
// or those of the MBR with its logical ones by the usual reading. What sfdisk would refuse, and with it the
// whole script, stands there as a comment that says why.
std::string MapAsSfdisk(const DiskMap& map);

}  // namespace trovisk

#endif
