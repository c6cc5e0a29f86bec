// What the decoders of this folder share.

#ifndef TROVISK_SPACES_VERBS_H
#define TROVISK_SPACES_VERBS_H

#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// The line of a Storage Spaces record's revision: its four bytes weighted by 1000, 100, 10 and 1/100.
void PrintRevisionLine(FixedBytes<4> revision);

// The sector as a raw dump between two empty lines, which stand in the loading pass too. False when the disk
// could not be moved back to the sector.
bool ShowAsRawSector(u64 sector, bool print);

// One line for each little-endian 32-bit word whose meaning is not known: label, its bytes in stored order,
// and its value in brackets.
void PrintUnnamedWords(std::string_view label, Bytes words);

}  // namespace trovisk

#endif
