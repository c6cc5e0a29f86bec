// What is done where Wine does not start a program: commands that stand for Wine.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/wine.h"

namespace trovisk::test {
namespace {

// Runs a program under a Wine that prints these words in its first run, and "started" in the second; the
// lines of both, how often it ran, and what is said of that.
struct Started {
  Outcome outcome;
  std::string runs;
  std::string said;  // to whom reads the test's output
};

Started RunUnder(const std::string& firstRun) {
  const std::string runs = ScratchPath("runs");
  const std::string script = ScratchPath("wine.sh");
  std::filesystem::remove(runs);
  std::ofstream(script) << "#!/bin/sh\nif [ -e " << runs << " ]; then echo 2 >>" << runs
                        << "; printf 'started\\r\\n'; exit 3; fi\necho 1 >>" << runs << "\n"
                        << firstRun << "\n";
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  const std::string wine = WineCommand();
  setenv("TROVISK_WINE", script.c_str(), 1);
  testing::internal::CaptureStdout();
  Started started;
  started.outcome = RunWindowsProgram("program.exe", {}, {});
  started.said = testing::internal::GetCapturedStdout();
  started.runs = ReadFile(runs);
  setenv("TROVISK_WINE", wine.c_str(), 1);
  return started;
}

void ExpectOnceMore(const std::string& firstRun) {
  const Started started = RunUnder(firstRun);
  EXPECT_EQ(started.outcome.out, "started\n") << firstRun;
  EXPECT_EQ(started.outcome.status, 3) << firstRun;
  EXPECT_EQ(started.runs, "1\n2\n") << firstRun;
  EXPECT_TRUE(started.said.starts_with("wine did not start it at first, status ")) << started.said;
}

void ExpectAsItIs(const std::string& firstRun, int status) {
  const Started started = RunUnder(firstRun);
  EXPECT_EQ(started.outcome.status, status) << firstRun;
  EXPECT_EQ(started.runs, "1\n") << firstRun;
  EXPECT_EQ(started.said, "");
}

TEST(WineStart, ProgramThatPrintsNothingIsStartedOnceMore) {
  ExpectOnceMore("exit 0");
  ExpectOnceMore("exit 1");
}

TEST(WineStart, WinesInternalErrorIsStartedOnceMore) {
  ExpectOnceMore("printf 'launcher: the program does not start, error 1359\\r\\n' >&2; exit 125");
}

TEST(WineStart, OtherFailuresCount) {
  ExpectAsItIs("printf 'launcher: the program does not start, error 2\\r\\n' >&2; exit 125", 125);
  ExpectAsItIs("printf 'launcher: the program does not start, error 1359\\r\\n' >&2; exit 1", 1);
  ExpectAsItIs("echo 1359; exit 125", 125);
}

}  // namespace
}  // namespace trovisk::test
