// What is particular to EWF images: their segments, and their checksums.

#ifndef TROVISK_FRAME_DISK_CONTAINER_EWF_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_EWF_POSIX_H

#include "frame/disk/container_handle_posix.h"

namespace trovisk {

// Opens the image whose first segment is at the path, with the further ones. False where that fails; refusal
// then says why, unless the file is damaged.
bool OpenEwfSegments(const Container& container, const std::string& path, std::string& refusal);

// Whether the library has met a wrong checksum in these bytes: it gives them all the same. offset, count:
// bytes.
bool HasEwfChecksumError(const Container& container, u64 offset, std::size_t count);

}  // namespace trovisk

#endif
