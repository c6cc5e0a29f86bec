// The functions are those that the libraries' own manuals describe (libewf, libvhdi, libvmdk, libqcow); all
// take a null for the error that they could describe.

#include "frame/disk/container_library_posix.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <vector>

#include "frame/disk/container_ewf_posix.h"
#include "frame/disk/container_handle_posix.h"
#include "frame/disk/container_qcow_posix.h"
#include "frame/disk/container_vhd_posix.h"
#include "frame/disk/container_vhdx_posix.h"
#include "frame/disk/container_vmdk_posix.h"

namespace trovisk {
namespace {

constexpr ContainerLibrary kLibraries[] = {
    {ContainerFormat::kEwf, "libewf.so.2", "libewf2", "libewf_handle", "_read_random"},
    {.format = ContainerFormat::kVhd,
     .file = "libvhdi.so.1",
     .package = "libvhdi1",
     .prefix = "libvhdi_file",
     .read = "_read_buffer_at_offset",
     .parent = "_get_utf8_parent_filename",
     .adopt = "_set_parent_file",
     .identity = "_get_identifier",
     .parentIdentity = "_get_parent_identifier",
     .identitySize = 16},
    {.format = ContainerFormat::kVmdk,
     .file = "libvmdk.so.1",
     .package = "libvmdk1",
     .prefix = "libvmdk_handle",
     .read = "_read_buffer_at_offset",
     .parent = "_get_utf8_parent_filename",
     .adopt = "_set_parent_handle",
     .identity = "_get_content_identifier",
     .parentIdentity = "_get_parent_content_identifier",
     .identitySize = 4},
    {.format = ContainerFormat::kQcow,
     .file = "libqcow.so.1",
     .package = "libqcow1",
     .prefix = "libqcow_file",
     .read = "_read_buffer_at_offset",
     .parent = "_get_utf8_backing_filename",
     .adopt = "_set_parent_file"},
};

bool OpenFile(const Container& container, const std::string& path, std::string& refusal) {
  switch (container.reader->format) {
    case ContainerFormat::kEwf:
      return OpenEwfSegments(container, path, refusal);
    case ContainerFormat::kQcow:
      if (!IsReadableQcow(path, refusal)) return false;
      break;
    case ContainerFormat::kVhd:  // and VHDX
      if (!IsReadableVhd(path, refusal) || !IsReadableVhdx(path, refusal)) return false;
      break;
    case ContainerFormat::kVmdk:
      if (!IsReadableVmdk(path, refusal)) return false;
      break;
    default:
      break;
  }
  auto* const open = Find<int(void*, const char*, int, void**)>(container, "_open");
  return open != nullptr && open(container.handle, path.c_str(), kReadOnly, nullptr) == 1;
}

// The name of the image that this one rests on; empty where it rests on none.
std::string ParentName(const Container& container) {
  if (container.reader->parent == nullptr) return {};
  const std::string sizeOf = std::string(container.reader->parent) + "_size";
  std::size_t size = 0;
  if (!Call(container, sizeOf.c_str(), container.handle, &size) || size < 2) return {};
  std::string name(size, '\0');
  if (!Call(container, container.reader->parent, container.handle, reinterpret_cast<u8*>(name.data()),
            size)) {
    return {};
  }
  name.resize(name.find('\0'));
  return name;
}

bool IsFile(const std::string& path, struct stat& status) {
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Where the parent is: as it is named, beside the child as it is named, beside the child by its last part.
// Names that Windows has written have backslashes. Empty: nowhere.
std::string FindParent(const std::string& child, std::string name) {
  const std::string folder = child.substr(0, child.rfind('/') + 1);  // npos + 1 is 0: no folder
  std::replace(name.begin(), name.end(), '\\', '/');
  const std::string last = name.substr(name.rfind('/') + 1);
  struct stat status {};
  for (const std::string& path : {name, folder + name, folder + last}) {
    const bool relative = !path.starts_with('/');
    if (path == name && relative) continue;  // what it is relative to is the child's folder
    if (IsFile(path, status)) return path;
  }
  if (folder.empty() && IsFile(name, status)) return name;
  return {};
}

bool SameFile(const std::string& one, const std::string& other) {
  struct stat first {};
  struct stat second {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// An image's own identity or its parent's; empty where the library does not know it.
std::vector<u8> Identity(const Container& container, const char* name) {
  if (name == nullptr) return {};
  std::vector<u8> identity(container.reader->identitySize);
  const bool known = identity.size() == sizeof(u32)
                         ? Call(container, name, container.handle, reinterpret_cast<u32*>(identity.data()))
                         : Call(container, name, container.handle, identity.data(), identity.size());
  return known ? identity : std::vector<u8>{};
}

// All zeros or all ones are what an image without a parent has.
bool IsNone(const std::vector<u8>& identity) {
  return std::all_of(identity.begin(), identity.end(),
                     [&](u8 byte) { return byte == identity[0] && (byte == 0 || byte == 0xFF); });
}

OpenedContainer OpenChain(const ContainerLibrary& library, const std::string& path,
                          std::vector<std::string>& chain, std::string& refusal);

bool AdoptParent(Container& container, const std::string& path, std::vector<std::string>& chain,
                 std::string& refusal) {
  const std::string name = ParentName(container);
  const std::vector<u8> wanted = Identity(container, container.reader->parentIdentity);
  if (name.empty() && IsNone(wanted)) return true;
  if (name.empty()) {
    refusal = "rests on another image, whose full path it does not hold";
    return false;
  }
  const std::string parentPath = FindParent(path, name);
  if (parentPath.empty()) {
    refusal = "rests on the image " + name + ", which is missing";
    return false;
  }
  for (const std::string& each : chain) {
    if (SameFile(each, parentPath)) {
      refusal = "rests on the image " + name + ", which rests on itself";
      return false;
    }
  }
  container.parent = OpenChain(*container.reader, parentPath, chain, refusal);
  if (container.parent == nullptr) {
    if (refusal.empty())
      refusal = "rests on the image " + name + ", which is damaged or of another kind" + kConvertIt;
    return false;
  }
  const std::vector<u8> found = Identity(*container.parent, container.reader->identity);
  if (!wanted.empty() && !found.empty() && wanted != found) {
    refusal = "rests on another state of the image " + name + " than the one that is there";
    return false;
  }
  u64 length = 0;
  if (!Call(container, "_get_media_size", container.handle, &length) || length > container.parent->length) {
    refusal = "is larger than the image " + name + " that it rests on" + kConvertIt;
    return false;
  }
  return Call(container, container.reader->adopt, container.handle, container.parent->handle);
}

OpenedContainer OpenChain(const ContainerLibrary& library, const std::string& path,
                          std::vector<std::string>& chain, std::string& refusal) {
  chain.push_back(path);
  OpenedContainer container(new Container);
  container->reader = &library;
  container->code = dlopen(library.file, RTLD_NOW | RTLD_LOCAL);
  if (container->code == nullptr || !Call(*container, "_initialize", &container->handle)) {
    return nullptr;
  }
  if (!OpenFile(*container, path, refusal) || !AdoptParent(*container, path, chain, refusal)) return nullptr;
  if (library.format == ContainerFormat::kVmdk && !OpenVmdkExtents(*container, path, refusal)) return nullptr;
  container->read = Find<ssize_t(void*, void*, std::size_t, i64, void**)>(*container, library.read);
  if (container->read == nullptr ||
      !Call(*container, "_get_media_size", container->handle, &container->length)) {
    return nullptr;
  }
  return container;
}

}  // namespace

void ContainerCloser::operator()(Container* container) const {
  if (container->handle != nullptr) {
    if (auto* const close = Find<int(void*, void**)>(*container, "_close")) close(container->handle, nullptr);
    if (auto* const release = Find<int(void**, void**)>(*container, "_free"))
      release(&container->handle, nullptr);
  }
  delete container;
}

const ContainerLibrary* LibraryFor(ContainerFormat format) {
  if (format == ContainerFormat::kVhdx) format = ContainerFormat::kVhd;
  const auto* const found = std::find_if(std::begin(kLibraries), std::end(kLibraries),
                                         [&](const ContainerLibrary& row) { return row.format == format; });
  return found == std::end(kLibraries) ? nullptr : found;
}

OpenedContainer OpenContainer(const ContainerKind& kind, const std::string& path, std::string& refusal) {
  const ContainerLibrary* const library = LibraryFor(kind.format);
  void* const code = dlopen(library->file, RTLD_NOW | RTLD_LOCAL);
  if (code == nullptr) {
    refusal = std::string("is ") + std::string(kind.name) + ", and " + library->file +
              ", which reads it, is missing: install the package " + library->package + ", or " +
              std::string(kind.advice);
    return nullptr;
  }
  std::vector<std::string> chain;
  OpenedContainer container = OpenChain(*library, path, chain, refusal);
  if (container == nullptr && !refusal.empty()) refusal = "is " + std::string(kind.name) + " that " + refusal;
  return container;
}

u64 ContainerLength(const Container& container) {
  return container.length;
}

bool ReadContainer(const Container& container, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  // A read that begins in a parent's part of the image goes on there: with a parent, none crosses a border
  // between the two, which lie at multiples of 512 bytes.
  constexpr std::size_t kBorders = 512;
  got = 0;
  while (got < count && offset + got < container.length) {
    std::size_t piece = count - got;
    if (container.parent != nullptr) piece = std::min<u64>(piece, kBorders - (offset + got) % kBorders);
    const ssize_t more =
        container.read(container.handle, buffer + got, piece, static_cast<i64>(offset + got), nullptr);
    if (more <= 0) return false;
    got += static_cast<std::size_t>(more);
  }
  return container.reader->format != ContainerFormat::kEwf || !HasEwfChecksumError(container, offset, got);
}

}  // namespace trovisk
