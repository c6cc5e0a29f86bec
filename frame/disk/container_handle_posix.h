// An open container, and the calls into its library.

#ifndef TROVISK_FRAME_DISK_CONTAINER_HANDLE_POSIX_H
#define TROVISK_FRAME_DISK_CONTAINER_HANDLE_POSIX_H

#include <dlfcn.h>

#include <memory>
#include <string>

#include "frame/disk/container_kind.h"

namespace trovisk {

inline constexpr int kReadOnly = 1;  // how all of them are opened

// What to do with an image that its library would misread; goes on behind what is wrong with it.
inline constexpr char kConvertIt[] = ": convert it with \"qemu-img convert -O raw\"";

// The library for a format.
struct ContainerLibrary {
  ContainerFormat format;
  const char* file;     // what is loaded: "libewf.so.2"
  const char* package;  // the Debian package that has it
  // The names of its functions: what all begin with, and what follows in those that differ. Null: there is
  // none.
  const char* prefix;
  const char* read;              // a buffer at an offset
  const char* parent = nullptr;  // the name of the image that this one rests on
  const char* adopt = nullptr;   // takes that image
  // Which image a parent is, and which one the child was made from; compared where both are known.
  const char* identity = nullptr;
  const char* parentIdentity = nullptr;
  std::size_t identitySize = 0;  // bytes
};

// An open container, with its parents.
struct Container;
struct ContainerCloser {
  void operator()(Container* container) const;
};
using OpenedContainer = std::unique_ptr<Container, ContainerCloser>;

// One open image of a chain. The functions of its library are looked up as they are needed.
struct Container {
  const ContainerLibrary* reader = nullptr;
  void* code = nullptr;    // the loaded library
  void* handle = nullptr;  // the library's
  ssize_t (*read)(void* handle, void* buffer, std::size_t size, i64 offset, void** error) = nullptr;
  u64 length = 0;  // bytes
  OpenedContainer parent;
};

// A function of the library, by what its name has behind the prefix.
template <typename Function>
Function* Find(const Container& container, const char* name) {
  const std::string whole = container.reader->prefix + std::string(name);
  return reinterpret_cast<Function*>(dlsym(container.code, whole.c_str()));
}

template <typename... Arguments>
bool Call(const Container& container, const char* name, Arguments... arguments) {
  auto* const function = Find<int(Arguments..., void**)>(container, name);
  return function != nullptr && function(arguments..., nullptr) == 1;
}

}  // namespace trovisk

#endif
