#include "frame/report/hex_rows.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "frame/report/hex_row_layout.h"

namespace trovisk {
namespace {

// A byte's cell with a blank to spare, so that it is stored as one word: a range dump is bound by this.
constexpr std::array<std::array<char, 4>, 256> MakeCells() {
  std::array<std::array<char, 4>, 256> cells{};
  for (std::size_t i = 0; i < cells.size(); ++i)
    cells[i] = {kHexDigits[i >> 4], kHexDigits[i & 15], ' ', ' '};
  return cells;
}
constexpr auto kCells = MakeCells();

constexpr char CharacterOf(u8 byte) {
  return byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
}

char* PutLargeOffset(char* out, std::size_t offset) {
  std::size_t digits = 3;
  while (digits < 2 * sizeof offset && offset >> digits * 4 != 0)
    ++digits;
  *out++ = '0';
  *out++ = 'x';
  while (digits-- > 0)
    *out++ = kHexDigits[offset >> digits * 4 & 15];
  *out++ = ' ';
  *out++ = ' ';
  return out;
}

// Offsets of rows are multiples of sixteen.
inline char* PutOffset(char* out, std::size_t offset) {
  const std::size_t row = offset / kRowBytes;
  if (row >= kRowOffsets.size()) return PutLargeOffset(out, offset);
  std::memcpy(out, kRowOffsets[row].data(), kRowOffsets[row].size());
  return out + kOffsetText;
}

inline void PutGap(char* out) {
  std::memset(out, ' ', kGap);
}

}  // namespace

char* PutRowsByTable(char* out, Bytes bytes, std::size_t offset) {
  std::array<char, 32 * kRowBytes> characters;
  for (std::size_t at = 0; at + kRowBytes <= bytes.size(); at += kRowBytes) {
    const std::size_t place = at % characters.size();
    if (place == 0) {  // in a loop of its own, which compilers vectorise
      const Bytes part = SliceAt(bytes, at, characters.size());
      std::transform(part.begin(), part.end(), characters.begin(), CharacterOf);
    }
    out = PutOffset(out, offset + at);
    for (std::size_t i = 0; i < kRowBytes; ++i)
      std::memcpy(out + i * kCellText, kCells[bytes[at + i]].data(), 4);
    PutGap(out + kCellsText);
    std::memcpy(out + kCellsText + kGap, characters.data() + place, kRowBytes);
    out += kAfterOffset;
    out[-1] = '\n';
  }
  return out;
}

// Not through a pointer: after a system call, processors do not predict where such a call goes.
char* PutRows(char* out, Bytes bytes, std::size_t offset) {
  static const bool hasAvx2 = HasAvx2();
  return hasAvx2 ? PutRowsByAvx2(out, bytes, offset) : PutRowsByTable(out, bytes, offset);
}

char* PutShortRow(char* out, Bytes row, std::size_t offset) {
  out = PutOffset(out, offset);
  std::memset(out, ' ', kCellsText + kGap);
  char* character = out + kCellsText + kGap;
  for (const u8 byte : row) {
    std::memcpy(out, kCells[byte].data(), kCellText);
    out += kCellText;
    *character++ = CharacterOf(byte);
  }
  *character++ = '\n';
  return character;
}

}  // namespace trovisk
