// What the operating system's side asks of Linux at the edges: the largest offset, descriptors that are taken
// or closed, disks whose names are folders. Seen in a trace where the report does not show it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

std::string WriteImage(const std::string& name, const Disk& disk) {
  std::string path = ScratchPath(name);
  disk.Write(path);
  return path;
}

Disk SmallDisk() {
  Disk disk(16);
  PutBootRecord(disk, 0, {});
  disk.At(5).Text(0, "five");
  return disk;
}

// The first call of those that begin so and have that text in them.
std::size_t CallAt(const Trace& trace, const std::string& start, const std::string& text) {
  const auto found = std::find_if(trace.calls.begin(), trace.calls.end(), [&](const std::string& call) {
    return call.starts_with(start) && call.find(text) != std::string::npos;
  });
  return static_cast<std::size_t>(found - trace.calls.begin());
}

// What stands behind the last " = " of a call.
std::string ResultOf(const std::string& call) {
  const std::size_t at = call.rfind("= ");
  return at == std::string::npos ? call : call.substr(at + 2);
}

// A sector that ends one byte beyond the largest offset that the system has is a sector that falls short, not
// one that cannot be read.
TEST(LargestOffset, IsReadUpToAndNotAcross) {
  Disk disk(64);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kBasicDataType, .first = (u64{1} << 54) - 1}});
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 4});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            "Global::Read short read, needed 512, got 0\n"
            "Error reading sector #18014398509481983\n");
}

// Closed by whoever started the program: the disk takes the place of none, so that nothing is written into
// it.
TEST(StandardDescriptors, AreNeverTheDisks) {
  const std::string image = WriteImage("descriptors.img", SmallDisk());
  for (const auto& [closed, first] :
       {std::pair<std::string, std::string>{"<&-", "0"}, {"2>&-", "2"}, {"<&- 2>&-", "0"}}) {
    SCOPED_TRACE(closed);
    const Trace trace = TraceShell("exec \"$0\" \"$@\" " + closed, {image, "5"});
    EXPECT_EQ(trace.outcome.status, 0);
    const std::size_t opened = CallAt(trace, "open", '"' + image + '"');
    ASSERT_LT(opened + 2, trace.calls.size());
    EXPECT_EQ(ResultOf(trace.calls[opened]), first);
    const std::string& moved = trace.calls[opened + 1];
    EXPECT_TRUE(moved.starts_with("fcntl(" + first + ", F_DUPFD_CLOEXEC, 3)")) << moved;
    EXPECT_GE(std::stoi(ResultOf(moved)), 3);  // which is free, unless this process has others open
    EXPECT_TRUE(trace.calls[opened + 2].starts_with("close(" + first + ")")) << trace.calls[opened + 2];
    const std::size_t read = CallAt(trace, "pread64(", ", 512, 2560)");  // sector 5
    ASSERT_LT(read, trace.calls.size());
    EXPECT_TRUE(trace.calls[read].starts_with("pread64(" + ResultOf(moved) + ", ")) << trace.calls[read];
  }
}

// Without a place for the report the run ends before the disk is touched.
TEST(StandardDescriptors, ClosedOutputLeavesTheDiskAlone) {
  const std::string image = WriteImage("untouched.img", SmallDisk());
  for (const char* closed : {">&-", "<&- >&- 2>&-"}) {
    const Trace trace = TraceShell(std::string("exec \"$0\" \"$@\" ") + closed, {image, "5"});
    EXPECT_EQ(trace.outcome.status, 1);
    EXPECT_EQ(CallAt(trace, "open", image), trace.calls.size());
  }
}

// The closings of a descriptor behind a call: "close(N) = 0" each, whatever blanks strace puts in between.
std::size_t ClosingsBehind(const Trace& trace, std::size_t call, const std::string& descriptor) {
  std::size_t closings = 0;
  for (std::size_t i = call; i < trace.calls.size(); ++i) {
    if (!trace.calls[i].starts_with("close(")) continue;
    EXPECT_EQ(ResultOf(trace.calls[i]), "0") << trace.calls[i];  // none that is not open
    if (trace.calls[i].starts_with("close(" + descriptor + ")")) ++closings;
  }
  return closings;
}

TEST(Closing, ClosesTheDiskOnce) {
  const std::string image = WriteImage("closed.img", SmallDisk());
  const Trace trace = TraceProgram({image, "5"});
  const std::size_t opened = CallAt(trace, "open", '"' + image + '"');
  ASSERT_LT(opened, trace.calls.size());
  EXPECT_EQ(ClosingsBehind(trace, opened, ResultOf(trace.calls[opened])), 1u);
}

TEST(Closing, ClosesTheUnbufferedDescriptorToo) {
  const std::string image = WriteImage("unbuffered.img", SmallDisk());
  const int direct = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECT);
  if (direct < 0) GTEST_SKIP() << "the file system of " << image << " has no unbuffered reads";
  close(direct);
  // The last read of the sound run is the one of sector 5.
  const std::size_t reads = TraceProgram({image, "5"}).Of("pread64(").size();
  const Trace trace = TraceProgram({image, "5"}, "pread64:error=EIO:when=" + std::to_string(reads));
  const std::size_t opened = CallAt(trace, "open", '"' + image + '"');
  const std::size_t again = CallAt(trace, "open", "O_DIRECT");
  ASSERT_LT(again, trace.calls.size());
  EXPECT_EQ(ClosingsBehind(trace, again, ResultOf(trace.calls[again])), 1u);
  EXPECT_EQ(ClosingsBehind(trace, again, ResultOf(trace.calls[opened])), 1u);
}

// A list of disks with names of two parts, in the place of the kernel's. Of the folder that describes a disk,
// the slash is an exclamation mark.
TEST(DiskName, OfTwoPartsIsLookedUpAsTheKernelWritesIt) {
  const std::string list = ScratchPath("partitions");
  std::ofstream(list) << "major minor  #blocks  name\n\n"
                         " 104        0  1048576 trovisk/c0d0\n 104        1  1048576 trovisk/c0d1\n";
  const std::string replaced = "mount --bind '" + list + "' /proc/partitions && ";
  if (RunCommand("unshare", {"--mount", "--map-root-user", "sh", "-c", replaced + "true"}, {}).status != 0) {
    GTEST_SKIP() << "this user can put no file in the place of /proc/partitions";
  }
  const Trace trace = TraceShell("exec unshare --mount --map-root-user sh -c \"" + replaced +
                                     "exec \\\"\\$0\\\" \\\"\\$@\\\"\" "
                                     "\"$0\" \"$@\"",
                                 {"1"});
  for (const char* name : {"c0d0", "c0d1"}) {
    EXPECT_LT(CallAt(trace, "", "\"/sys/class/block/trovisk!" + std::string(name) + "/partition\""),
              trace.calls.size())
        << name;
  }
  EXPECT_LT(CallAt(trace, "open", "\"/dev/trovisk/c0d1\""), trace.calls.size());
  EXPECT_EQ(trace.outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive1 for reading, error 2\n");
}

}  // namespace
}  // namespace trovisk::test
