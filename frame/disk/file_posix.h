// Files on systems with descriptors: opened for reading only, read at a position.

#ifndef TROVISK_FRAME_DISK_FILE_POSIX_H
#define TROVISK_FRAME_DISK_FILE_POSIX_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "frame/error_code.h"

namespace trovisk {

// errno as an error code.
ErrorCode LastError();

// Read-only, never waiting for a writer of a FIFO, never becoming the controlling terminal. Moved above the
// standard descriptors, so that a report written to a closed one can never meet the disk. -1 and errno where
// it fails. flags: further ones of open.
int OpenReadOnly(const std::string& path, int flags = 0);

// pread, again where a signal interrupted it that does not end the run.
ssize_t ReadAt(int descriptor, void* buffer, std::size_t count, u64 position);

// The bytes at a position, as many of them as there are.
std::vector<u8> ReadUpTo(int descriptor, u64 position, std::size_t count);

// Reads at most count bytes at a position. A buffered read fails as a whole page where one sector of it is
// unreadable, so one that fails is repeated past the page cache: the good sectors beside a bad one can still
// be shown. direct: where the second descriptor for that is kept, -1 at first; the caller closes it.
ErrorCode ReadBytes(int descriptor, int& direct, u64 position, u8* buffer, std::size_t count,
                    std::size_t& got);

}  // namespace trovisk

#endif
