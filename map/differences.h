// What two maps have that is not the same.

#ifndef TROVISK_MAP_DIFFERENCES_H
#define TROVISK_MAP_DIFFERENCES_H

#include <functional>
#include <string_view>

#include "map/document.h"

namespace trovisk {

// One line for each difference, in the order disk, what belongs together, extents, checks, structures:
//   removed, added   what only the first, only the second map has
//   moved            the same thing elsewhere
//   changed          a value of a thing that both have
//   turned           a check whose verdict is another one
// Lines are safe to show whatever the documents hold; beyond 10,000 they are counted. Gives how many there
// are.
u64 WriteDifferences(const Document& before, const Document& after,
                     const std::function<void(std::string_view)>& write);

}  // namespace trovisk

#endif
