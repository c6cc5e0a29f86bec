// Every SectorDecoder of the program, and what puts back what the decoders of a
// folder pass to each other. A decoder reaches another one only through this file, to register it for a
// sector or to hand its own sector over.

#ifndef TROVISK_FRAME_DECODERS_H
#define TROVISK_FRAME_DECODERS_H

#include "frame/toc.h"

namespace trovisk {

// The raw dumps: a sector as a hexadecimal and character listing.

// One whole sector; "... empty ..." when all its bytes are zero. Reads nothing unless print is set.
u64 DumpRawSector(WideText description, u64 sector, bool print);
// The same below a header line with the description of its own: for sectors that are named, not decoded.
u64 DumpLabelledRawSector(WideText description, u64 sector, bool print);
// Always the first 512 bytes, zeros too; read in the loading pass as well.
u64 DumpSector512(WideText description, u64 sector, bool print);

// mbr/
u64 DecodeMasterBootRecord(WideText description, u64 sector, bool print);
u64 DecodeExtendedBootRecord(WideText description, u64 sector, bool print);
u64 IdentifyBootSector(WideText description, u64 sector, bool print);
u64 DecodeFatBootSector(WideText description, u64 sector, bool print);
u64 DecodeFat32FsInfo(WideText description, u64 sector, bool print);

// volumes/
u64 DecodeNtfsBootSector(WideText description, u64 sector, bool print);
u64 DecodeNtfsBackupBootSector(WideText description, u64 sector, bool print);
u64 DecodeNtfsBootCode(WideText description, u64 sector, bool print);
u64 DecodeBitLockerBootSector(WideText description, u64 sector, bool print);
u64 DecodeExFatBootSector(WideText description, u64 sector, bool print);
u64 DecodeReFsBootRecord(WideText description, u64 sector, bool print);
u64 DecodeReFsBackupBootRecord(WideText description, u64 sector, bool print);
u64 DecodeReFsSuperblock(WideText description, u64 sector, bool print);
u64 DecodeReFsCheckpoint(WideText description, u64 sector, bool print);
void ResetVolumesState();

// gpt/
u64 DecodeGptHeader(WideText description, u64 sector, bool print);
u64 DecodeGptEntries(WideText description, u64 sector, bool print);
void ResetGptState();

// ldm/
u64 DecodePrivhead(WideText description, u64 sector, bool print);
u64 DecodeTocBlock(WideText description, u64 sector, bool print);
u64 DecodeVmdb(WideText description, u64 sector, bool print);
u64 DecodeVblk(WideText description, u64 sector, bool print);
u64 DecodeKlog(WideText description, u64 sector, bool print);
void ResetLdmState();

// spaces/
u64 DecodeSpaceDb(WideText description, u64 sector, bool print);
u64 DecodeSdbc(WideText description, u64 sector, bool print);
u64 DecodeSdbb(WideText description, u64 sector, bool print);
u64 DecodeDpomSector(WideText description, u64 sector, bool print);
u64 DecodeDpodSector(WideText description, u64 sector, bool print);

}  // namespace trovisk

#endif
