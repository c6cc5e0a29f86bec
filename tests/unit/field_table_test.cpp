// Tables of report lines.

#include "frame/field_table.h"

#include <gtest/gtest.h>

#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

constexpr std::array<u8, 16> kRecord = {0x01, 0x02, 0x03, 0xF4, 0xAB, 0xCD, 0xEF, 0xF8,
                                        'T',  'e',  'x',  't',  0,    'x',  '\r', 0xFF};

std::string LineOf(const FieldRow& row) {
  return TextOf([&] { PrintFields(kRecord, std::array{row}); });
}

std::string LineOf(Format format, std::size_t offset = 0, std::size_t length = 0) {
  return LineOf({"value : ", offset, format, length});
}

TEST(PrintFields, DecimalNumbers) {
  EXPECT_EQ(LineOf(Format::kU8), "value : 1\n");
  EXPECT_EQ(LineOf(Format::kU8, 15), "value : 255\n");
  EXPECT_EQ(LineOf(Format::kLe16), "value : 513\n");
  EXPECT_EQ(LineOf(Format::kBe16), "value : 258\n");
  EXPECT_EQ(LineOf(Format::kLe32), "value : 4093837825\n");
  EXPECT_EQ(LineOf(Format::kBe32), "value : 16909300\n");
  EXPECT_EQ(LineOf(Format::kLe64), "value : 17937781979256914433\n");
  EXPECT_EQ(LineOf(Format::kBe64), "value : 72624893380653048\n");
}

TEST(PrintFields, HexadecimalBytes) {
  EXPECT_EQ(LineOf(Format::kHexBytes, 2, 4), "value : 03F4ABCD\n");
  EXPECT_EQ(LineOf(Format::kReversedHexBytes, 2, 4), "value : CDABF403\n");
}

TEST(PrintFields, Texts) {
  EXPECT_EQ(LineOf(Format::kChars, 8, 3), "value : Tex\n");
  EXPECT_EQ(LineOf(Format::kChars, 8, 8), "value : Text\n");
  EXPECT_EQ(LineOf(Format::kChars, 13, 3), "value : x<CR><0xFF>\n");
}

TEST(PrintFields, Guids) {
  EXPECT_EQ(LineOf(Format::kGuid), "value : f4030201-cdab-f8ef-5465-787400780dff\n");
  EXPECT_EQ(LineOf(Format::kStoredGuid), "value : 010203F4-ABCD-EFF8-5465-787400780DFF\n");
}

TEST(PrintFields, NamesAndSerials) {
  EXPECT_EQ(LineOf(Format::kMediaType, 7), "value : Fixed Hard Drive\n");
  EXPECT_EQ(LineOf(Format::kMediaType, 0), "value : unknown\n");
  EXPECT_EQ(LineOf(Format::kVolumeSerial), "value : F8EFCDABF4030201 (F403-0201)\n");
}

TEST(PrintFields, RowsInTheirOrderWithTheirSuffixes) {
  constexpr FieldRow kRows[] = {
      {.label = "Size : ", .offset = 1, .format = Format::kU8, .suffix = " (bytes)"},
      {.label = "", .offset = 0, .format = Format::kLe16},
  };
  EXPECT_EQ(TextOf([&] { PrintFields(kRecord, kRows); }), "Size : 2 (bytes)\n513\n");
}

constexpr bool Fits(const FieldRow& row, std::size_t size) {
  return FieldsFit(std::span(&row, 1), size);
}

// The length follows from the format, or is given.
TEST(FieldsFit, FieldsThatEndWithTheStructure) {
  EXPECT_TRUE(Fits({"", 15, Format::kU8}, 16));
  EXPECT_TRUE(Fits({"", 15, Format::kMediaType}, 16));
  EXPECT_TRUE(Fits({"", 14, Format::kLe16}, 16));
  EXPECT_TRUE(Fits({"", 14, Format::kBe16}, 16));
  EXPECT_TRUE(Fits({"", 12, Format::kLe32}, 16));
  EXPECT_TRUE(Fits({"", 12, Format::kBe32}, 16));
  EXPECT_TRUE(Fits({"", 8, Format::kLe64}, 16));
  EXPECT_TRUE(Fits({"", 8, Format::kBe64}, 16));
  EXPECT_TRUE(Fits({"", 8, Format::kVolumeSerial}, 16));
  EXPECT_TRUE(Fits({"", 0, Format::kGuid}, 16));
  EXPECT_TRUE(Fits({"", 0, Format::kStoredGuid}, 16));
  EXPECT_TRUE(Fits({"", 3, Format::kHexBytes, 13}, 16));
  EXPECT_TRUE(Fits({"", 3, Format::kReversedHexBytes, 13}, 16));
  EXPECT_TRUE(Fits({"", 3, Format::kChars, 13}, 16));
}

TEST(FieldsFit, FieldsOneByteTooFar) {
  EXPECT_FALSE(Fits({"", 16, Format::kU8}, 16));
  EXPECT_FALSE(Fits({"", 16, Format::kMediaType}, 16));
  EXPECT_FALSE(Fits({"", 15, Format::kLe16}, 16));
  EXPECT_FALSE(Fits({"", 15, Format::kBe16}, 16));
  EXPECT_FALSE(Fits({"", 13, Format::kLe32}, 16));
  EXPECT_FALSE(Fits({"", 13, Format::kBe32}, 16));
  EXPECT_FALSE(Fits({"", 9, Format::kLe64}, 16));
  EXPECT_FALSE(Fits({"", 9, Format::kBe64}, 16));
  EXPECT_FALSE(Fits({"", 9, Format::kVolumeSerial}, 16));
  EXPECT_FALSE(Fits({"", 1, Format::kGuid}, 16));
  EXPECT_FALSE(Fits({"", 1, Format::kStoredGuid}, 16));
  EXPECT_FALSE(Fits({"", 4, Format::kHexBytes, 13}, 16));
  EXPECT_FALSE(Fits({"", 4, Format::kReversedHexBytes, 13}, 16));
  EXPECT_FALSE(Fits({"", 4, Format::kChars, 13}, 16));
}

TEST(FieldsFit, AForgottenLengthDoesNotFit) {
  EXPECT_FALSE(Fits({"", 0, Format::kHexBytes}, 16));
  EXPECT_FALSE(Fits({"", 0, Format::kReversedHexBytes}, 16));
  EXPECT_FALSE(Fits({"", 0, Format::kChars}, 16));
}

// One row that does not fit is enough.
TEST(FieldsFit, EveryRowCounts) {
  constexpr FieldRow kRows[] = {{"", 0, Format::kU8}, {"", 16, Format::kU8}};
  static_assert(FieldsFit(kRows, 17) && !FieldsFit(kRows, 16));
  EXPECT_TRUE(FieldsFit({}, 0));
}

}  // namespace
}  // namespace trovisk::test
