// What the program asks of the operating system: how it opens the disk, and how often it reads and writes.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

// Every sector holds something.
std::string WriteFullImage(const std::string& name, u64 sectors, u32 sectorSize = 512) {
  Disk disk(sectors, sectorSize);
  for (u64 sector = 1; sector < sectors; ++sector)
    disk.At(sector).Le64(0, sector);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 1, .count = 9}}});
  std::string path = ScratchPath(name);
  disk.Write(path);
  return path;
}

std::size_t ReadsOf(const Trace& trace) {
  return trace.Of("pread64(").size();
}

TEST(SystemCalls, DiskIsOnlyEverOpenedForReading) {
  const std::string path = WriteFullImage("opened", 16);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{path}, {path + "@512"}, {path, "3"}, {path, "0", "15"}}) {
    const Trace trace = TraceProgram(arguments);
    EXPECT_EQ(trace.outcome.status, 0);
    const std::vector<std::string> opens = OpensOf(trace, path);
    EXPECT_GE(opens.size(), 1u);
    for (const std::string& call : opens)
      EXPECT_NE(call.find("O_RDONLY|O_NOCTTY|O_NONBLOCK|O_CLOEXEC"), std::string::npos) << call;
    // Nor is anything else on the machine opened to be written.
    EXPECT_EQ(Changes(trace), std::vector<std::string>{});
  }
}

// The bytes that the reads behind the opening of the image ask for: "pread64(3, ""..., 512, 0) = 512" asks
// for 512.
std::vector<u64> BytesAsked(const std::string& image, const std::vector<std::string>& sectors) {
  std::vector<std::string> arguments = {image};
  arguments.insert(arguments.end(), sectors.begin(), sectors.end());
  const Trace trace = TraceProgram(arguments);
  const std::string path = image.substr(0, image.rfind('@'));
  bool opened = false;
  std::vector<u64> asked;
  for (const std::string& call : trace.calls) {
    opened = opened || call.find("\"" + path + "\"") != std::string::npos;
    if (!opened || !call.starts_with("pread64(")) continue;
    const std::size_t last = call.rfind(", ", call.rfind(')'));
    asked.push_back(std::stoull(call.substr(call.rfind(", ", last - 1) + 2)));
  }
  return asked;
}

// Of an image, reads that follow one another are served from larger ones, which grow with the run of them.
TEST(SystemCalls, RangeDumpOfAnImageReadsAhead) {
  for (const u32 sectorSize : {512u, 4096u}) {
    const std::string path = WriteFullImage("range", 2100, sectorSize) + "@" + std::to_string(sectorSize);
    const std::vector<u64> asked = BytesAsked(path, {"1", "2010"});
    std::vector<u64> large;
    std::copy_if(asked.begin(), asked.end(), std::back_inserter(large),
                 [&](u64 bytes) { return bytes > u64{2} * sectorSize; });
    ASSERT_GE(large.size(), 3u);
    EXPECT_LE(large.size(), u64{2010} * sectorSize / 262144 + 8);
    EXPECT_TRUE(std::is_sorted(large.begin(), large.end()));
    EXPECT_GE(large.back(), 262144u);
    EXPECT_LE(large.back(), 262144u);
    EXPECT_LE(asked.size() - large.size(), 12u) << "the first reads, and what the image is";
  }
}

// A lone read asks for its own bytes: a single sector far from the first one.
TEST(SystemCalls, LoneReadOfAnImageStaysALoneRead) {
  const std::string path = WriteFullImage("lone", 1100) + "@512";
  for (const u64 bytes : BytesAsked(path, {"1000"}))
    EXPECT_EQ(bytes, 512u);
}

// The same structures on disks of 1 GiB, 16 TiB and 2^62 bytes: a whole-disk run makes the same calls.
TEST(SystemCalls, WholeDiskRunDoesNotDependOnTheSizeOfTheDisk) {
  // Few file systems hold files of every size, sparse or not: one in memory holds the largest.
  const std::string folder = "/dev/shm/trovisk-test-" + std::to_string(getpid());
  std::filesystem::create_directory(folder);
  Disk disk(u64{1} << 21);  // 1 GiB
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 10, .count = 50}}});
  PutBootRecord(disk, 10, {.entries = {{.type = 0x83, .first = 1, .count = 5}, {.type = 0x05, .first = 10}}});
  PutBootRecord(disk, 20, {.entries = {{.type = 0x83, .first = 1, .count = 5}}});
  const std::string path = folder + "/sparse.img";
  disk.Write(path);

  std::vector<std::string> first;
  for (const u64 size : {u64{1} << 30, u64{1} << 44, u64{1} << 62, (u64{1} << 63) - 512}) {
    std::error_code error;
    std::filesystem::resize_file(path, size, error);
    ASSERT_FALSE(error) << "the file system of " << folder << " does not hold " << size
                        << " bytes: " << error.message();
    const Trace trace = TraceProgram({path});
    EXPECT_EQ(trace.outcome.status, 0);
    EXPECT_EQ(trace.outcome.err, "");
    EXPECT_NE(trace.outcome.out.find("\nLast sector on disk is " + std::to_string(size / 512 - 1) + "\n"),
              std::string::npos);
    EXPECT_TRUE(
        trace.outcome.out.ends_with("         0\tMaster Boot Record\n        10\tSupplementary Boot Record\n"
                                    "        20\tSupplementary Boot Record\n"));
    const std::vector<std::string> names = trace.Names();
    std::cout << size << " bytes: " << names.size() << " system calls\n";
    if (first.empty()) first = names;
    EXPECT_EQ(names, first);
  }
  std::filesystem::remove_all(folder);
}

// No limit to the walk, and nothing to count.
TEST(SystemCalls, SingleSectorWithANegativeLastCostsNoMoreThanOneWithout) {
  const std::string path = WriteFullImage("unbounded", 16);
  const Trace plain = TraceProgram({path, "7"});
  const Trace unbounded = TraceProgram({path, "7", "-1"});
  EXPECT_EQ(unbounded.outcome.out, plain.outcome.out);
  EXPECT_EQ(unbounded.Names(), plain.Names());
}

// Calls that fail: strace makes them. The sound run of sectors 5 and 6 ends in the reads of these two; from
// its trace follows the number of the first, which the program's loader has a share in.
std::string AtReadOfSector5(const Trace& sound, const std::string& error, const std::string& more = "") {
  return "pread64:error=" + error + ":when=" + std::to_string(ReadsOf(sound) - 1) + more;
}

TEST(FailingCalls, InterruptedReadsAndWritesAreRepeated) {
  const std::string path = WriteFullImage("interrupted", 16) + "@512";
  const Trace sound = TraceProgram({path, "5", "6"});
  for (const std::string& inject :
       {AtReadOfSector5(sound, "EINTR"), std::string("write:error=EINTR:when=2")}) {
    const Trace trace = TraceProgram({path, "5", "6"}, inject);
    EXPECT_EQ(trace.Names().size(), sound.Names().size() + 1);
    EXPECT_EQ(trace.outcome.out, sound.outcome.out);
    EXPECT_EQ(trace.outcome.err, "");
    EXPECT_EQ(trace.outcome.status, 0);
  }
}

// A device fails a whole page for one bad sector; the good ones are read again past the page cache.
TEST(FailingCalls, InputOutputErrorIsTriedAgainUnbuffered) {
  const std::string image = WriteFullImage("unbuffered", 16);
  const int direct = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECT);
  if (direct < 0) GTEST_SKIP() << "the file system of " << image << " has no unbuffered reads";
  close(direct);
  const std::string path = image + "@512";
  const Trace sound = TraceProgram({path, "5", "6"});
  const Trace trace = TraceProgram({path, "5", "6"}, AtReadOfSector5(sound, "EIO"));
  EXPECT_EQ(trace.outcome.out, sound.outcome.out);
  EXPECT_EQ(trace.outcome.err, "");
  std::size_t opened = 0;
  for (const std::string& call : trace.calls) {
    if (call.find("O_DIRECT") == std::string::npos) continue;
    ++opened;
    EXPECT_NE(call.find("O_RDONLY|O_NOCTTY|O_NONBLOCK|O_DIRECT|O_CLOEXEC"), std::string::npos) << call;
  }
  EXPECT_EQ(opened, 1u);
}

// Only when that fails too is the error told, and the range goes on.
TEST(FailingCalls, InputOutputErrorThatStaysIsReported) {
  const std::string path = WriteFullImage("unreadable", 16) + "@512";
  const Trace trace =
      TraceProgram({path, "5", "6"}, AtReadOfSector5(TraceProgram({path, "5", "6"}), "EIO", "+"));
  const std::string failure = "Global::Read failed, error 5\nError reading sector\n";
  EXPECT_TRUE(
      trace.outcome.out.ends_with("\nReading sector # 5 [Raw Sector]\nReading sector # 6 [Raw Sector]\n"));
  EXPECT_EQ(trace.outcome.err, failure + failure);
  EXPECT_EQ(trace.outcome.status, 0);
}

TEST(FailingCalls, OtherErrorsAreReportedAtOnce) {
  const std::string path = WriteFullImage("refused", 16) + "@512";
  const Trace trace =
      TraceProgram({path, "5", "6"}, AtReadOfSector5(TraceProgram({path, "5", "6"}), "EINVAL"));
  EXPECT_EQ(trace.outcome.err, "Global::Read failed, error 22\nError reading sector\n");
  EXPECT_EQ(trace.Of("openat(AT_FDCWD, \"/proc/self/fd").size(), 0u);
}

}  // namespace
}  // namespace trovisk::test
