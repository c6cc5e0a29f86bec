// The report and the error lines beside it, caught in strings.

#include "frame/report/report.h"

#include <gtest/gtest.h>

#include "frame/report/verbs.h"
#include "tests/unit/printed.h"

namespace trovisk::test {
namespace {

TEST(Report, TextOfAnyLengthArrivesWhole) {
  std::string expected;
  Printed printed;
  for (std::size_t length = 1; length < 200000; length = length * 3 + 1) {
    const std::string text(length, static_cast<char>('a' + length % 26));
    report << text << '|';
    expected += text + "|";
  }
  EXPECT_EQ(printed.Text(), expected);
}

TEST(Report, WideTextIsNarrowedUpToItsNul) {
  Printed printed;
  report << WideText(L"Boot \u20AC sector\0 behind", 21) << LineEnd;
  EXPECT_EQ(printed.Text(), "Boot ? sector\n");
}

// What is caught has all of it after Flush and when the report is directed elsewhere.
TEST(Report, IsCaughtSectionBySection) {
  std::string first;
  std::string second;
  report.Start();
  report.DirectTo(&first);
  report << "one";
  report.DirectTo(&second);
  report << "two";
  report.DirectTo(nullptr);
  EXPECT_EQ(first, "one");
  EXPECT_EQ(second, "two");
}

// Error lines follow what was printed before them, and nothing of them is kept back.
TEST(Report, ErrorLinesFollowTheReport) {
  std::string both;
  report.Start();
  report.DirectTo(&both);
  errors.DirectTo(&both);
  report << "before ";
  errors << "error " << 5 << '\n';
  EXPECT_EQ(both, "before error 5\n");
  report << "behind";
  errors.DirectTo(nullptr);
  report.DirectTo(nullptr);
  EXPECT_EQ(both, "before error 5\nbehind");
}

TEST(Report, ErrorLinesAreDecimal) {
  std::string text;
  errors.DirectTo(&text);
  TextOf([] {
    PrintHexStayingHex(1, 2);
    errors << 171;
  });
  errors.DirectTo(nullptr);
  EXPECT_EQ(text, "171");
}

TEST(Report, StartPutsTheSettingsBack) {
  Printed printed;
  PrintHexStayingHex(0xAB, 2);
  report.DirectTo(nullptr);
  report.Start();
  std::string text;
  report.DirectTo(&text);
  report << 171;
  PrintGuid(std::array<u8, 16>{0xAB});
  report.DirectTo(nullptr);
  EXPECT_EQ(text, "171000000ab-0000-0000-0000-000000000000");
}

// In a string no control character gets through, whoever shows it.
TEST(Report, CaughtTextIsSafe) {
  EXPECT_TRUE(TextOf([] { EXPECT_TRUE(report.MustBeSafe()); }).empty());
  EXPECT_EQ(TextOf([] { PrintAsStored("a\x1B[2J\xC3\xA4~"); }), "a?[2J??~");
  EXPECT_EQ(TextOf([] {
              PrintRawByte(0x1B);
              PrintRawByte(0x7F);
              PrintRawByte(0xF6);
              PrintRawByte('A');
            }),
            "???A");
}

}  // namespace
}  // namespace trovisk::test
