// Image files: a raw one, the pieces of one in their order, what a container holds.

#ifndef TROVISK_FRAME_DISK_IMAGE_FILES_H
#define TROVISK_FRAME_DISK_IMAGE_FILES_H

#include <string>

#include "frame/disk/container_kind.h"
#include "frame/disk/device.h"
#include "frame/disk/image.h"

namespace trovisk {

// The system's side of image files. Paths are as the system has them, on Windows in UTF-8.
struct FileCalls {
  // Whether anything is there.
  bool (*exists)(const std::string& path);
  // The length of a regular file in bytes; false where it is none.
  bool (*length)(const std::string& path, u64& bytes);
  // Opens the first length bytes of a file.
  ErrorCode (*open)(const std::string& path, u64 length, ImageSource& file);
  // Opens what a container holds; head: its first bytes. Where the error code alone does not say why it
  // fails, refusal does, in words that go on behind the image's path.
  ErrorCode (*openContainer)(const ContainerKind& kind, Bytes head, const std::string& path,
                             ImageSource& content, std::string& refusal);
};

// Sets device.image to an open file's own bytes where device.sectorSize is known, else to what the file
// holds. The file is taken over whatever the result.
ErrorCode OpenImage(Device& device, const FileCalls& calls, const std::string& path, const ImageSource& file);

// TakeReadAhead and ReadDevice of an image.
Bytes TakeOfImage(Device& device, u32 count);
ErrorCode ReadImage(Device& device, u8* buffer, u32 count, u32& got);

}  // namespace trovisk

#endif
