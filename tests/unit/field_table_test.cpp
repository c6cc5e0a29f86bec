// Tables of report lines.

#include "frame/report/field_table.h"

#include <gtest/gtest.h>

#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

constexpr std::array<u8, 16> kRecord = {0x01, 0x02, 0x03, 0xF4, 0xAB, 0xCD, 0xEF, 0xF8,
                                        'T',  'e',  'x',  't',  0,    'x',  '\r', 0xFF};

std::string LineOf(const FieldRow& row) {
  return TextOf([&] { PrintFields(kRecord, std::array{row}); });
}

std::string LineOf(const Format& format, std::size_t offset = 0) {
  return LineOf({"value : ", offset, format});
}

TEST(PrintFields, DecimalNumbers) {
  EXPECT_EQ(LineOf(kU8), "value : 1\n");
  EXPECT_EQ(LineOf(kU8, 15), "value : 255\n");
  EXPECT_EQ(LineOf(kLe16), "value : 513\n");
  EXPECT_EQ(LineOf(kBe16), "value : 258\n");
  EXPECT_EQ(LineOf(kLe32), "value : 4093837825\n");
  EXPECT_EQ(LineOf(kBe32), "value : 16909300\n");
  EXPECT_EQ(LineOf(kLe64), "value : 17937781979256914433\n");
  EXPECT_EQ(LineOf(kBe64), "value : 72624893380653048\n");
}

TEST(PrintFields, HexadecimalBytes) {
  EXPECT_EQ(LineOf(HexBytes(4), 2), "value : 03F4ABCD\n");
  EXPECT_EQ(LineOf(ReversedHexBytes(4), 2), "value : CDABF403\n");
}

TEST(PrintFields, Texts) {
  EXPECT_EQ(LineOf(Chars(3), 8), "value : Tex\n");
  EXPECT_EQ(LineOf(Chars(8), 8), "value : Text\n");
  EXPECT_EQ(LineOf(Chars(3), 13), "value : x<CR><0xFF>\n");
}

TEST(PrintFields, Guids) {
  EXPECT_EQ(LineOf(kGuidText), "value : f4030201-cdab-f8ef-5465-787400780dff\n");
  EXPECT_EQ(LineOf(kStoredGuidText), "value : 010203F4-ABCD-EFF8-5465-787400780DFF\n");
}

TEST(PrintFields, NamesAndSerials) {
  EXPECT_EQ(LineOf(kMediaType, 7), "value : Fixed Hard Drive\n");
  EXPECT_EQ(LineOf(kMediaType, 0), "value : unknown\n");
  EXPECT_EQ(LineOf(VolumeSerial(8)), "value : F8EFCDABF4030201 (F403-0201)\n");
}

TEST(PrintFields, RowsInTheirOrderWithTheirSuffixes) {
  constexpr FieldRow kRows[] = {
      {.label = "Size : ", .offset = 1, .format = kU8, .suffix = " (bytes)"},
      {.label = "", .offset = 0, .format = kLe16},
  };
  EXPECT_EQ(TextOf([&] { PrintFields(kRecord, kRows); }), "Size : 2 (bytes)\n513\n");
}

constexpr bool Fits(const FieldRow& row, std::size_t size) {
  return FieldsFit(std::span(&row, 1), size);
}

TEST(FieldsFit, FieldsThatEndWithTheStructure) {
  EXPECT_TRUE(Fits({"", 15, kU8}, 16));
  EXPECT_TRUE(Fits({"", 15, kMediaType}, 16));
  EXPECT_TRUE(Fits({"", 14, kLe16}, 16));
  EXPECT_TRUE(Fits({"", 14, kBe16}, 16));
  EXPECT_TRUE(Fits({"", 12, kLe32}, 16));
  EXPECT_TRUE(Fits({"", 12, kBe32}, 16));
  EXPECT_TRUE(Fits({"", 8, kLe64}, 16));
  EXPECT_TRUE(Fits({"", 8, kBe64}, 16));
  EXPECT_TRUE(Fits({"", 8, VolumeSerial(8)}, 16));
  EXPECT_TRUE(Fits({"", 0, kGuidText}, 16));
  EXPECT_TRUE(Fits({"", 0, kStoredGuidText}, 16));
  EXPECT_TRUE(Fits({"", 3, HexBytes(13)}, 16));
  EXPECT_TRUE(Fits({"", 3, ReversedHexBytes(13)}, 16));
  EXPECT_TRUE(Fits({"", 3, Chars(13)}, 16));
}

TEST(FieldsFit, FieldsOneByteTooFar) {
  EXPECT_FALSE(Fits({"", 16, kU8}, 16));
  EXPECT_FALSE(Fits({"", 16, kMediaType}, 16));
  EXPECT_FALSE(Fits({"", 15, kLe16}, 16));
  EXPECT_FALSE(Fits({"", 15, kBe16}, 16));
  EXPECT_FALSE(Fits({"", 13, kLe32}, 16));
  EXPECT_FALSE(Fits({"", 13, kBe32}, 16));
  EXPECT_FALSE(Fits({"", 9, kLe64}, 16));
  EXPECT_FALSE(Fits({"", 9, kBe64}, 16));
  EXPECT_FALSE(Fits({"", 9, VolumeSerial(8)}, 16));
  EXPECT_FALSE(Fits({"", 1, kGuidText}, 16));
  EXPECT_FALSE(Fits({"", 1, kStoredGuidText}, 16));
  EXPECT_FALSE(Fits({"", 4, HexBytes(13)}, 16));
  EXPECT_FALSE(Fits({"", 4, ReversedHexBytes(13)}, 16));
  EXPECT_FALSE(Fits({"", 4, Chars(13)}, 16));
}

TEST(FieldsFit, AForgottenLengthDoesNotFit) {
  EXPECT_FALSE(Fits({"", 0, HexBytes(0)}, 16));
  EXPECT_FALSE(Fits({"", 0, ReversedHexBytes(0)}, 16));
  EXPECT_FALSE(Fits({"", 0, Chars(0)}, 16));
}

// One row that does not fit is enough.
TEST(FieldsFit, EveryRowCounts) {
  constexpr FieldRow kRows[] = {{"", 0, kU8}, {"", 16, kU8}};
  static_assert(FieldsFit(kRows, 17) && !FieldsFit(kRows, 16));
  EXPECT_TRUE(FieldsFit({}, 0));
}

}  // namespace
}  // namespace trovisk::test
