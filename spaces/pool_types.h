// The names of what an SDBC states as the type of a pool.

#ifndef TROVISK_SPACES_POOL_TYPES_H
#define TROVISK_SPACES_POOL_TYPES_H

#include "frame/report/field_table.h"

namespace trovisk {

inline constexpr ValueName kPoolTypes[] = {
    {0x1B, "Unallocated"},    {0x1C, "Simple"}, {0x20, "Simple"}, {0x23, "Two-Way Mirror"},
    {0x29, "Two-Way Mirror"}, {0x2A, "Parity"}, {0x2D, "Parity"}, {0x33, "Three-Way Mirror"},
};

}  // namespace trovisk

#endif
