// The printing verbs: their texts, and how wide text and numbers are shown.

#include "frame/report/verbs.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

std::vector<u8> BytesOf(std::initializer_list<int> values) {
  std::vector<u8> bytes;
  for (const int value : values)
    bytes.push_back(static_cast<u8>(value));
  return bytes;
}

std::vector<u8> BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

std::string Chars(const std::vector<u8>& text) {
  return TextOf([&] { PrintChars(text); });
}

std::string CharsN(const std::vector<u8>& text, i64 count) {
  return TextOf([&] { PrintCharsN(text, count); });
}

std::string FileTime(u64 value, const char* zone = "UTC") {
  setenv("TZ", zone, 1);
  return TextOf([&] { PrintFileTime(value); });
}

std::string Utf16(std::u16string_view units) {
  std::vector<u8> bytes;
  for (const char16_t unit : units) {
    bytes.push_back(static_cast<u8>(unit & 0xFF));
    bytes.push_back(static_cast<u8>(unit >> 8));
  }
  return TextOf([&] { PrintUtf16(bytes); });
}

// 024DEE41-33E7-11D3-9D69-0008C781F39F as it lies on disk.
constexpr std::array<u8, 16> kGuid = {0x41, 0xEE, 0x4D, 0x02, 0xE7, 0x33, 0xD3, 0x11,
                                      0x9D, 0x69, 0x00, 0x08, 0xC7, 0x81, 0xF3, 0x9F};

TEST(PrintChars, PrintableControlAndOtherBytes) {
  EXPECT_EQ(Chars(BytesOf({0x41, 0x42, 0x0D, 0x0A, 0x07, 0xC4, 0x43, 0x00})), "AB<CR><LF><0x07><0xC4>C");
}

TEST(PrintChars, EveryByte) {
  for (int value = 1; value < 256; ++value) {
    std::string expected(1, static_cast<char>(value));
    if (value < 0x20 || value > 0x7E) {
      char text[8];
      std::snprintf(text, sizeof text, "<0x%02X>", static_cast<unsigned>(value));
      expected = value == 0x0D ? "<CR>" : value == 0x0A ? "<LF>" : text;
    }
    EXPECT_EQ(Chars(BytesOf({value, 0})), expected) << value;
  }
}

TEST(PrintChars, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(Chars(BytesOf({'A', 0, 'B', 0})), "A");
}

// Unlike a pointer to text, a view has an end of its own.
TEST(PrintChars, EndsAtTheEndOfTheBytes) {
  EXPECT_EQ(Chars(BytesOf({'A', 'B'})), "AB");
}

TEST(PrintChars, NothingAtAll) {
  EXPECT_EQ(Chars({}), "");
  EXPECT_EQ(Chars(BytesOf({0})), "");
}

TEST(PrintCharsN, TrailingBlanksCount) {
  EXPECT_EQ(CharsN(BytesOf("NTFS    X"), 8), "NTFS    ");
}

TEST(PrintCharsN, StopsAtTheFirstZeroByte) {
  EXPECT_EQ(CharsN(BytesOf({'E', 'F', 'I', 0, 'P', 'A', 'R', 'T'}), 8), "EFI");
}

TEST(PrintCharsN, CountOfZeroOrLessPrintsNothing) {
  EXPECT_EQ(CharsN(BytesOf("NTFS"), 0), "");
  EXPECT_EQ(CharsN(BytesOf("NTFS"), -1), "");
  EXPECT_EQ(CharsN(BytesOf("NTFS"), -0x80000000LL), "");
}

TEST(PrintCharsN, CountBeyondTheBytes) {
  EXPECT_EQ(CharsN(BytesOf("NTFS"), 0x7FFFFFFF), "NTFS");
  EXPECT_EQ(CharsN({}, 8), "");
}

TEST(PrintCharsN, OtherBytesAsInPrintChars) {
  EXPECT_EQ(CharsN(BytesOf({0x0D, 0x0A, 0xFF, 'x'}), 3), "<CR><LF><0xFF>");
}

TEST(PrintGuid, SmallLettersBeforeAnyFieldInCapitals) {
  EXPECT_EQ(TextOf([] { PrintGuid(kGuid); }), "024dee41-33e7-11d3-9d69-0008c781f39f");
}

TEST(PrintGuid, CapitalsBehindAFieldInCapitals) {
  EXPECT_EQ(TextOf([] {
              PrintHexByte(0);
              PrintGuid(kGuid);
            }),
            "00024DEE41-33E7-11D3-9D69-0008C781F39F");
}

TEST(PrintGuid, ZerosAreWritten) {
  EXPECT_EQ(TextOf([] { PrintGuid(std::array<u8, 16>{}); }), "00000000-0000-0000-0000-000000000000");
}

TEST(PrintStoredGuid, BytesInTheirOrder) {
  EXPECT_EQ(TextOf([] { PrintStoredGuid(kGuid); }), "41EE4D02-E733-D311-9D69-0008C781F39F");
}

// Bytes that are missing count as zeros.
TEST(PrintStoredGuid, CutShort) {
  EXPECT_EQ(TextOf([] { PrintStoredGuid(Bytes(kGuid).first(3)); }), "41EE4D00-0000-0000-0000-000000000000");
}

TEST(PrintFileTime, OrdinaryTime) {
  EXPECT_EQ(FileTime(0x01DC015A8B4C7380), "Wed Jul 30 14:02:11 2025\n\n");
}

// 0 - 11644473600 in 32 bits is 1240428288: not a date in 1601.
TEST(PrintFileTime, ZeroWrapsInto2009) {
  EXPECT_EQ(FileTime(0), "Wed Apr 22 19:24:48 2009\n\n");
}

TEST(PrintFileTime, FirstSecondOf1970AndTheOneBefore) {
  EXPECT_EQ(FileTime(116'444'736'000'000'000), "Thu Jan  1 00:00:00 1970\n\n");
  EXPECT_EQ(FileTime(116'444'735'999'999'999), "Sun Feb  7 06:28:15 2106\n\n");
}

TEST(PrintFileTime, LastSecondOf32BitsAndTheOneAfter) {
  EXPECT_EQ(FileTime(159'394'408'950'000'000), "Sun Feb  7 06:28:15 2106\n\n");
  EXPECT_EQ(FileTime(159'394'408'960'000'000), "Thu Jan  1 00:00:00 1970\n\n");
}

// Seconds are unsigned: 2038 is no limit.
TEST(PrintFileTime, Beyond2038) {
  EXPECT_EQ(FileTime(116'444'736'000'000'000 + 2'147'483'648 * 10'000'000), "Tue Jan 19 03:14:08 2038\n\n");
}

TEST(PrintFileTime, LargestValue) {
  EXPECT_EQ(FileTime(~u64{0}), "Sun Nov 29 08:54:34 2076\n\n");
}

TEST(PrintFileTime, PartsOfASecondAreCut) {
  EXPECT_EQ(FileTime(116'444'736'009'999'999), "Thu Jan  1 00:00:00 1970\n\n");
}

TEST(PrintFileTime, LocalTime) {
  EXPECT_EQ(FileTime(0x01DC015A8B4C7380, "ABC-5:45"), "Wed Jul 30 19:47:11 2025\n\n");
  EXPECT_EQ(FileTime(0x01DC015A8B4C7380, "ABC+16"), "Tue Jul 29 22:02:11 2025\n\n");
}

// Summer time from the last Sunday of March to that of October, as in Central Europe.
TEST(PrintFileTime, SummerTime) {
  EXPECT_EQ(FileTime(0x01DC015A8B4C7380, "CET-1CEST,M3.5.0,M10.5.0/3"), "Wed Jul 30 16:02:11 2025\n\n");
}

TEST(PrintHexBytes, TwoCapitalDigitsEach) {
  const std::vector<u8> bytes = BytesOf({0x00, 0x0A, 0xFF, 0x12});
  EXPECT_EQ(TextOf([&] { PrintHexBytes(bytes); }), "000AFF12");
  EXPECT_EQ(TextOf([&] { PrintReversedHexBytes(bytes); }), "12FF0A00");
  EXPECT_EQ(TextOf([&] { PrintBracketedHexBytes(bytes); }), "[0x00][0x0A][0xFF][0x12]");
}

TEST(PrintHexBytes, Nothing) {
  EXPECT_EQ(TextOf([] {
              PrintHexBytes({});
              PrintReversedHexBytes({});
              PrintBracketedHexBytes({});
            }),
            "");
}

TEST(PrintHex, AtLeastSoManyDigits) {
  EXPECT_EQ(TextOf([] { PrintHex(0xABC, 8); }), "00000ABC");
  EXPECT_EQ(TextOf([] { PrintHex(0xABCDEF, 2); }), "ABCDEF");
  EXPECT_EQ(TextOf([] { PrintHex(~u64{0}, 16); }), "FFFFFFFFFFFFFFFF");
  EXPECT_EQ(TextOf([] { PrintHex(0, 1); }), "0");
}

TEST(PrintVolumeSerial, SixteenDigitsAndTheLowHalf) {
  constexpr std::array<u8, 8> kSerial = {0xEF, 0xCD, 0xAB, 0x90, 0x78, 0x56, 0x34, 0x12};
  EXPECT_EQ(TextOf([&] { PrintVolumeSerial(kSerial); }), "1234567890ABCDEF (90AB-CDEF)");
}

TEST(PrintPadded, ZerosInFront) {
  EXPECT_EQ(TextOf([] { PrintPadded(7, 4); }), "0007");
  EXPECT_EQ(TextOf([] { PrintPadded(30828, 4); }), "30828");
  EXPECT_EQ(TextOf([] { PrintTwoDigits(9); }), "09");
}

TEST(PrintHeading, HyphensBelow) {
  EXPECT_EQ(TextOf([] { PrintHeading("MBR"); }), "MBR\n---\n");
  EXPECT_EQ(TextOf([] { PrintHeading("MBR", "\t"); }), "\tMBR\n\t---\n");
  EXPECT_EQ(TextOf([] { PrintHeading("MBR", 5, "\t"); }), "\tMBR\n\t-----\n");
}

TEST(PrintSectorHeader, SectorIsUnsigned) {
  EXPECT_EQ(TextOf([] { PrintSectorHeader(L"Raw Sector", ~u64{0}); }),
            "Reading sector # 18446744073709551615 [Raw Sector]\n");
}

TEST(PrintSectorHeader, LongDescriptionIsCut) {
  const std::wstring description(300, L'd');
  EXPECT_EQ(TextOf([&] { PrintSectorHeader(description, 1); }),
            "Reading sector # 1 [" + std::string(256, 'd') + "]\n");
}

TEST(ToNarrow, AsciiAsItIs) {
  EXPECT_EQ(ToNarrow(L""), "");
  EXPECT_EQ(ToNarrow(L" Master Boot Record~\t\x7F"), " Master Boot Record~\t\x7F");
}

TEST(ToNarrow, CharactersOutsideTheLocaleAreQuestionMarks) {
  EXPECT_EQ(ToNarrow(L"a\u20ACb\U0001F600c"), "a?b?c");
}

TEST(ToNarrow, EndsAtANul) {
  EXPECT_EQ(ToNarrow(WideText(L"ab\0cd", 5)), "ab");
}

// Plain numbers, in each base.
template <typename Number>
std::string Hexadecimal(Number number) {
  return TextOf([&] {
    PrintHexStayingHex(0, 1);
    report << ' ' << number;
  });
}
template <typename Number>
std::string Decimal(Number number) {
  return TextOf([&] { report << number; });
}

TEST(ReportNumbers, Decimal) {
  EXPECT_EQ(Decimal(0), "0");
  EXPECT_EQ(Decimal(~u64{0}), "18446744073709551615");
  EXPECT_EQ(Decimal(u8{200}), "200");
  EXPECT_EQ(Decimal(i32{-1}), "-1");
  EXPECT_EQ(Decimal(std::numeric_limits<i64>::min()), "-9223372036854775808");
}

TEST(ReportNumbers, HexadecimalOfNegativeNumbersIsTwosComplement) {
  EXPECT_EQ(Hexadecimal(0), "0 0");
  EXPECT_EQ(Hexadecimal(0x9A0), "0 9A0");
  EXPECT_EQ(Hexadecimal(~u64{0}), "0 FFFFFFFFFFFFFFFF");
  EXPECT_EQ(Hexadecimal(i32{-1}), "0 FFFFFFFF");
  EXPECT_EQ(Hexadecimal(i64{-2}), "0 FFFFFFFFFFFFFFFE");
}

TEST(PrintTocRow, BlanksFillTheColumn) {
  EXPECT_EQ(TextOf([] { PrintTocRow(47, "MFT"); }), "        47\tMFT\n");
  EXPECT_EQ(TextOf([] { PrintTocRow(1234567890, "MFT"); }), "1234567890\tMFT\n");
  EXPECT_EQ(TextOf([] { PrintTocRow(12345678901, ""); }), "12345678901\t\n");
}

TEST(PrintFraction, AtMostSixDigits) {
  EXPECT_EQ(TextOf([] { PrintFraction(10); }), "10");
  EXPECT_EQ(TextOf([] { PrintFraction(0.1); }), "0.1");
  EXPECT_EQ(TextOf([] { PrintFraction(1110.01); }), "1110.01");
  EXPECT_EQ(TextOf([] { PrintFraction(11110.01); }), "11110");
  EXPECT_EQ(TextOf([] { PrintFraction(283075.5); }), "283076");
}

TEST(PrintUtf16, AsciiAsItIs) {
  EXPECT_EQ(Utf16(u" Basic data~"), " Basic data~");
}

TEST(PrintUtf16, NulsAreWritten) {
  EXPECT_EQ(Utf16(std::u16string_view(u"a\0b\0", 4)), std::string("a\0b\0", 4));
}

TEST(PrintUtf16, ControlsAreQuestionMarks) {
  for (char16_t unit = 1; unit < 0xA0; ++unit) {
    if (unit >= 0x20 && unit < 0x7F) continue;
    EXPECT_EQ(Utf16(std::u16string(1, unit)), "?") << unsigned{unit};
  }
}

TEST(PrintUtf16, FromNoBreakSpaceOnAsUtf8) {
  EXPECT_EQ(Utf16(u"\u00A0"), "\xC2\xA0");
  EXPECT_EQ(Utf16(u"\u00E9\u07FF"), "\xC3\xA9\xDF\xBF");
  EXPECT_EQ(Utf16(u"\u0800\u20AC\uD7FF"), "\xE0\xA0\x80\xE2\x82\xAC\xED\x9F\xBF");
  EXPECT_EQ(Utf16(u"\uE000\uFFFF"), "\xEE\x80\x80\xEF\xBF\xBF");
}

TEST(PrintUtf16, SurrogatePairsAreOneCharacter) {
  EXPECT_EQ(Utf16(u"\xD800\xDC00"), "\xF0\x90\x80\x80");
  EXPECT_EQ(Utf16(u"\xD83D\xDE00!"), "\xF0\x9F\x98\x80!");
  EXPECT_EQ(Utf16(u"\xDBFF\xDFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(PrintUtf16, UnpairedSurrogatesAreQuestionMarks) {
  EXPECT_EQ(Utf16(u"\xD800"), "?");
  EXPECT_EQ(Utf16(u"\xDC00"), "?");
  EXPECT_EQ(Utf16(u"\xD800x"), "?x");
  EXPECT_EQ(Utf16(u"\xDC00\xD800"), "??");
  EXPECT_EQ(Utf16(u"\xD800\xD800\xDC00"), "?\xF0\x90\x80\x80");
}

TEST(PrintUtf16, HalfAUnitAtTheEndIsLeftOut) {
  EXPECT_EQ(TextOf([] { PrintUtf16(BytesOf({'a', 0, 'b'})); }), "a");
  EXPECT_EQ(TextOf([] { PrintUtf16(BytesOf({0x00, 0xD8, 0x00})); }), "?");
  EXPECT_EQ(TextOf([] { PrintUtf16({}); }), "");
}

}  // namespace
}  // namespace trovisk::test
