// The walk of the survey: every registered sector is visited with its decoder, whatever becomes of the
// others.

#ifndef TROVISK_MAP_WALK_H
#define TROVISK_MAP_WALK_H

#include <vector>

#include "frame/examination.h"
#include "frame/toc.h"
#include "map/catcher.h"

namespace trovisk {

struct WalkResult {
  SectorToc structures;  // what was visited, and with which decoder and title; not all of a long run
  u64 count = 0;
  u64 invalid = 0;
  std::vector<std::string> cut;
};

// Visits what is registered in the disk's table of contents and what that registers in turn, again and again
// until nothing is new; the table is empty then. extendedRecords: those of the usual chains; others must look
// like one. catcher: the one that lives; it receives what the decoders print. A structure that is invalid or
// cannot be read becomes a check.
WalkResult WalkDisk(const SectorToc& extendedRecords, u64 lastOnDisk, Catcher& catcher,
                    std::vector<Check>& checks);

}  // namespace trovisk

#endif
