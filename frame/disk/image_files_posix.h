// Raw image files: one, or the pieces of one in their order.

#ifndef TROVISK_FRAME_DISK_IMAGE_FILES_POSIX_H
#define TROVISK_FRAME_DISK_IMAGE_FILES_POSIX_H

#include <string>

#include "frame/disk/image.h"

namespace trovisk {

// The first length bytes of an open regular file, which the source takes over.
ImageSource FileSource(int descriptor, u64 length);

// The pieces that follow a first one, as far as there are any; false where there are none, or where one
// cannot be part of an image: refusal then says which, in words that go on behind the image's path. On
// success the descriptor of the first piece is the source's. length: of the first piece, bytes.
bool OpenPieces(const std::string& first, int descriptor, u64 length, ImageSource& source,
                std::string& refusal);

}  // namespace trovisk

#endif
