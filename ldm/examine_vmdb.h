// The header of a dynamic disk's object database, and its counts against the records that are there.

#ifndef TROVISK_LDM_EXAMINE_VMDB_H
#define TROVISK_LDM_EXAMINE_VMDB_H

#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"
#include "ldm/examine_privhead.h"

namespace trovisk {

struct LdmCounts {
  u64 volumes = 0;
  u64 components = 0;
  u64 partitions = 0;
  u64 disks = 0;

  bool operator==(const LdmCounts&) const = default;
};

struct VmdbFacts {
  u64 sector = 0;  // where it stands, or should stand
  bool found = false;
  u64 lastSequence = 0;     // no record has a greater sequence number
  u64 recordsOffset = 512;  // bytes from the sector's start to the first record
  u64 updateStatus = 0;     // 1: consistent
  LdmCounts committed;
  LdmCounts pending;
};

VmdbFacts ExamineVmdb(u64 sector, u64 lastOnDisk, const PrivheadFacts& head, std::vector<Check>& checks);

// active: the records that are in force; created: those that a transaction will put in force.
// unsettled: whether some record is part of a transaction that has not ended.
void JudgeCounts(const VmdbFacts& vmdb, const LdmCounts& active, const LdmCounts& created, bool unsettled,
                 std::vector<Check>& checks);

}  // namespace trovisk

#endif
