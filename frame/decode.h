// The steps that nearly every decoder shares.

#ifndef TROVISK_FRAME_DECODE_H
#define TROVISK_FRAME_DECODE_H

#include <span>

#include "frame/bytes.h"

namespace trovisk {

// Reads the whole record at the disk's position. A failure says "Error reading sector" on standard error,
// after the disk layer's own message; what the record holds is of no use then.
bool ReadRecord(std::span<u8> record);

// Seeks back to the start of the sector and hands it to DumpRawSector as "as a raw sector". Gives that
// decoder's result, or kEndPass when the seek fails.
u64 DumpAsRawSector(u64 sector, bool print);

// Moves the disk to the first byte of a sector.
bool SeekToSector(u64 sector);

}  // namespace trovisk

#endif
