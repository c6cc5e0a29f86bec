// The copies of a dynamic disk's table of contents: whether they agree, and where the two regions lie.

#ifndef TROVISK_LDM_EXAMINE_TOCBLOCK_H
#define TROVISK_LDM_EXAMINE_TOCBLOCK_H

#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"
#include "ldm/examine_privhead.h"

namespace trovisk {

struct TocFacts {
  bool found = false;
  u64 configStart = 0;      // absolute
  u64 configSize = 0;       // sectors, inside the configuration area
  u64 logStart = 0;         // absolute
  u64 logSize = 0;          // sectors, inside the configuration area; 0: not known
  std::vector<Area> areas;  // of the copies that are there
};

// Where no copy is found the configuration region is the usual one, and there is no log.
TocFacts ExamineTocBlocks(const PrivheadFacts& head, u64 lastOnDisk, std::vector<Check>& checks);

}  // namespace trovisk

#endif
