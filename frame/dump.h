// The raw dumps: a sector as a hexadecimal and character listing. All three are SectorDecoders.

#ifndef TROVISK_FRAME_DUMP_H
#define TROVISK_FRAME_DUMP_H

#include "frame/toc.h"

namespace trovisk {

// One whole sector; "... empty ..." when all its bytes are zero. Reads nothing unless print is set.
u64 DumpRawSector(WideText description, u64 sector, bool print);

// The same below a header line with the description of its own: for sectors that are named, not decoded.
u64 DumpLabelledRawSector(WideText description, u64 sector, bool print);

// Always the first 512 bytes, zeros too; read in the loading pass as well.
u64 DumpSector512(WideText description, u64 sector, bool print);

// What stands above a listing, between two empty lines: seven blanks and the sixteen column numbers in small
// letters.
inline constexpr std::string_view kDumpHeading =
    "\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n";

// So many rows of a listing, sixteen bytes each, offsets from the start of bytes, each ending in a line end.
// Where bytes end in or before a row, blanks stand for what is missing.
void PrintDumpRows(Bytes bytes, std::size_t rows);

}  // namespace trovisk

#endif
