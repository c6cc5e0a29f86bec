// The rows of a listing, by each way of writing them, and by the block against field-by-field printing.

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "frame/report/hex_rows.h"
#include "frame/report/listing.h"
#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

// One field after the other, as frame/report/hex_rows.h describes a row.
std::string RowsByField(Bytes bytes, std::size_t rows) {
  std::ostringstream text;
  text << std::uppercase << std::hex << std::setfill('0');
  for (std::size_t row = 0; row < rows; ++row) {
    text << "0x" << std::setw(3) << row * 16 << "  ";
    const Bytes cells = SliceAt(bytes, row * 16, 16);
    std::string characters;
    for (const u8 byte : cells) {
      text << std::setw(2) << unsigned{byte} << ' ';
      characters += byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
    }
    text << std::string((16 - cells.size()) * 3 + 4, ' ') << characters << '\n';
  }
  return text.str();
}

// Every byte value at every place of a row.
std::vector<u8> Mixed(std::size_t count) {
  std::vector<u8> bytes(count);
  for (std::size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<u8>(i + i / 16 * 3);
  return bytes;
}

// What one of the ways of writing rows writes.
std::string Rows(char* (*writer)(char*, Bytes, std::size_t), Bytes bytes, std::size_t offset) {
  std::vector<char> text((bytes.size() / kRowBytes + 1) * kRowText);
  return {text.data(), writer(text.data(), bytes, offset)};
}

TEST(HexRows, BothWaysWriteARowAsItIsDescribed) {
  constexpr std::array<u8, 32> kBytes = {0x00, 0x1F, 0x20, 0x21, 0x2F, 0x30, 0x39, 0x3A, 0x40, 0x41, 0x5A,
                                         0x7E, 0x7F, 0x80, 0xFE, 0xFF, 'T',  'r',  'o',  'v',  'i',  's',
                                         'k',  ' ',  0x0A, 0xA0, 0x0D, 0xD0, 0x9C, 0xC9, 0xEB, 0xBE};
  const std::string rows =
      "0xFE0  00 1F 20 21 2F 30 39 3A 40 41 5A 7E 7F 80 FE FF     .. !/09:@AZ~....\n"
      "0xFF0  54 72 6F 76 69 73 6B 20 0A A0 0D D0 9C C9 EB BE     Trovisk ........\n";
  EXPECT_EQ(Rows(PutRowsByTable, kBytes, 0xFE0), rows);
  EXPECT_EQ(Rows(PutRows, kBytes, 0xFE0), rows);
}

// Every byte at every place, odd numbers of rows, a rest of less than a row, offsets of three to five digits.
TEST(HexRows, BothWaysWriteTheSame) {
  if (!HasAvx2()) GTEST_SKIP() << "this processor or this build has no AVX2";
  const std::vector<u8> bytes = Mixed(256 * 16 + 15);
  for (std::size_t start = 0; start < 256; ++start) {
    const Bytes part = FromAt(bytes, start);
    for (const std::size_t count : {std::size_t{0}, std::size_t{15}, std::size_t{16}, std::size_t{31},
                                    std::size_t{32}, std::size_t{48}, std::size_t{63}, part.size()}) {
      for (const std::size_t offset : {0x0U, 0xFE0U, 0xFF0U, 0xFFF0U}) {
        ASSERT_EQ(Rows(PutRowsByAvx2, part.first(count), offset),
                  Rows(PutRowsByTable, part.first(count), offset))
            << count << " bytes from " << start << " on, offset " << offset;
      }
    }
  }
}

// A listing's blocks end at 4096 bytes; a listing may end before, at or behind such an end, and show rows
// without bytes.
TEST(DumpRows, EveryLengthReadsAsFieldByField) {
  for (const std::size_t count :
       {0U, 1U, 15U, 16U, 17U, 511U, 512U, 513U, 528U, 4095U, 4096U, 4097U, 4112U, 8192U, 8200U}) {
    const std::vector<u8> bytes = Mixed(count);
    for (const std::size_t rows : {count / 16, count / 16 + 1, count / 16 + 257}) {
      EXPECT_EQ(TextOf([&] { PrintDumpRows(bytes, rows); }), RowsByField(bytes, rows))
          << count << " bytes, " << rows << " rows";
    }
  }
}

// The offset grows beyond three digits with sectors of more than 4096 bytes.
TEST(DumpRows, OffsetsOfLargeSectors) {
  const std::vector<u8> bytes = Mixed(std::size_t{1} << 20);
  EXPECT_EQ(TextOf([&] { PrintDumpRows(bytes, bytes.size() / 16); }), RowsByField(bytes, bytes.size() / 16));
}

}  // namespace
}  // namespace trovisk::test
