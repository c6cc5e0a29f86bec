#include "frame/disk/command_line.h"

#include <gtest/gtest.h>

namespace trovisk::test {
namespace {

TEST(FirstArgument, StandsBehindTheProgramsName) {
  EXPECT_EQ(FirstArgument(L"trovisk disk.img"), L"disk.img");
  EXPECT_EQ(FirstArgument(L"trovisk  \t disk.img 0 12"), L"disk.img");
  EXPECT_EQ(FirstArgument(L"C:\\tools\\trovisk.exe\tdisk.img\t0"), L"disk.img");
}

TEST(FirstArgument, IsEmptyWhereThereIsNone) {
  EXPECT_EQ(FirstArgument(L""), L"");
  EXPECT_EQ(FirstArgument(L"trovisk"), L"");
  EXPECT_EQ(FirstArgument(L"trovisk \t "), L"");
  EXPECT_EQ(FirstArgument(L"trovisk \"\" 1"), L"");
}

// A backslash in front of the name's closing mark belongs to the name.
TEST(FirstArgument, NameOfTheProgramMayBeQuoted) {
  EXPECT_EQ(FirstArgument(L"\"C:\\Program Files\\trovisk.exe\" disk.img"), L"disk.img");
  EXPECT_EQ(FirstArgument(L"\"C:\\odd\\\" disk.img"), L"disk.img");
  EXPECT_EQ(FirstArgument(L"C:\\\"Program Files\"\\trovisk.exe disk.img"), L"disk.img");
}

TEST(FirstArgument, BlanksStandInQuotes) {
  EXPECT_EQ(FirstArgument(L"trovisk \"my disk.img\" 1"), L"my disk.img");
  EXPECT_EQ(FirstArgument(L"trovisk my\" \"disk\".img\" 1"), L"my disk.img");
  EXPECT_EQ(FirstArgument(L"trovisk \"never closed 1"), L"never closed 1");
}

TEST(FirstArgument, BackslashesCountInFrontOfAQuotationMarkAlone) {
  EXPECT_EQ(FirstArgument(L"trovisk \\\\server\\share\\disk.img"), L"\\\\server\\share\\disk.img");
  EXPECT_EQ(FirstArgument(L"trovisk folder\\ 1"), L"folder\\");
  EXPECT_EQ(FirstArgument(L"trovisk \"my folder\\\\\" 1"), L"my folder\\");
  EXPECT_EQ(FirstArgument(L"trovisk \"my folder\\\" 1"), L"my folder\" 1");
  EXPECT_EQ(FirstArgument(L"trovisk a\\\\\\\"b 1"), L"a\\\"b");
  EXPECT_EQ(FirstArgument(L"trovisk a\\\\\\\\\"b c\" 1"), L"a\\\\b c");
}

TEST(FirstArgument, TwoMarksInQuotesAreOne) {
  EXPECT_EQ(FirstArgument(L"trovisk \"a\"\"b c\" 1"), L"a\"b c");
}

TEST(FirstArgument, KeepsEveryCharacter) {
  EXPECT_EQ(FirstArgument(L"trovisk \"\u00FC\u0434\u65E5\u00A0\U0001F4BE.img\" 1"),
            L"\u00FC\u0434\u65E5\u00A0\U0001F4BE.img");
}

TEST(CommandLine, HasEachArgumentInItsOwnCharacters) {
  EXPECT_EQ(ArgumentsOf(L"trovisk-map --output=\"my map\" \u65E5.img \"\"  --width 40 "),
            (std::vector<std::wstring>{L"--output=my map", L"\u65E5.img", L"", L"--width", L"40"}));
  EXPECT_EQ(ArgumentsOf(L"trovisk-map  "), std::vector<std::wstring>{});
}

}  // namespace
}  // namespace trovisk::test
