// A run that a signal interrupts: what was printed is handed over, and the process ends by the signal.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

// No sector is empty: the whole report is far beyond what a pipe or a buffer holds.
const std::string& Image() {
  static const std::string image = [] {
    Disk disk(2000);
    for (u64 sector = 1; sector < 2000; ++sector)
      disk.At(sector).Le64(0, sector);
    PutBootRecord(disk, 0, {});
    const std::string path = ScratchPath("interruption.img");
    disk.Write(path);
    return path + "@512";
  }();
  return image;
}

// Sectors too large to be read ahead: each is a read of its own.
const std::string& LargeSectors() {
  static const std::string image = [] {
    constexpr u32 kSectorSize = 262144;
    Disk disk(20, kSectorSize);
    PutBootRecord(disk, 0, {});
    const std::string path = ScratchPath("large_sectors.img");
    disk.Write(path);
    return path + "@" + std::to_string(kSectorSize);
  }();
  return image;
}

const std::string& WholeReport() {
  static const std::string report = RunProgram(Build::kShipped, {Image(), "0", "1999"}).out;
  return report;
}

// The report up to the end of a sector's.
std::string Through(const std::string& report, u64 sector) {
  return report.substr(0, report.find("Reading sector # " + std::to_string(sector + 1) + ' '));
}

// What the tracer injects at the read of sector 5, of a run over the sectors 5 to 7.
std::string AtSector5(const std::string& what) {
  const std::size_t reads = TraceProgram({LargeSectors(), "5", "7"}).Of("pread64(").size();
  return "pread64:" + what + ":when=" + std::to_string(reads - 2);
}

struct Interruption {
  const char* name;
  int signal;
};
constexpr Interruption kInterruptions[] = {{"INT", SIGINT}, {"TERM", SIGTERM}};

TEST(Interruption, EndsTheRunBehindTheSector) {
  const std::string whole = TraceProgram({LargeSectors(), "5", "7"}).outcome.out;
  for (const auto& [name, signal] : kInterruptions) {
    const Trace trace = TraceProgram({LargeSectors(), "5", "7"}, AtSector5(std::string("signal=") + name));
    EXPECT_TRUE(SameText(trace.outcome.out, Through(whole, 5)));
    EXPECT_EQ(trace.outcome.err, "");
    EXPECT_EQ(trace.outcome.status, 256 + signal);
  }
}

// A read that hangs is not waited for, and no failure of the disk's.
TEST(Interruption, EndsTheReadThatItCutsShort) {
  const std::string whole = TraceProgram({LargeSectors(), "5", "7"}).outcome.out;
  const std::string header = "Reading sector # 5 [Raw Sector]\n";
  const std::string before = whole.substr(0, whole.find(header)) + header;
  for (const auto& [name, signal] : kInterruptions) {
    const Trace trace =
        TraceProgram({LargeSectors(), "5", "7"}, AtSector5(std::string("error=EINTR:signal=") + name));
    EXPECT_TRUE(SameText(trace.outcome.out, before));
    EXPECT_EQ(trace.outcome.err, "");
    EXPECT_EQ(trace.outcome.status, 256 + signal);
  }
}

TEST(Interruption, InTheLastSectorCountsToo) {
  const std::string whole = TraceProgram({LargeSectors(), "5", "5"}).outcome.out;
  const Trace trace = TraceProgram({LargeSectors(), "5", "5"}, AtSector5("signal=INT"));
  EXPECT_EQ(trace.outcome.out, whole);
  EXPECT_EQ(trace.outcome.status, 256 + SIGINT);
}

// The program on the whole image, once it waits for the reader of its pipe.
struct Piped {
  pid_t process = -1;
  int reader = -1;
};

Piped StartPiped(void (*disposition)(int) = SIG_DFL) {
  Image();
  int ends[2] = {-1, -1};
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    std::signal(SIGINT, disposition);
    std::signal(SIGTERM, disposition);
    Execute({NativeProgramPath(Build::kShipped), Image(), "0", "1999"});
    _exit(127);
  }
  close(ends[1]);
  int before = 0;
  int held = 0;
  for (int tries = 0; tries < 600 && (held == 0 || held != before); ++tries) {
    before = held;
    usleep(100000);
    ioctl(ends[0], FIONREAD, &held);
  }
  EXPECT_GT(held, 0);
  return {child, ends[0]};
}

std::string ReadAll(int reader) {
  std::string text;
  std::string bytes(65536, '\0');
  for (ssize_t got = 0; (got = read(reader, bytes.data(), bytes.size())) > 0;)
    text.append(bytes, 0, static_cast<std::size_t>(got));
  return text;
}

int StatusOf(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

TEST(Interruption, ReaderGetsAllThatWasPrinted) {
  for (const auto& [name, signal] : kInterruptions) {
    const Piped piped = StartPiped();
    kill(piped.process, signal);
    const std::string out = ReadAll(piped.reader);
    close(piped.reader);
    EXPECT_EQ(StatusOf(piped.process), 256 + signal);
    EXPECT_LT(out.size(), WholeReport().size()) << name;
    EXPECT_TRUE(WholeReport().starts_with(out)) << name;
    EXPECT_TRUE(WholeReport().substr(out.size()).starts_with("Reading sector # "))
        << out.substr(out.size() / 2);
  }
}

// Nobody reads, so that the first interruption finds no end: the second one does, of whichever kind.
TEST(Interruption, SecondOneEndsTheProgramAtOnce) {
  for (const int second : {SIGINT, SIGTERM}) {
    const Piped piped = StartPiped();
    kill(piped.process, SIGINT);
    int status = 0;
    pid_t ended = 0;
    for (int tries = 0; tries < 6000 && ended == 0; ++tries) {
      usleep(10000);  // or the two may become one
      kill(piped.process, second);
      ended = waitpid(piped.process, &status, WNOHANG);
    }
    EXPECT_EQ(ended, piped.process);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == second) << status;
    close(piped.reader);
  }
}

// As nohup and shells without job control start their jobs.
TEST(Interruption, IgnoredByTheParentStaysIgnored) {
  for (const auto& [name, signal] : kInterruptions) {
    const Piped piped = StartPiped(SIG_IGN);
    kill(piped.process, signal);
    EXPECT_EQ(ReadAll(piped.reader), WholeReport()) << name;
    close(piped.reader);
    EXPECT_EQ(StatusOf(piped.process), 0);
  }
}

TEST(Interruption, LeavesNoLineOnTheTerminal) {
  const std::vector<std::string> arguments = {LargeSectors(), "5", "17"};
  const std::string whole = TraceProgram(arguments).outcome.out;
  const std::size_t reads = TraceProgram(arguments).Of("pread64(").size();
  std::vector<std::string> words = {"strace",
                                    "-f",
                                    "-qq",
                                    "-o",
                                    "/dev/null",
                                    "--inject=write:delay_enter=150000",
                                    "--inject=pread64:signal=INT:when=" + std::to_string(reads - 2),
                                    NativeProgramPath(Build::kShipped)};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const TerminalSession session = RunOnTerminal(words);
  EXPECT_EQ(session.status, 256 + SIGINT);
  EXPECT_EQ(session.out, Through(whole, 15));
  EXPECT_FALSE(RewrittenLines(session.terminal).empty());
  EXPECT_EQ(ScreenOf(session.terminal), "");
}

}  // namespace
}  // namespace trovisk::test
