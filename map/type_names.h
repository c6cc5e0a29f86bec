// Names of partition types for people.

#ifndef TROVISK_MAP_TYPE_NAMES_H
#define TROVISK_MAP_TYPE_NAMES_H

#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// Of an MBR or EBR entry's type byte; "unknown" for one that is not listed.
std::string_view NameOfMbrType(u8 type);

// Of a GPT entry's type, in the registry form in small letters; "unknown" likewise.
std::string_view NameOfGptType(std::string_view guid);

}  // namespace trovisk

#endif
