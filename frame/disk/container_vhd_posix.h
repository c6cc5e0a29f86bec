// What is particular to VHD images with a parent: which of their changes their library reads as they are
// meant.

#ifndef TROVISK_FRAME_DISK_CONTAINER_VHD_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_VHD_POSIX_H

#include <string>

namespace trovisk {

// Whether the library reads the VHD image at the path as it is meant. If not, refusal says why, in words that
// go on behind the image's kind. True of every other file.
bool IsReadableVhd(const std::string& path, std::string& refusal);

}  // namespace trovisk

#endif
