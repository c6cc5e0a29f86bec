#include "frame/dump.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <memory>
#include <span>
#include <vector>

#include "frame/decode.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "frame/hex_rows.h"

namespace trovisk {
namespace {

constexpr std::size_t kBlockBytes = 4096;  // formatted and handed over at once
static_assert(kDumpHeading.size() + kBlockBytes / kRowBytes * kRowText + 1 <= kLinesInPlace);

// Room for a sector, one for all of them. It begins with a cache line: systems copy there faster.
std::span<u8> SectorBuffer() {
  constexpr std::size_t kLine = 64;
  static std::vector<u8> room;
  room.resize(disk.bytesPerSector + kLine);
  void* start = room.data();
  std::size_t space = room.size();
  std::align(kLine, disk.bytesPerSector, start, space);
  return {static_cast<u8*>(start), disk.bytesPerSector};
}

// What stands around the rows: nothing, or the column heading and an empty line.
enum class Around { kNothing, kListing };

// The rows are formatted by the block and handed to the stream at once, which is left as field-by-field
// printing would leave it: zero fill, decimal, and capitals on once a byte has been shown.
void PrintRows(Bytes bytes, std::size_t rows, Around around) {
  if (rows != 0) {
    if (!bytes.empty()) std::cout << std::uppercase;
    std::cout << std::setfill('0') << std::dec;
  }
  char* out = RoomForLines();
  if (around == Around::kListing) out = PutText(out, kDumpHeading);
  const std::size_t end = rows * kRowBytes;
  for (std::size_t at = 0; at < end;) {
    const std::size_t blockEnd = std::min(at + kBlockBytes, end);
    const std::size_t wholeEnd = std::clamp(bytes.size() / kRowBytes * kRowBytes, at, blockEnd);
    out = PutRows(out, SliceAt(bytes, at, wholeEnd - at), at);
    for (at = wholeEnd; at < blockEnd; at += kRowBytes)
      out = PutShortRow(out, FromAt(bytes, at), at);
    if (at < end) {
      PrintLinesInPlace(out);
      out = RoomForLines();
    }
  }
  if (around == Around::kListing) *out++ = '\n';
  PrintLinesInPlace(out);
}

// All whole rows.
void PrintListing(Bytes bytes) {
  PrintRows(bytes, bytes.size() / kRowBytes, Around::kListing);
}

}  // namespace

void PrintDumpRows(Bytes bytes, std::size_t rows) {
  PrintRows(bytes, rows, Around::kNothing);
}

u64 DumpRawSector(WideText description, u64 sector, bool print) {
  if (!print) return sector + 1;
  const std::span<u8> bytes = SectorBuffer();
  PrintSectorHeader(description, sector);
  if (!ReadRecord(bytes)) return kEndPass;
  if (AllZero(bytes)) {
    PrintLines("... empty ...\n");
    return sector + 1;
  }
  PrintListing(bytes);
  return sector + 1;
}

u64 DumpLabelledRawSector(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  return DumpRawSector(L"as a raw sector", sector, print);
}

u64 DumpSector512(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> bytes{};
  if (!ReadRecord(bytes)) return kEndPass;
  if (!print) return sector + 1;
  PrintListing(bytes);
  return sector + 1;
}

}  // namespace trovisk
