// Image files on Windows.

#ifndef TROVISK_FRAME_DISK_IMAGE_FILES_WINDOWS_H
#define TROVISK_FRAME_DISK_IMAGE_FILES_WINDOWS_H

#include <string>

#include "frame/disk/device.h"

namespace trovisk {

// Opens the image that an argument names, a path or "PATH@N". argument: in the system's characters. False,
// with or without a refusal, where there is no such image.
bool OpenImageFile(Device& device, const std::wstring& argument);

}  // namespace trovisk

#endif
