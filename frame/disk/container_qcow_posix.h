// What is particular to QCOW2 images: features that their library does not know.

#ifndef TROVISK_FRAME_DISK_CONTAINER_QCOW_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_QCOW_POSIX_H

#include <string>

namespace trovisk {

// Whether the library reads the image at the path as it is meant. If not, refusal says why, in words that go
// on behind the image's kind.
bool IsReadableQcow(const std::string& path, std::string& refusal);

}  // namespace trovisk

#endif
