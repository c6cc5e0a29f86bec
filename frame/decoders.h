// The directory of the house: every SectorDecoder of the program. A decoder reaches another one only through
// this file, to register it for a sector or to hand its own sector over.

#ifndef TROVISK_FRAME_DECODERS_H
#define TROVISK_FRAME_DECODERS_H

#include "frame/dump.h"
#include "frame/toc.h"

namespace trovisk {

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

// gpt/
u64 DecodeGptHeader(WideText description, u64 sector, bool print);
u64 DecodeGptEntries(WideText description, u64 sector, bool print);

// ldm/
u64 DecodePrivhead(WideText description, u64 sector, bool print);
u64 DecodeTocBlock(WideText description, u64 sector, bool print);
u64 DecodeVmdb(WideText description, u64 sector, bool print);
u64 DecodeVblk(WideText description, u64 sector, bool print);
u64 DecodeKlog(WideText description, u64 sector, bool print);

// spaces/
u64 DecodeSpaceDb(WideText description, u64 sector, bool print);
u64 DecodeSdbc(WideText description, u64 sector, bool print);
u64 DecodeSdbb(WideText description, u64 sector, bool print);
u64 DecodeDpomSector(WideText description, u64 sector, bool print);
u64 DecodeDpodSector(WideText description, u64 sector, bool print);

}  // namespace trovisk

#endif
