#include "frame/dump.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <vector>

#include "frame/decode.h"
#include "frame/fields.h"
#include "frame/global.h"

namespace trovisk {
namespace {

constexpr std::size_t kRowBytes = 16;
constexpr std::size_t kCellText = 3;  // "XX "
constexpr std::size_t kGap = 4;       // blanks between the cells and the characters
constexpr std::size_t kOffsetText = 2 + 2 * sizeof(std::size_t) + 2;
constexpr std::size_t kRowText = kOffsetText + kRowBytes * kCellText + kGap + kRowBytes + 1;
constexpr std::size_t kBlockBytes = 512;  // formatted and handed over at once
constexpr char kDigits[] = "0123456789ABCDEF";

// A byte's cell with a blank to spare, so that it is stored as one word: a range dump is bound by this.
constexpr std::array<std::array<char, 4>, 256> MakeCells() {
  std::array<std::array<char, 4>, 256> cells{};
  for (std::size_t i = 0; i < cells.size(); ++i)
    cells[i] = {kDigits[i >> 4], kDigits[i & 15], ' ', ' '};
  return cells;
}
constexpr auto kCells = MakeCells();

constexpr char CharacterOf(u8 byte) {
  return byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
}

// Writes "0x", the offset in at least three digits and two blanks; gives the place behind them.
char* PutOffset(char* out, std::size_t offset) {
  int digits = 3;
  while (offset >> digits * 4 != 0)
    ++digits;
  *out++ = '0';
  *out++ = 'x';
  for (; digits > 3; --digits)
    *out++ = kDigits[offset >> (digits - 1) * 4 & 15];
  *out++ = kDigits[offset >> 8 & 15];  // three times the same: the loop above is for large sectors alone
  *out++ = kDigits[offset >> 4 & 15];
  *out++ = kDigits[offset & 15];
  *out++ = ' ';
  *out++ = ' ';
  return out;
}

// Writes a whole row; gives the place behind its line end. Needs kRowText characters of room.
char* PutRow(char* out, const u8* bytes, const char* characters, std::size_t offset) {
  out = PutOffset(out, offset);
  for (std::size_t i = 0; i < kRowBytes; ++i)
    std::memcpy(out + i * kCellText, kCells[bytes[i]].data(), 4);
  out += kRowBytes * kCellText;
  std::memset(out, ' ', kGap);
  out += kGap;
  std::memcpy(out, characters, kRowBytes);
  out += kRowBytes;
  *out++ = '\n';
  return out;
}

// The same for a row whose bytes end early: blanks for the missing cells, nothing for the missing characters.
char* PutShortRow(char* out, Bytes row, std::size_t offset) {
  out = PutOffset(out, offset);
  std::memset(out, ' ', kRowBytes * kCellText + kGap);
  char* character = out + kRowBytes * kCellText + kGap;
  for (const u8 byte : row) {
    std::memcpy(out, kCells[byte].data(), kCellText);
    out += kCellText;
    *character++ = CharacterOf(byte);
  }
  *character++ = '\n';
  return character;
}

// At most kBlockBytes of a listing: so many rows, whose first has that offset.
void PrintBlock(Bytes bytes, std::size_t rows, std::size_t offset) {
  std::array<char, kBlockBytes> characters;
  for (std::size_t i = 0; i < bytes.size(); ++i)  // in a loop of its own, which compilers vectorise
    characters[i] = CharacterOf(bytes[i]);
  std::array<char, kBlockBytes / kRowBytes * kRowText> text;
  char* out = text.data();
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t at = row * kRowBytes;
    if (at + kRowBytes <= bytes.size()) {
      out = PutRow(out, bytes.data() + at, characters.data() + at, offset + at);
    } else {
      out = PutShortRow(out, FromAt(bytes, at), offset + at);
    }
  }
  PrintLines({text.data(), static_cast<std::size_t>(out - text.data())});
}

// A listing of all whole rows between its column heading and an empty line.
void PrintListing(Bytes bytes) {
  PrintLines(kDumpHeading);
  PrintDumpRows(bytes, bytes.size() / kRowBytes);
  PrintLines("\n");
}

}  // namespace

// Rows are formatted by the block and handed to the stream at once, which is left as field-by-field printing
// would leave it: zero fill, decimal, and capitals on once a byte has been shown.
void PrintDumpRows(Bytes bytes, std::size_t rows) {
  if (rows == 0) return;
  if (!bytes.empty()) std::cout << std::uppercase;
  std::cout << std::setfill('0') << std::dec;
  constexpr std::size_t kBlockRows = kBlockBytes / kRowBytes;
  for (std::size_t row = 0; row < rows; row += kBlockRows) {
    const std::size_t offset = row * kRowBytes;
    PrintBlock(SliceAt(bytes, offset, kBlockBytes), std::min(rows - row, kBlockRows), offset);
  }
}

u64 DumpRawSector(WideText description, u64 sector, bool print) {
  if (!print) return sector + 1;
  static std::vector<u8> bytes;  // one for all sectors
  bytes.resize(disk.bytesPerSector);
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
