// A listing: bytes as hexadecimal and as characters, sixteen to a row.

#ifndef TROVISK_FRAME_REPORT_LISTING_H
#define TROVISK_FRAME_REPORT_LISTING_H

#include "frame/bytes.h"

namespace trovisk {

// What stands above a listing, between two empty lines: seven blanks and the sixteen column numbers in small
// letters.
void PrintDumpHeading();

// The heading, all whole rows and an empty line.
void PrintListing(Bytes bytes);

// So many rows of a listing, sixteen bytes each, offsets from the start of bytes, each ending in a line end.
// Where bytes end in or before a row, blanks stand for what is missing.
void PrintDumpRows(Bytes bytes, std::size_t rows);

}  // namespace trovisk

#endif
