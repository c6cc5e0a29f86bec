// The rows of a listing, formatted by the block, against field-by-field printing.

#include <gtest/gtest.h>

#include "frame/dump.h"
#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

// One field after the other, as a listing is described to be.
void PrintRowsByField(Bytes bytes, std::size_t rows) {
  for (std::size_t row = 0; row < rows; ++row) {
    std::cout << "0x" << std::uppercase << std::hex << std::setw(3) << std::setfill('0') << row * 16 << "  ";
    const Bytes cells = SliceAt(bytes, row * 16, 16);
    std::string characters;
    for (const u8 byte : cells) {
      std::cout << std::setw(2) << unsigned{byte} << ' ';
      characters += byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
    }
    std::cout << std::dec << std::string((16 - cells.size()) * 3 + 4, ' ') << characters << '\n';
  }
}

// Every byte value at every place of a row.
std::vector<u8> Mixed(std::size_t count) {
  std::vector<u8> bytes(count);
  for (std::size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<u8>(i + i / 16 * 3);
  return bytes;
}

// Blocks end at 512 bytes; a listing may end before, at or behind such an end, and show rows without bytes.
TEST(DumpRows, EveryLengthReadsAsFieldByField) {
  for (const std::size_t count : {0U, 1U, 15U, 16U, 17U, 511U, 512U, 513U, 528U, 1023U, 1024U, 1030U}) {
    const std::vector<u8> bytes = Mixed(count);
    for (const std::size_t rows : {count / 16, count / 16 + 1, count / 16 + 33}) {
      EXPECT_EQ(TextOf([&] { PrintDumpRows(bytes, rows); }), TextOf([&] { PrintRowsByField(bytes, rows); }))
          << count << " bytes, " << rows << " rows";
    }
  }
}

// The offset grows beyond three digits with sectors of more than 4096 bytes.
TEST(DumpRows, OffsetsOfLargeSectors) {
  const std::vector<u8> bytes = Mixed(std::size_t{1} << 20);
  EXPECT_EQ(TextOf([&] { PrintDumpRows(bytes, bytes.size() / 16); }),
            TextOf([&] { PrintRowsByField(bytes, bytes.size() / 16); }));
}

}  // namespace
}  // namespace trovisk::test
