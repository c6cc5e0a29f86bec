// --help and --version, which are options as the only argument alone.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/expected.h"
#include "tests/support/wine.h"

namespace trovisk::test {
namespace {

void ExpectAnswer(const std::string& option, const std::string& text) {
  const Outcome outcome = RunProgram(Build::kShipped, {option});
  EXPECT_TRUE(SameText(outcome.out, text));
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

// The arguments name a disk that is not there.
void ExpectDiskArgument(const std::vector<std::string>& arguments) {
  const Outcome outcome = RunProgram(Build::kShipped, arguments);
  EXPECT_EQ(WithoutDate(outcome.out), "Trovisk version 1.4 built <date>\n\n");
  EXPECT_EQ(outcome.err,
            "Global::Open: couldn't open \\\\.\\PhysicalDrive" + arguments[0] + " for reading, error 2\n");
  EXPECT_EQ(outcome.status, 1);
}

TEST(Options, HelpSaysHowTheProgramIsCalled) {
  ExpectAnswer("--help", Expected(UnderWine() ? "help_windows.txt" : "help_linux.txt", Disk()));
}

TEST(Options, VersionIsTheWholeVersionOnALineOfItsOwn) {
  ExpectAnswer("--version", "Trovisk 1.4.0\n");
}

TEST(Options, BesideASectorTheyAreDisks) {
  for (const char* option : {"--help", "--version"}) {
    ExpectDiskArgument({option, "1"});
    ExpectDiskArgument({option, "1", "2"});
    ExpectDiskArgument({option, option});
  }
}

TEST(Options, SpeltOtherwiseTheyAreDisks) {
  for (const char* argument : {"-h", "-help", "--Help", "--hel", "--help ", "--versions", "-V", "help"})
    ExpectDiskArgument({argument});
}

TEST(Options, BehindADiskTheyAreSectors) {
  Disk disk(10);
  const Outcome number = RunOn(disk, {"0"});
  const Outcome option = RunOn(disk, {"--help"});
  EXPECT_EQ(option.out, number.out);
  EXPECT_EQ(option.err, number.err);
}

TEST(Options, AnswerOnAFullDiskIsAnError) {
  if (UnderWine()) GTEST_SKIP() << "the number of the error is the system's";
  for (const char* option : {"--help", "--version"}) {
    const Outcome outcome = RunChild([&] {
      dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
      Execute({ProgramPath(Build::kShipped), option});
    });
    EXPECT_EQ(outcome.err, "Error writing the report, error 28\n");
    EXPECT_EQ(outcome.status, 1);
  }
}

}  // namespace
}  // namespace trovisk::test
