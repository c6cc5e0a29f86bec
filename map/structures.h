// The structures of a surveyed disk, one after the other, each as the report shows it.

#ifndef TROVISK_MAP_STRUCTURES_H
#define TROVISK_MAP_STRUCTURES_H

#include <functional>
#include <optional>

#include "frame/toc.h"
#include "map/model.h"

namespace trovisk {

// What is beyond so many structures, or so many fields of all of them, is left out: what shows them has to be
// read by somebody. A sector of 4096 bytes holds eight times the fields of one of 512.
inline constexpr u64 kMostStructures = u64{1} << 14;
inline constexpr u64 kMostFields = u64{1} << 19;

// Calls back for each visited structure, by sector. Equal sectors in a row, and long runs of structures that
// say the same, are one. Gives the sector behind which structures are left out; none where all were shown.
std::optional<u64> ShowStructures(const SectorToc& visited, u64 lastOnDisk,
                                  const std::function<void(const Structure&)>& show);

}  // namespace trovisk

#endif
