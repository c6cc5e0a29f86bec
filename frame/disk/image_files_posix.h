// Image files on systems with descriptors.

#ifndef TROVISK_FRAME_DISK_IMAGE_FILES_POSIX_H
#define TROVISK_FRAME_DISK_IMAGE_FILES_POSIX_H

#include "frame/disk/image_files.h"

namespace trovisk {

extern const FileCalls kPosixFiles;

// The first length bytes of an open regular file, which the source takes over.
ImageSource FileSource(int descriptor, u64 length);

}  // namespace trovisk

#endif
