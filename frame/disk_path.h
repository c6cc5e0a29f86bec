// The path text that a disk argument stands for.

#ifndef TROVISK_FRAME_DISK_PATH_H
#define TROVISK_FRAME_DISK_PATH_H

#include <string>

namespace trovisk {

// The disk argument behind the path prefix, unparsed. Where it does not convert, the text that is shown has
// one '?' for every byte of it.
std::wstring DiskPath(const char* argument);

}  // namespace trovisk

#endif
