// What trovisk-map asks of the operating system: how it opens the disk, and what else it writes.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/support/child.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

using Lines = std::vector<std::string>;

Trace TraceMap(const Lines& arguments) {
  Lines command = {TROVISK_MAP_PROGRAM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return TraceCommand(command);
}

// A table with one partition; damaged: its primary header is not one.
std::string WriteImage(const std::string& name, bool damaged = false) {
  Disk disk(4096);
  PutGpt(disk, {{.first = 64, .last = 1063, .name = u"One"}});
  if (damaged) disk.At(1).U8(0, 'X');
  std::string path = ScratchPath(name);
  disk.Write(path);
  return path;
}

TEST(SystemCalls, MapOpensTheDiskForReadingAlone) {
  const std::string sound = WriteImage("sound.img");
  const std::string damaged = WriteImage("damaged.img", true);
  for (const std::string& path : {sound, damaged}) {
    for (const Lines& arguments : {Lines{path}, Lines{path + "@512"}, Lines{"--json", path},
                                   Lines{"--sfdisk", path}, Lines{"--width", "100", "--all", path}}) {
      const Trace trace = TraceMap(arguments);
      EXPECT_EQ(trace.outcome.status, path == sound ? 0 : 2) << trace.outcome.err;
      EXPECT_GE(OpensOf(trace, path).size(), 1u);
      EXPECT_EQ(Changes(trace), Lines{});
    }
  }
}

TEST(SystemCalls, MapComparesWithoutWriting) {
  const std::string older = WriteImage("older.img");
  const std::string newer = WriteImage("newer.img", true);
  const Trace trace = TraceMap({"--compare", older, newer});
  EXPECT_EQ(trace.outcome.status, 1) << trace.outcome.err;
  EXPECT_GE(OpensOf(trace, older).size(), 1u);
  EXPECT_GE(OpensOf(trace, newer).size(), 1u);
  EXPECT_EQ(Changes(trace), Lines{});
}

// Its own file is all that it makes: a temporary one, which is then given its name.
TEST(SystemCalls, MapWritesTheOutputAlone) {
  const std::string path = WriteImage("written.img", true);
  const std::string output = ScratchPath("written.out");
  for (const Lines& arguments : {Lines{"--output", output, path}, Lines{"--json", "--output", output, path},
                                 Lines{"--html", output, path}}) {
    const Trace trace = TraceMap(arguments);
    EXPECT_EQ(trace.outcome.status, 2) << trace.outcome.err;
    EXPECT_EQ(OpensOf(trace, path).size(), 1u);
    const Lines changes = Changes(trace);
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_NE(changes[0].find("/.trovisk-map."), std::string::npos) << changes[0];
    EXPECT_NE(changes[0].find("O_CREAT|O_EXCL"), std::string::npos) << changes[0];
    EXPECT_TRUE(changes[1].starts_with("rename(\"")) << changes[1];
    EXPECT_NE(changes[1].find(", \"" + output + "\")"), std::string::npos) << changes[1];
  }
}

}  // namespace
}  // namespace trovisk::test
