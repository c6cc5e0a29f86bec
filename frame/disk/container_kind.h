// Containers: files that hold a disk's bytes in a form of their own. Which one a file is, by its signature.

#ifndef TROVISK_FRAME_DISK_CONTAINER_KIND_H
#define TROVISK_FRAME_DISK_CONTAINER_KIND_H

#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// kFixedVhd: the disk's own bytes and a footer behind them, which needs no library.
enum class ContainerFormat { kEwf, kVhd, kFixedVhd, kVhdx, kVmdk, kQcow, kOther };

struct ContainerKind {
  ContainerFormat format;
  std::string_view name;    // with its article: "a VHDX image"
  std::string_view advice;  // how to come to the disk's bytes without a library that reads it
};

inline constexpr std::size_t kContainerHead = 1024;  // bytes that are looked at, at the start of the file
inline constexpr std::size_t kContainerTail = 512;   // and at its end

// The kind of the file; null: none that is known. head, tail: its first and last bytes, fewer where it has
// fewer.
const ContainerKind* ContainerKindOf(Bytes head, Bytes tail);

// The bytes of the disk in a VHD of fixed size whose file is so long; tail: as above.
u64 FixedVhdLength(Bytes tail, u64 fileLength);

// Which segment of an EWF image begins so, from 1.
u16 EwfSegment(Bytes head);

// What is said of a container that this program does not read: words that go on behind its path.
std::string NotRead(const ContainerKind& kind);

}  // namespace trovisk

#endif
