// Files on systems with descriptors: opened for reading only, read at a position.

#ifndef TROVISK_FRAME_DISK_POSIX_FILE_H
#define TROVISK_FRAME_DISK_POSIX_FILE_H

#include <sys/types.h>

#include <string>

#include "frame/error_code.h"

namespace trovisk {

// errno as an error code.
ErrorCode LastError();

// Read-only, never waiting for a writer of a FIFO, never becoming the controlling terminal. Moved above the
// standard descriptors, so that a report written to a closed one can never meet the disk. -1 and errno where
// it fails. flags: further ones of open.
int OpenReadOnly(const std::string& path, int flags = 0);

// pread, again where a signal interrupted it.
ssize_t ReadAt(int descriptor, void* buffer, std::size_t count, u64 position);

}  // namespace trovisk

#endif
