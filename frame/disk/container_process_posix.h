// Containers, read in a process of their own: the libraries parse what may be hostile, and whatever they do
// with it, this program goes on and ends.

#ifndef TROVISK_FRAME_DISK_CONTAINER_PROCESS_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_PROCESS_POSIX_H

#include <string>

#include "frame/disk/container_kind.h"
#include "frame/disk/image.h"

namespace trovisk {

// Opens the container at a path. 0, and the source of its content, which ends the process when it is closed.
// Else an error code; where it alone does not say why, refusal does, in words that go on behind the image's
// path.
ErrorCode OpenContainerProcess(const ContainerKind& kind, const std::string& path, ImageSource& source,
                               std::string& refusal);

}  // namespace trovisk

#endif
