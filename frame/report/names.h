// Names for codes found on disk; "unknown" for a code that is not listed.

#ifndef TROVISK_FRAME_REPORT_NAMES_H
#define TROVISK_FRAME_REPORT_NAMES_H

#include "frame/bytes.h"
#include "frame/guid.h"

namespace trovisk {

// GPT partition types whose partitions have decoders.
inline constexpr Guid kGptEfiSystem("C12A7328-F81F-11D2-BA4B-00A0C93EC93B");
inline constexpr Guid kGptBasicData("EBD0A0A2-B9E5-4433-87C0-68B6B72699C7");
inline constexpr Guid kGptLdmMetadata("5808C8AA-7E8F-42E0-85D2-E1E90434CFB3");
inline constexpr Guid kGptRecovery("DE94BBA4-06D1-4D40-A16A-BFD50179D6AC");
inline constexpr Guid kGptStorageSpaces("E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D");
inline constexpr Guid kGptStorageReplica("558D43C5-A1AC-43C0-AAC8-D1472B2923D1");

// The media descriptor byte of a BIOS parameter block.
WideText MediaTypeName(u8 mediaDescriptor);

// The type byte of an MBR or EBR partition entry, or of an LDM partition record.
WideText PartitionTypeName(u8 partitionType);

// The type GUID of a GPT partition entry, as its bytes lie on disk.
WideText GptTypeName(FixedBytes<16> typeGuid);

}  // namespace trovisk

#endif
