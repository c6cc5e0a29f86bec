// Where the report goes: a full disk, a closed descriptor, a reader that has gone or is slow, one file for
// both streams.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

// 2000 sectors, none of them empty: a report far beyond what a pipe or a buffer holds.
const std::string& LargeImage() {
  static const std::string image = [] {
    Disk disk(2000);
    for (u64 sector = 1; sector < 2000; ++sector)
      disk.At(sector).Le64(0, sector);
    PutBootRecord(disk, 0, {});
    std::string path = ScratchPath("large.img");
    disk.Write(path);
    return path;
  }();
  return image;
}

// Becomes the program, on sectors 0 to last of the large image.
void Become(const std::string& last) {
  const std::string program = ProgramPath(Build::kShipped);
  execl(program.c_str(), program.c_str(), LargeImage().c_str(), "0", last.c_str(), nullptr);
}

std::string WriteError(int error) {
  return "Error writing the report, error " + std::to_string(error) + "\n";
}

TEST(ReportDestination, FullDiskIsAnError) {
  for (const char* last : {"0", "1999"}) {
    LargeImage();
    const Outcome outcome = RunChild([&] {
      dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
      Become(last);
    });
    EXPECT_EQ(outcome.err, WriteError(ENOSPC));
    EXPECT_EQ(outcome.status, 1);
  }
}

// In the midst of the report: what fits is there, and the signal of the limit does not end the program.
TEST(ReportDestination, LimitOnTheFileSizeIsAnError) {
  LargeImage();
  const Outcome outcome = RunChild([&] {
    const rlimit limit{100000, 100000};
    setrlimit(RLIMIT_FSIZE, &limit);
    Become("1999");
  });
  EXPECT_EQ(outcome.out.size(), 100000u);
  EXPECT_EQ(outcome.err, WriteError(EFBIG));
  EXPECT_EQ(outcome.status, 1);
}

TEST(ReportDestination, ClosedDescriptorIsAnError) {
  LargeImage();
  const Outcome outcome = RunChild([&] {
    close(STDOUT_FILENO);
    Become("1999");
  });
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, WriteError(EBADF));
  EXPECT_EQ(outcome.status, 1);
}

// All three closed: there is nobody to tell, and nothing else takes the place of one of them.
TEST(ReportDestination, EveryDescriptorClosed) {
  LargeImage();
  const Outcome outcome = RunChild([&] {
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    Become("1999");
  });
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 1);
}

TEST(ReportDestination, ClosedStandardErrorLeavesTheReportWhole) {
  LargeImage();
  const Outcome whole = RunChild([&] { Become("1999"); });
  const Outcome outcome = RunChild([&] {
    close(STDERR_FILENO);
    Become("1999");
  });
  EXPECT_EQ(outcome.out, whole.out);
  EXPECT_EQ(outcome.status, 0);
}

// With no room for the messages the status still tells.
TEST(ReportDestination, UsageLineOnAFullDisk) {
  const Outcome outcome = RunChild([&] {
    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    const std::string program = ProgramPath(Build::kShipped);
    execl(program.c_str(), program.c_str(), nullptr);
  });
  EXPECT_EQ(outcome.err, WriteError(ENOSPC));
  EXPECT_EQ(outcome.status, 1);
}

// The parent may have left the signal of a broken pipe as it is, or ignored it.
TEST(ReportDestination, ReaderThatHasGoneEndsTheProgramQuietly) {
  LargeImage();
  for (const auto disposition : {SIG_DFL, SIG_IGN}) {
    const Outcome outcome = RunChild([&] {
      int ends[2];
      if (pipe(ends) != 0) _exit(126);
      close(ends[0]);
      dup2(ends[1], STDOUT_FILENO);
      std::signal(SIGPIPE, disposition);
      Become("1999");
    });
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
  }
}

// Starts the program on the large image with a pipe for its standard output; gives its process and the pipe.
struct Piped {
  pid_t process = -1;
  int reader = -1;
};

Piped StartPiped(int flags) {
  LargeImage();
  int ends[2] = {-1, -1};
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  if (flags != 0) fcntl(ends[1], F_SETFL, flags);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    Become("1999");
    _exit(127);
  }
  close(ends[1]);
  return {child, ends[0]};
}

int StatusOf(const Piped& piped) {
  int status = 0;
  waitpid(piped.process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

// As "| head" does.
TEST(ReportDestination, ReaderThatGoesInTheMidstEndsTheProgramQuietly) {
  const Piped piped = StartPiped(0);
  char bytes[1000];
  EXPECT_GT(read(piped.reader, bytes, sizeof bytes), 0);
  close(piped.reader);
  EXPECT_EQ(StatusOf(piped), 0);
}

// The program waits for a reader that is slower than itself, on a pipe that is handed over as a non-blocking
// one too.
TEST(ReportDestination, SlowReaderGetsEverything) {
  const Outcome whole = RunChild([&] { Become("1999"); });
  for (const int flags : {0, O_NONBLOCK}) {
    const Piped piped = StartPiped(flags);
    std::string out;
    std::string bytes(30000, '\0');
    usleep(50000);  // until the pipe is full
    for (ssize_t got = 0; (got = read(piped.reader, bytes.data(), bytes.size())) > 0;) {
      out.append(bytes, 0, static_cast<std::size_t>(got));
      usleep(500);
    }
    close(piped.reader);
    EXPECT_EQ(StatusOf(piped), 0);
    EXPECT_EQ(out.size(), whole.out.size());
    EXPECT_EQ(out, whole.out);
  }
}

// Both streams in one file: a message stands behind what was printed before it, and before what comes after.
TEST(ReportDestination, BothStreamsInOneFileKeepTheirOrder) {
  Disk disk(3);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 2}}});
  disk.At(1).Text(0, "one");
  PutBootRecord(disk, 2, {});
  const std::string path = ScratchPath("ordered.img");
  disk.Write(path);
  const std::string program = ProgramPath(Build::kShipped);
  const Outcome outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    // The extended boot record is cut off: it is there, but cannot be read whole.
    if (truncate(path.c_str(), 3 * 512 - 1) != 0) _exit(126);
    execl(program.c_str(), program.c_str(), path.c_str(), nullptr);
  });
  const std::string failure = "Global::Read short read, needed 512, got 511\nError reading sector\n";
  const std::string mbr = ExpandExpected(
      "Reading sector # 0 [Master Boot Record]\n\nMBR\n---\nDisk Signature   : 0x00000000\n\n\n"
      "Partition table entries\n\n"
      "\tInactive [ Extended ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 2 - 1 ]\n\n"
      "\tEmpty\n\n\tEmpty\n\n\tEmpty\n\n"
      "\n\nSector End Mark  : 0xAA55\n\nReading sector # 0 [as a raw sector]\n{{dump 0}}\n",
      disk);
  EXPECT_TRUE(
      SameText(WithoutDate(outcome.out),
               "Trovisk version 1.4 built <date>\n\nLast sector on disk is 1\nReading \\\\.\\PhysicalDrive" +
                   path + " [ whole disk ]\n\nLoading TOC ...\n" + failure + "\n" + mbr + kTocHeading +
                   "         0\tMaster Boot Record\n         2\tSupplementary Boot Record\n"));
  EXPECT_EQ(outcome.status, 0);
}

TEST(ReportDestination, MessageStandsBehindTheHeaderOfItsSector) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 50}}});
  disk.Resize(51);
  const std::string path = ScratchPath("header.img");
  disk.Write(path);
  const std::string program = ProgramPath(Build::kShipped);
  const Outcome outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    if (truncate(path.c_str(), 10) != 0) _exit(126);
    execl(program.c_str(), program.c_str(), path.c_str(), "0", nullptr);
  });
  const std::string failure = "Global::Read short read, needed 512, got 10\nError reading sector\n";
  EXPECT_TRUE(outcome.out.ends_with(" sector 0\n\nLoading TOC ...\n" + failure +
                                    "\nReading sector # 0 [Master Boot Record]\n" + failure))
      << outcome.out;
}

TEST(ReportDestination, RefusalStandsBehindTheLastSectorLine) {
  const std::string program = ProgramPath(Build::kShipped);
  LargeImage();
  const Outcome outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    execl(program.c_str(), program.c_str(), LargeImage().c_str(), "2000", nullptr);
  });
  EXPECT_EQ(WithoutDate(outcome.out),
            "Trovisk version 1.4 built <date>\n\nLast sector on disk is 1999\n"
            "There aren't that many sectors on the disk !!\n");
  EXPECT_EQ(outcome.status, 1);
}

}  // namespace
}  // namespace trovisk::test
