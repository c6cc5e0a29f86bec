// The settings that each verb leaves behind are seen in the numbers that follow it.

#include <gtest/gtest.h>

#include "frame/report/field_table.h"
#include "frame/report/listing.h"
#include "frame/report/verbs.h"
#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

constexpr std::array<u8, 16> kBytes = {0xAB, 0xCD, 0xEF};

// 171, after the code.
template <typename Code>
std::string NumberAfter(Code code) {
  Printed printed;
  code();
  return printed.NextNumber();
}

constexpr char kDecimal[] = "171";
constexpr char kHexadecimal[] = "AB";

TEST(StickyState, TextVerbsChangeNothing) {
  EXPECT_EQ(NumberAfter([] { PrintSectorHeader(L"MFT", 1); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintHeading("MBR"); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintFileTime(0); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintUtf16(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintHexBytes({}); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintDumpRows({}, 0); }), kDecimal);
}

// A byte that is not printable is a hexadecimal field.
TEST(StickyState, PrintCharsChangesOnlyWhatItsBytesNeed) {
  constexpr std::array<u8, 3> kPrintable = {'A', '\r', '\n'};
  EXPECT_EQ(NumberAfter([&] { PrintChars(kPrintable); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintChars(kBytes); }), kDecimal);
}

TEST(StickyState, HexadecimalFieldsLeaveDecimal) {
  EXPECT_EQ(NumberAfter([] { PrintHex(1, 4); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintHexByte(1); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintHexBytes(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintReversedHexBytes(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintBracketedHexBytes(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintVolumeSerial(Bytes(kBytes).first(8)); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintSpacedHexBytes(kBytes, "\t"); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintGuid(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintStoredGuid(kBytes); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintPadded(1, 2); }), kDecimal);
  EXPECT_EQ(NumberAfter([] { PrintDumpRows(kBytes, 1); }), kDecimal);
}

TEST(StickyState, StayingHexStaysHex) {
  EXPECT_EQ(NumberAfter([] { PrintHexStayingHex(1, 4); }), kHexadecimal);
}

TEST(StickyState, KeepingTheBaseKeepsTheBase) {
  EXPECT_EQ(NumberAfter([] { PrintHexKeepingBase(1, 4); }), kDecimal);
  EXPECT_EQ(NumberAfter([] {
              PrintHexStayingHex(1, 4);
              PrintHexKeepingBase(1, 4);
            }),
            kHexadecimal);
}

TEST(StickyState, BaseReachesLaterNumbers) {
  EXPECT_EQ(TextOf([] {
              PrintHexStayingHex(1, 2);
              report << " ";
              PrintPadded(255, 4);
              report << " ";
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
