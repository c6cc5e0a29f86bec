// The records of a dynamic disk's object database, put together from their slots.

#ifndef TROVISK_LDM_EXAMINE_VBLK_H
#define TROVISK_LDM_EXAMINE_VBLK_H

#include <functional>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

// One record, whatever the number of slots that it takes.
struct LdmRecord {
  u64 sector = 0;  // absolute, of its first slot
  u64 status = 0;  // 0: consistent, 1: about to be deleted, 2: created, but not yet active
  u8 flags = 0;
  u8 type = 0;
  u64 dataLength = 0;  // bytes, as the record states
  Bytes data;          // as far as its slots have any
};

// Where the slots stand. Sectors are absolute.
struct VblkPlace {
  u64 first = 0;
  u64 offset = 0;  // bytes, in the first sector
  u64 last = 0;    // inclusive; below first: there are none
};

struct VblkSummary {
  u64 records = 0;
  u64 lastUsed = 0;  // the last sector that holds a record, 0: none does
  u64 highestSequence = 0;
};

// Calls back for each record. At most 2^14 records are visited, and 8 MiB are read; a remark says what was
// left out.
VblkSummary VisitVblks(const VblkPlace& place, const std::function<void(const LdmRecord&)>& visit,
                       std::vector<Check>& checks, std::vector<std::string>& remarks);

}  // namespace trovisk

#endif
