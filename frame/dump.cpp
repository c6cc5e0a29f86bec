#include "frame/dump.h"

#include <array>
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
constexpr std::size_t kRowText = 2 + 8 + 2 + kRowBytes * 3 + 4 + kRowBytes + 1;  // with a long offset
constexpr char kDigits[] = "0123456789ABCDEF";

// "XX " for every byte, and the byte as a character or ".": a range dump is bound by this loop.
constexpr auto kHexCells = [] {
  std::array<std::array<char, 3>, 256> cells{};
  for (std::size_t i = 0; i < cells.size(); ++i)
    cells[i] = {kDigits[i >> 4], kDigits[i & 15], ' '};
  return cells;
}();
constexpr auto kCharacters = [] {
  std::array<char, 256> characters{};
  for (std::size_t i = 0; i < characters.size(); ++i) {
    characters[i] = i >= 0x20 && i <= 0x7E ? static_cast<char>(i) : '.';
  }
  return characters;
}();

// Appends "0x" and the offset in at least three digits.
void AppendOffset(std::string& text, std::size_t offset) {
  std::array<char, 2 * sizeof offset> digits;
  std::size_t count = 0;
  for (; offset != 0 || count < 3; offset >>= 4)
    digits[count++] = kDigits[offset & 15];
  text += "0x";
  while (count > 0)
    text += digits[--count];
}

void AppendRow(std::string& text, Bytes row, std::size_t offset) {
  AppendOffset(text, offset);
  std::array<char, 2 + kRowBytes * 3 + 4 + kRowBytes + 1> cells;
  cells.fill(' ');
  char* hex = cells.data() + 2;
  char* character = cells.data() + 2 + kRowBytes * 3 + 4;
  for (const u8 byte : row) {
    const auto& cell = kHexCells[byte];
    *hex++ = cell[0];
    *hex++ = cell[1];
    *hex++ = cell[2];
    *character++ = kCharacters[byte];
  }
  *character++ = '\n';
  text.append(cells.data(), character);
}

void PrintColumns() {
  std::cout << LineEnd << kDumpColumns << LineEnd << LineEnd;
}

}  // namespace

// Rows are formatted into one text and handed to the stream at once, which is left as field-by-field
// printing would leave it: capitals on, zero fill, decimal.
void PrintDumpRows(Bytes bytes, std::size_t rows) {
  if (rows == 0) return;
  std::string text;
  text.reserve(rows * kRowText);
  for (std::size_t row = 0; row < rows; ++row) {
    AppendRow(text, SliceAt(bytes, row * kRowBytes, kRowBytes), row * kRowBytes);
  }
  std::cout << std::uppercase << std::setfill('0') << std::dec;
  std::cout.write(text.data(), static_cast<std::streamsize>(text.size() - 1));
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
