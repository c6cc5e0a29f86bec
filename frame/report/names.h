// Names for codes found on disk; "unknown" for a code that is not listed.

#ifndef TROVISK_FRAME_REPORT_NAMES_H
#define TROVISK_FRAME_REPORT_NAMES_H

#include "frame/bytes.h"

namespace trovisk {

// The media descriptor byte of a BIOS parameter block.
WideText MediaTypeName(u8 mediaDescriptor);

// The type byte of an MBR or EBR partition entry, or of an LDM partition record.
WideText PartitionTypeName(u8 partitionType);

// The type GUID of a GPT partition entry, as its bytes lie on disk.
WideText GptTypeName(FixedBytes<16> typeGuid);

}  // namespace trovisk

#endif
