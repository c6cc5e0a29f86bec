// What is particular to VMDK images: the files that hold their content, and what their library does not know.

#ifndef TROVISK_FRAME_DISK_CONTAINER_VMDK_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_VMDK_POSIX_H

#include "frame/disk/container_handle_posix.h"

namespace trovisk {

// Whether the library reads the image at the path as it is meant. If not, refusal says why, in words that go
// on behind the image's kind.
bool IsReadableVmdk(const std::string& path, std::string& refusal);

// Opens the files that the open image at the path names. False where that fails; refusal then says why, in
// words that go on behind the image's kind.
bool OpenVmdkExtents(const Container& container, const std::string& path, std::string& refusal);

}  // namespace trovisk

#endif
