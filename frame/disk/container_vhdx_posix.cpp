// VHDX images whose log has to be replayed: writes that a crash left in it. The library reads past the log.
//
// Two headers stand at 64 and 128 KiB; of the sound ones that of the higher sequence number counts. It names
// the log and the GUID of the entries that are in force; no GUID, no log. An entry begins with a sector of
// the log. Little-endian. Layout: Microsoft, [MS-VHDX]. Not checked: whether the entries make up a sequence
// that is whole, and anything else, which is the library's affair.

#include "frame/disk/container_vhdx_posix.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "frame/bytes.h"
#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

constexpr u64 kFirstHeader = u64{64} * 1024;
constexpr u64 kSecondHeader = u64{128} * 1024;
constexpr std::size_t kHeader = 4096;
constexpr std::size_t kChecksum = 4;    // u32, of the header with zeros in its place
constexpr std::size_t kSequence = 8;    // u64
constexpr std::size_t kLogGuid = 48;    // 16 bytes
constexpr std::size_t kLogLength = 68;  // u32, bytes
constexpr std::size_t kLogOffset = 72;  // u64, bytes

constexpr std::size_t kLogSector = 4096;
constexpr std::size_t kEntryGuid = 32;  // in an entry's header

constexpr std::size_t kGuid = 16;

// CRC-32C: the reflected polynomial 82F63B78, from all ones, inverted.
u32 Crc32c(Bytes bytes) {
  u32 crc = ~u32{0};
  for (const u8 byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit)
      crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0x82F63B78 : 0);
  }
  return ~crc;
}

// The header at an offset; none where it is not sound.
std::optional<std::vector<u8>> ReadHeader(int descriptor, u64 offset) {
  std::vector<u8> header = ReadUpTo(descriptor, offset, kHeader);
  if (header.size() < kHeader || !EqualsText(SliceAt(header, 0, 4), "head")) return std::nullopt;
  const u32 checksum = Le32At(header, kChecksum);
  std::fill_n(header.begin() + kChecksum, sizeof checksum, u8{0});
  if (Crc32c(header) != checksum) return std::nullopt;
  return header;
}

bool HasLog(int descriptor) {
  constexpr u32 kMostLog = u32{1} << 28;
  const auto first = ReadHeader(descriptor, kFirstHeader);
  const auto second = ReadHeader(descriptor, kSecondHeader);
  if (!first && !second) return false;
  const bool secondCounts = second && (!first || Le64At(*second, kSequence) > Le64At(*first, kSequence));
  const std::vector<u8>& header = secondCounts ? *second : *first;
  const Bytes guid = SliceAt(header, kLogGuid, kGuid);
  if (std::all_of(guid.begin(), guid.end(), [](u8 byte) { return byte == 0; })) return false;
  const u64 offset = Le64At(header, kLogOffset);
  const u32 length = std::min(Le32At(header, kLogLength), kMostLog);
  for (u64 at = 0; at < length; at += kLogSector) {
    const std::vector<u8> entry = ReadUpTo(descriptor, offset + at, kLogSector);
    if (entry.empty()) return false;
    if (!EqualsText(SliceAt(entry, 0, 4), "loge")) continue;
    const Bytes its = SliceAt(entry, kEntryGuid, kGuid);
    if (std::equal(its.begin(), its.end(), guid.begin(), guid.end())) return true;
  }
  return false;
}

}  // namespace

bool IsReadableVhdx(const std::string& path, std::string& refusal) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  const bool hasLog = HasLog(descriptor);
  close(descriptor);
  if (hasLog) {
    refusal =
        "has writes in its log that are not where they belong yet: have them replayed in a copy of it with "
        "\"qemu-img check -r all\"";
  }
  return !hasLog;
}

}  // namespace trovisk
