// What is particular to VHDX images: a log of writes that are not where they belong yet.

#ifndef TROVISK_FRAME_DISK_CONTAINER_VHDX_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_VHDX_POSIX_H

#include <string>

namespace trovisk {

// Whether the library reads the image at the path as it is meant. If not, refusal says why, in words that go
// on behind the image's kind.
bool IsReadableVhdx(const std::string& path, std::string& refusal);

}  // namespace trovisk

#endif
