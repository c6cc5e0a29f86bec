// The structures of a surveyed disk, one after the other, each as the report shows it.

#ifndef TROVISK_MAP_STRUCTURES_H
#define TROVISK_MAP_STRUCTURES_H

#include <functional>

#include "frame/toc.h"
#include "map/model.h"

namespace trovisk {

// Structures beyond so many are left out: what shows them has to be read by somebody.
inline constexpr u64 kMostStructures = u64{1} << 14;

// Calls back for each visited structure, by sector. Equal sectors in a row, and long runs of structures that
// say the same, are one.
void ShowStructures(const SectorToc& visited, u64 lastOnDisk,
                    const std::function<void(const Structure&)>& show);

}  // namespace trovisk

#endif
