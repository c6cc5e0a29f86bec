// The line that says how far a run is: where it appears, what it says, and that it is gone before anything
// else. The slow disk is the tracer's work: each read takes its time.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <regex>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

// Sectors 10 to 19 are of use here.
const std::string& Image() {
  // Sectors too large to be read ahead: each is a read of its own. Most are empty, and their reports short.
  static const std::string image = [] {
    constexpr u32 kSectorSize = 262144;
    Disk disk(30, kSectorSize);
    PutBootRecord(disk, 0, {});
    const std::string path = ScratchPath("progress.img");
    disk.Write(path);
    return path + "@" + std::to_string(kSectorSize);
  }();
  return image;
}

std::vector<std::string> Range(const std::string& last) {
  return {Image(), "10", last};
}

std::vector<std::string> Program(const std::string& last) {
  std::vector<std::string> words = {NativeProgramPath(Build::kShipped)};
  for (const std::string& argument : Range(last))
    words.push_back(argument);
  return words;
}

// The undisturbed report of sectors 10 to last, the reads that it takes, and those in front of sector 10's.
struct Sound {
  std::string report;
  std::size_t reads = 0;
};

Sound SoundRun(const std::string& last) {
  const Trace trace = TraceProgram(Range(last));
  return {trace.outcome.out, trace.Of("pread64(").size()};
}

// The number of the read of sector 10 + n.
std::string ReadOf(const Sound& sound, u64 last, u64 n) {
  return std::to_string(sound.reads - (last - 10) + n);
}

// The program under a tracer that injects so.
std::vector<std::string> Traced(const std::string& inject, const std::string& last) {
  std::vector<std::string> words = {"strace", "-f", "-qq", "-o", "/dev/null", "--inject=" + inject};
  for (const std::string& word : Program(last))
    words.push_back(word);
  return words;
}

// Every read takes a fifth of a second: ten of them are longer than the second without a line.
std::vector<std::string> Slow(const std::string& last = "19") {
  return Traced("pread64:delay_enter=200000", last);
}

// The lines shown in the range; a machine that is busy may show one before.
std::vector<std::string> LinesInRange(const TerminalSession& session) {
  std::vector<std::string> lines = RewrittenLines(session.terminal);
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("sector 1"); });
  return lines;
}

// How long the report is when a sector's turn comes.
u64 ReportedBefore(const std::string& report, u64 sector) {
  return report.find("Reading sector # " + std::to_string(sector) + ' ');
}

std::string KiB(u64 bytes) {
  const u64 tenths = bytes * 10 / 1024;
  return std::to_string(tenths / 10) + (tenths < 1000 ? '.' + std::to_string(tenths % 10) : "") + " KiB";
}

TEST(Progress, SlowRunShowsALineThatRewritesItself) {
  const Sound sound = SoundRun("19");
  const TerminalSession session = RunOnTerminal(Slow());
  EXPECT_EQ(session.status, 0);
  EXPECT_EQ(session.out, sound.report);
  const std::vector<std::string> lines = LinesInRange(session);
  ASSERT_FALSE(lines.empty());
  const std::regex form(
      "sector (1[0-9]), ([0-9]+) of 10, [0-9]+\\.[0-9] MiB/s, report ([0-9.]+ KiB)(, 0:[0-9]{2} left)?, "
      "0 unreadable");
  u64 before = 0;
  for (const std::string& line : lines) {
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(line, parts, form)) << line;
    const u64 sector = std::stoull(parts[1]);
    EXPECT_GT(sector, before) << line;
    EXPECT_EQ(std::stoull(parts[2]), sector - 9) << line;
    EXPECT_EQ(parts[3], KiB(ReportedBefore(sound.report, sector))) << line;
    before = sector;
  }
  EXPECT_EQ(ScreenOf(session.terminal), "");
}

TEST(Progress, LineFitsTheTerminal) {
  const std::vector<std::string> lines = LinesInRange(RunOnTerminal(Slow(), OutputTo::kFile, 24));
  ASSERT_FALSE(lines.empty());
  for (const std::string& line : lines)
    EXPECT_TRUE(std::regex_match(line, std::regex("sector 1[0-9], [0-9]+ of 10"))) << line;
}

// The lines of errors stand alone; each sector that fails is counted.
TEST(Progress, IsGoneBeforeAnErrorLine) {
  const Sound sound = SoundRun("19");
  const TerminalSession session = RunOnTerminal(
      Traced("pread64:error=EINVAL:delay_enter=300000:when=" + ReadOf(sound, 19, 0) + "+", "19"));
  EXPECT_EQ(session.status, 0);
  std::string errors;
  for (int sector = 10; sector <= 19; ++sector)
    errors += "Global::Read failed, error 22\nError reading sector\n";
  EXPECT_EQ(ScreenOf(session.terminal), errors);
  const std::vector<std::string> lines = LinesInRange(session);
  ASSERT_FALSE(lines.empty());
  for (const std::string& line : lines) {
    const u64 sector = std::stoull(line.substr(std::string("sector ").size()));
    EXPECT_TRUE(line.ends_with(", " + std::to_string(sector - 10) + " unreadable")) << line;
  }
}

TEST(Progress, ShortRunShowsNothing) {
  const TerminalSession session = RunOnTerminal(Program("19"));
  EXPECT_EQ(session.status, 0);
  EXPECT_EQ(session.terminal, "");
}

TEST(Progress, ReportOnTheTerminalIsEnough) {
  const TerminalSession session = RunOnTerminal(Slow(), OutputTo::kTerminal);
  EXPECT_EQ(session.status, 0);
  EXPECT_EQ(session.terminal, SoundRun("19").report);
}

TEST(Progress, ErrorsInAFileShowNothing) {
  const Outcome outcome = RunChild([] {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    Execute(Slow());
  });
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
}

TEST(Progress, JobInTheBackgroundShowsNothing) {
  const TerminalSession session = RunOnTerminal(Slow(), OutputTo::kFile, 132, true);
  EXPECT_EQ(session.status, 0);
  EXPECT_EQ(session.out, SoundRun("19").report);
  EXPECT_EQ(session.terminal, "");
}

// Wherever standard error goes, however short the run is.
TEST(Progress, SignalAsksForItOnce) {
  const Sound sound = SoundRun("12");
  const std::string atSector11 = "pread64:signal=USR1:when=" + ReadOf(sound, 12, 1);
  const std::string line = "sector 12, 3 of 3, [0-9]+(\\.[0-9])? MiB/s, report " +
                           KiB(ReportedBefore(sound.report, 12)) + ", 0:[0-9]{2} left, 0 unreadable\n";
  const Trace trace = TraceProgram(Range("12"), atSector11);
  EXPECT_EQ(trace.outcome.status, 0);
  EXPECT_EQ(trace.outcome.out, sound.report);
  EXPECT_TRUE(std::regex_match(trace.outcome.err, std::regex(line))) << trace.outcome.err;
  const TerminalSession session = RunOnTerminal(Traced(atSector11, "12"));
  EXPECT_TRUE(std::regex_match(ScreenOf(session.terminal), std::regex(line))) << session.terminal;
}

TEST(Progress, SignalInTheLastSectorIsAnsweredBehindIt) {
  const Sound sound = SoundRun("12");
  const Trace trace = TraceProgram(Range("12"), "pread64:signal=USR1:when=" + ReadOf(sound, 12, 2));
  EXPECT_EQ(trace.outcome.out, sound.report);
  EXPECT_TRUE(trace.outcome.err.starts_with("sector 12, 3 of 3, ")) << trace.outcome.err;
  EXPECT_EQ(std::count(trace.outcome.err.begin(), trace.outcome.err.end(), '\n'), 1);
}

// What others have printed stays in front of what the signal asks for.
TEST(Progress, AnswerStandsBehindWhatWasPrinted) {
  const Sound sound = SoundRun("12");
  const Outcome outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    Execute(Traced("pread64:signal=USR1:when=" + ReadOf(sound, 12, 1), "12"));
  });
  const std::string before = sound.report.substr(0, ReportedBefore(sound.report, 12));
  EXPECT_TRUE(outcome.out.starts_with(before + "sector 12, 3 of 3, ")) << outcome.out;
}

}  // namespace
}  // namespace trovisk::test
