// The copies of a dynamic disk's PRIVHEAD: where they stand, whether they agree, and what they state.

#ifndef TROVISK_LDM_EXAMINE_PRIVHEAD_H
#define TROVISK_LDM_EXAMINE_PRIVHEAD_H

#include <optional>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

// What the copy says that most others agree with. Sectors are absolute unless said otherwise.
struct PrivheadFacts {
  u64 sector = 0;        // of that copy
  u64 version = 0;       // major << 16 | minor
  std::string diskGuid;  // in small letters, as are all GUIDs here
  std::string groupGuid;
  std::string groupName;
  u64 logicalStart = 0;
  u64 logicalSize = 0;  // sectors
  u64 configStart = 0;
  u64 configSize = 0;        // sectors; the area does not wrap
  u64 tocCount = 0;          // copies of the TOCBLOCK
  u64 tocSize = 0;           // sectors
  u64 configRegionSize = 0;  // sectors
  std::vector<Area> areas;   // of the copies that are there
};

inline constexpr u64 kPrivheadVersion11 = u64{2} << 16 | 11;
inline constexpr u64 kPrivheadVersion12 = u64{2} << 16 | 12;

// sector: where the first copy stands or should stand, lastOnDisk: all ones where it is not known. None where
// there is no copy at all. Reads at most the last 2048 sectors of the disk or of the metadata partition.
std::optional<PrivheadFacts> ExaminePrivheads(u64 sector, u64 lastOnDisk, std::vector<Check>& checks);

}  // namespace trovisk

#endif
