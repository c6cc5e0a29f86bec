// Compares two disks, or saved maps of them.

#ifndef TROVISK_MAP_COMPARE_H
#define TROVISK_MAP_COMPARE_H

#include <functional>
#include <string>
#include <string_view>

namespace trovisk {

inline constexpr int kMapsEqual = 0;
inline constexpr int kMapsDiffer = 1;
inline constexpr int kMapsNotCompared = 3;  // something failed, or the maps leave out what was not compared

// Each argument is a disk, which is surveyed, or a file or pipe with the map of one as JSON, told by its
// first bytes; in UTF-8. Hands over one line for each difference and gives the exit status. Where the maps
// cannot be compared complaint becomes one line that says why, without a line end; it stays empty where the
// survey has said so already. Disks are closed again.
int CompareMaps(const std::string& before, const std::string& after,
                const std::function<void(std::string_view)>& write, std::string& complaint);

}  // namespace trovisk

#endif
