// The formatting state that each verb leaves behind is seen in the numbers that follow it.

#include <gtest/gtest.h>

#include "frame/dump.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

constexpr std::array<u8, 16> kBytes = {0xAB, 0xCD, 0xEF};

// 171 plain and in a width of 5, after the code.
template <typename Code>
std::string NumbersAfter(Code code) {
  Printed printed;
  code();
  return printed.NextNumbers();
}

constexpr char kAsAtTheStart[] = "171|  171";
constexpr char kDecimalZeroFilled[] = "171|00171";
constexpr char kHexZeroFilled[] = "AB|000AB";

TEST(StickyState, TextVerbsChangeNothing) {
  EXPECT_EQ(NumbersAfter([] { PrintSectorHeader(L"MFT", 1); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintHeading("MBR"); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintFileTime(0); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintUtf16(kBytes); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintHexBytes({}); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintDumpRows({}, 0); }), kAsAtTheStart);
}

// A byte that is not printable is a hexadecimal field.
TEST(StickyState, PrintCharsChangesOnlyWhatItsBytesNeed) {
  constexpr std::array<u8, 3> kPrintable = {'A', '\r', '\n'};
  EXPECT_EQ(NumbersAfter([&] { PrintChars(kPrintable); }), kAsAtTheStart);
  EXPECT_EQ(NumbersAfter([] { PrintChars(kBytes); }), kDecimalZeroFilled);
}

TEST(StickyState, HexadecimalFieldsLeaveDecimalAndZeroFill) {
  EXPECT_EQ(NumbersAfter([] { PrintHex(1, 4); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintHexByte(1); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintHexBytes(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintReversedHexBytes(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintBracketedHexBytes(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintVolumeSerial(Part<0, 8>(FixedBytes<16>(kBytes))); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintCodeListing(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintGuid(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintStoredGuid(kBytes); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintPadded(1, 2); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] { PrintDumpRows(kBytes, 1); }), kDecimalZeroFilled);
}

TEST(StickyState, StayingHexStaysHex) {
  EXPECT_EQ(NumbersAfter([] { PrintHexStayingHex(1, 4); }), kHexZeroFilled);
}

TEST(StickyState, KeepingTheBaseKeepsTheBase) {
  EXPECT_EQ(NumbersAfter([] { PrintHexKeepingBase(1, 4); }), kDecimalZeroFilled);
  EXPECT_EQ(NumbersAfter([] {
              PrintHexStayingHex(1, 4);
              PrintHexKeepingBase(1, 4);
            }),
            kHexZeroFilled);
}

// A width is used up by one number; a padded number follows the base.
TEST(StickyState, BaseReachesLaterNumbers) {
  EXPECT_EQ(TextOf([] {
              PrintHexStayingHex(1, 2);
              std::cout << " ";
              PrintPadded(255, 4);
              std::cout << " ";
              PrintSectorHeader(L"MFT", 255);
            }),
            "01 00FF Reading sector # FF [MFT]\n");
}

// Which verbs switch the capitals on, seen in a GUID that asks for none.
template <typename Code>
bool SwitchesCapitalsOn(Code code) {
  Printed printed;
  code();
  printed.Text();
  PrintGuid(kBytes);
  return printed.Text() == "00EFCDAB-0000-0000-0000-000000000000";
}

TEST(StickyState, FieldsInCapitalsSwitchCapitalsOn) {
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintHex(1, 2); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintHexStayingHex(1, 2); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintHexKeepingBase(1, 2); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintHexBytes(kBytes); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintStoredGuid(kBytes); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintChars(kBytes); }));
  EXPECT_TRUE(SwitchesCapitalsOn([] { PrintDumpRows(kBytes, 1); }));
}

TEST(StickyState, OthersDoNot) {
  EXPECT_FALSE(SwitchesCapitalsOn([] {}));
  EXPECT_FALSE(SwitchesCapitalsOn([] { PrintGuid(kBytes); }));
  EXPECT_FALSE(SwitchesCapitalsOn([] { PrintPadded(1, 2); }));
  EXPECT_FALSE(SwitchesCapitalsOn([] { PrintSectorHeader(L"MFT", 1); }));
  EXPECT_FALSE(SwitchesCapitalsOn([] { PrintHexBytes({}); }));
}

}  // namespace
}  // namespace trovisk::test
