// The type-specific blocks of VBLK records.

#ifndef TROVISK_LDM_VBLK_RECORDS_H
#define TROVISK_LDM_VBLK_RECORDS_H

#include "frame/bytes.h"

namespace trovisk {

// Each prints the fields of one type of record. data: from the record's first data byte to the sector's end.
// flags: the record's flags byte, which says which of the optional fields are there.
void PrintComponent(Bytes data, u8 flags);
void PrintPartition(Bytes data, u8 flags);
void PrintDiskForm1(Bytes data, u8 flags);
void PrintDiskForm2(Bytes data, u8 flags);
void PrintDiskGroupForm1(Bytes data, u8 flags);
void PrintDiskGroupForm2(Bytes data, u8 flags);
void PrintVolume(Bytes data, u8 flags);

// Where the first field of a component, partition or volume stands.
inline u64 FirstField(u8 flags) {
  return (flags & 0x01) != 0 ? 2 : 0;
}

}  // namespace trovisk

#endif
