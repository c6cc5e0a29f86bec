// The operating system's error numbers: GetLastError's on Windows, errno elsewhere.

#ifndef TROVISK_FRAME_ERROR_CODE_H
#define TROVISK_FRAME_ERROR_CODE_H

#include "frame/bytes.h"

namespace trovisk {

// 0: success.
using ErrorCode = u64;

// What a call gives that fails although the system names no error: as a number of 32 bits, 0.
constexpr ErrorCode kErrorWithoutCode = ErrorCode{1} << 32;

}  // namespace trovisk

#endif
