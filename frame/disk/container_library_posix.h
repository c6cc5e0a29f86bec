// The libraries that read containers, loaded when a container is met. They parse what may be hostile, so they
// run in a process of their own (container_process_posix.h), where these functions are called.

#ifndef TROVISK_FRAME_DISK_CONTAINER_LIBRARY_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_LIBRARY_POSIX_H

#include <string>

#include "frame/disk/container_handle_posix.h"

namespace trovisk {

// Null: there is no library for the format.
const ContainerLibrary* LibraryFor(ContainerFormat format);

// Opens the container at a path, and the images that it rests on. Null where that fails; refusal then says
// why, in words that go on behind the image's path, and is empty where the file is damaged.
OpenedContainer OpenContainer(const ContainerKind& kind, const std::string& path, std::string& refusal);

// The length of the disk in it, bytes.
u64 ContainerLength(const Container& container);

// Reads at most count bytes at an offset; false where the container is damaged there.
bool ReadContainer(const Container& container, u64 offset, u8* buffer, std::size_t count, std::size_t& got);

}  // namespace trovisk

#endif
