// The libraries that read containers, loaded when a container is met. They parse what may be hostile, so they
// run in a process of their own (container_process_posix.h), where these functions are called.

#ifndef TROVISK_FRAME_DISK_CONTAINER_LIBRARY_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_LIBRARY_POSIX_H

#include <memory>
#include <string>
#include <vector>

#include "frame/disk/container_kind.h"
#include "frame/error_code.h"

namespace trovisk {

// The library for a format.
struct ContainerLibrary {
  ContainerFormat format;
  const char* file;     // what is loaded: "libewf.so.2"
  const char* package;  // the Debian package that has it
  // The names of its functions: what all begin with, and what follows in those that differ. Null: there is
  // none.
  const char* prefix;
  const char* read;               // a buffer at an offset
  const char* extents = nullptr;  // opens the files that hold the bytes, where that is a step of its own
  const char* parent = nullptr;   // the name of the image that this one rests on
  const char* adopt = nullptr;    // takes that image
  // Which image a parent is, and which one the child was made from; compared where both are known.
  const char* identity = nullptr;
  const char* parentIdentity = nullptr;
  std::size_t identitySize = 0;  // bytes
};

// Null: there is no library for the format.
const ContainerLibrary* LibraryFor(ContainerFormat format);

// An open container, with its parents.
struct Container;
struct ContainerCloser {
  void operator()(Container* container) const;
};
using OpenedContainer = std::unique_ptr<Container, ContainerCloser>;

// Opens the container at a path, and the images that it rests on. Null where that fails; refusal then says
// why, in words that go on behind the image's path, and is empty where the file is damaged.
OpenedContainer OpenContainer(const ContainerKind& kind, const std::string& path, std::string& refusal);

// The length of the disk in it, bytes.
u64 ContainerLength(const Container& container);

// Reads at most count bytes at an offset; false where the container is damaged there.
bool ReadContainer(const Container& container, u64 offset, u8* buffer, std::size_t count, std::size_t& got);

}  // namespace trovisk

#endif
