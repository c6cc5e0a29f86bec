// The BIOS parameter block that FAT12, FAT16 and FAT32 boot sectors share.

#ifndef TROVISK_MBR_FAT_BPB_H
#define TROVISK_MBR_FAT_BPB_H

#include "frame/bytes.h"

namespace trovisk {

inline constexpr std::size_t kFatBpb = 0x00B;  // its place in the boot sector
inline constexpr std::size_t kFatBpbSize = 25;

void PrintFatBpb(FixedBytes<kFatBpbSize> bpb);

}  // namespace trovisk

#endif
