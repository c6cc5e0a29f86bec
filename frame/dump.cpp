#include "frame/dump.h"

#include <array>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <string>
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
constexpr char kDigits[] = "0123456789ABCDEF";

// A byte's cell with a blank to spare, so that it is stored as one word: a range dump is bound by this.
constexpr auto kCells = [] {
  std::array<std::array<char, 4>, 256> cells{};
  for (std::size_t i = 0; i < cells.size(); ++i)
    cells[i] = {kDigits[i >> 4], kDigits[i & 15], ' ', ' '};
  return cells;
}();

constexpr char CharacterOf(u8 byte) {
  return byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
}

// Writes "0x", the offset in at least three digits and two blanks; gives the place behind them.
char* PutOffset(char* out, std::size_t offset) {
  *out++ = '0';
  *out++ = 'x';
  int shift = 8;
  while (offset >> shift > 15)
    shift += 4;
  for (; shift >= 0; shift -= 4)
    *out++ = kDigits[offset >> shift & 15];
  *out++ = ' ';
  *out++ = ' ';
  return out;
}

// Writes a whole row; gives the place behind its line end. Needs kRowText characters of room.
char* PutRow(char* out, const u8* bytes, std::size_t offset) {
  std::array<u8, kRowBytes> row;  // a copy, which the stores below cannot alias
  std::memcpy(row.data(), bytes, row.size());
  out = PutOffset(out, offset);
  for (std::size_t i = 0; i < kRowBytes; ++i)
    std::memcpy(out + i * kCellText, kCells[row[i]].data(), 4);
  out += kRowBytes * kCellText;
  std::memset(out, ' ', kGap);
  out += kGap;
  for (std::size_t i = 0; i < kRowBytes; ++i)
    out[i] = CharacterOf(row[i]);
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

void PrintColumns() {
  std::cout << LineEnd << kDumpColumns << LineEnd << LineEnd;
}

}  // namespace

// Rows are formatted into one text and handed to the stream at once, which is left as field-by-field
// printing would leave it: zero fill, decimal, and capitals on once a byte has been shown.
void PrintDumpRows(Bytes bytes, std::size_t rows) {
  if (rows == 0) return;
  std::string text(rows * kRowText, '\0');
  char* out = text.data();
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t offset = row * kRowBytes;
    if (offset + kRowBytes <= bytes.size()) {
      out = PutRow(out, bytes.data() + offset, offset);
    } else {
      out = PutShortRow(out, FromAt(bytes, offset), offset);
    }
  }
  if (!bytes.empty()) std::cout << std::uppercase;
  std::cout << std::setfill('0') << std::dec;
  std::cout.write(text.data(), out - text.data() - 1);
  std::cout << LineEnd;
}

u64 DumpRawSector(WideText description, u64 sector, bool print) {
  if (!print) return sector + 1;
  std::vector<u8> bytes(disk.bytesPerSector);
  PrintSectorHeader(description, sector);
  if (!ReadRecord(bytes)) return kEndPass;
  if (AllZero(bytes)) {
    std::cout << "... empty ..." << LineEnd;
    return sector + 1;
  }
  PrintColumns();
  PrintDumpRows(bytes, bytes.size() / kRowBytes);
  std::cout << LineEnd;
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
  PrintColumns();
  PrintDumpRows(bytes, bytes.size() / kRowBytes);
  std::cout << LineEnd;
  return sector + 1;
}

}  // namespace trovisk
