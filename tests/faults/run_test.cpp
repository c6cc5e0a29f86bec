// Whole runs on a disk whose calls fail: the messages, their streams, the exit status, what still runs.

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

const std::string kBanner = "Trovisk version 1.4 built <date>\n\n";

// A disk of 100 sectors with a partition that nothing is registered for.
Disk PlainDisk() {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 63, .count = 10}}});
  disk.At(5).Text(0, "five");
  disk.At(6).Text(0, "six");
  disk.At(7).Text(0, "seven");
  return disk;
}

// A disk whose extended boot records stand in sectors 10 and 20, one pointing to the next.
Disk ChainDisk() {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 10, .count = 50}}});
  PutBootRecord(disk, 10, {.entries = {{.type = 0x83, .first = 1, .count = 5}, {.type = 0x05, .first = 10}}});
  PutBootRecord(disk, 20, {.entries = {{.type = 0x83, .first = 1, .count = 5}}});
  return disk;
}

std::string Start(const std::string& last, const std::string& reading) {
  return kBanner + "Last sector on disk is " + last + "\nReading \\\\.\\PhysicalDrivemem" + reading +
         "\n\nLoading TOC ...\n";
}

std::string Toc(const std::string& rows) {
  return kTocHeading + rows;
}

std::string RawSector(const Disk& disk, u64 sector) {
  const std::string number = std::to_string(sector);
  return ExpandExpected("Reading sector # " + number + " [Raw Sector]\n{{dump " + number + "}}\n", disk);
}

void ExpectOutcome(const MemoryOutcome& outcome, const std::string& out, const std::string& err, int status) {
  EXPECT_TRUE(SameText(outcome.out, out));
  EXPECT_TRUE(SameText(outcome.err, err));
  EXPECT_EQ(outcome.status, status);
}

TEST(RunFaults, DiskThatDoesNotOpen) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kOpen, .error = 2}}});
  ExpectOutcome(outcome, kBanner,
                "Global::Open: couldn't open \\\\.\\PhysicalDrivemem for reading, error 2\n", 1);
}

TEST(RunFaults, GeometryThatCannotBeRead) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kSectorSize, .error = 25}}});
  ExpectOutcome(outcome, kBanner,
                "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrivemem "
                "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 25\n",
                1);
  EXPECT_EQ(outcome.calls.order, "WOGC");
}

// The run goes on, takes every sector argument, and a whole-disk run has no limit but ends.
TEST(RunFaults, UnknownLengthTakesEverySector) {
  const std::vector<Fault> unknown = {{.call = Call::kLength, .error = 1}};
  const std::string message = "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )1\n";
  auto outcome = RunOnMemory({PlainDisk(), unknown}, {"mem", "100"});
  ExpectOutcome(outcome,
                Start("18446744073709551615", " sector 100") + "\nReading sector # 100 [Raw Sector]\n",
                message + "Global::Read short read, needed 512, got 0\nError reading sector\n", 0);
  outcome = RunOnMemory({PlainDisk(), unknown}, {"mem", "9223372036854775807", "0"});
  ExpectOutcome(outcome, Start("18446744073709551615", " sectors [ 9223372036854775807 - 0 ]") + "\n",
                message, 0);
}

TEST(RunFaults, UnknownLengthOfAWholeDiskEnds) {
  const auto outcome = RunOnMemory({Disk(100), {{.call = Call::kLength, .error = 1}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )1\n");
  EXPECT_TRUE(outcome.out.ends_with(Toc("         0\tMaster Boot Record\n"))) << outcome.out;
}

TEST(RunFaults, SectorBeyondTheDiskClosesIt) {
  const std::string message = "There aren't that many sectors on the disk !!\n";
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"mem", "100"}, {"mem", "0", "100"}, {"mem", "100", "0"}}) {
    const auto outcome = RunOnMemory({PlainDisk()}, arguments);
    ExpectOutcome(outcome, kBanner + "Last sector on disk is 99\n", message, 1);
    EXPECT_EQ(outcome.calls.order, "WOGLWC");
  }
}

// The very first seek, to the master boot record.
TEST(RunFaults, SeekRefusedInTheLoadingPass) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kSeek, .error = 87}}});
  ExpectOutcome(outcome, Start("99", " [ whole disk ]"),
                "Global::Seek failed to seek to sector 0, error 87\nFailed to seek to sector 0\n", 1);
  EXPECT_EQ(outcome.calls.order, "WOGLSWC");
}

// The frame names the position that it came from, 1, the disk layer the sector that it sought, 10. Seeks of
// the loading pass: 0, back to 0 for the dump, 10.
TEST(RunFaults, FailedSeekNamesThePositionNotTheEntry) {
  const auto outcome = RunOnMemory({ChainDisk(), {{.call = Call::kSeek, .nth = 3, .error = 87}}});
  ExpectOutcome(outcome, Start("99", " [ whole disk ]"),
                "Global::Seek failed to seek to sector 10, error 87\nFailed to seek to sector 1\n", 1);
}

TEST(RunFaults, SeekThatLandsElsewhereEndsTheRun) {
  const auto outcome =
      RunOnMemory({ChainDisk(), {{.call = Call::kSeek, .nth = 3, .amount = 512}}}, {"mem", "50"});
  ExpectOutcome(outcome, Start("99", " sector 50"),
                "Global::Seek failed to seek to sector 10\nFailed to seek to sector 1\n", 1);
}

// Seeks before it: 0 and back for the dump in the loading pass.
TEST(RunFaults, SeekRefusedInThePrintingPass) {
  const auto outcome =
      RunOnMemory({PlainDisk(), {{.call = Call::kSeek, .nth = 3, .error = 87}}}, {"mem", "5"});
  ExpectOutcome(outcome, Start("99", " sector 5") + "\n",
                "Global::Seek failed to seek to sector 0, error 87\nFailed to seek to sector 0\n", 1);
}

// After sector 0's two in either pass, sector 5's, then sector 6's.
TEST(RunFaults, SeekRefusedBeforeARawDump) {
  const auto outcome =
      RunOnMemory({PlainDisk(), {{.call = Call::kSeek, .nth = 6, .error = 87}}}, {"mem", "5", "7"});
  ExpectOutcome(outcome, Start("99", " sectors [ 5 - 7 ]") + "\n" + RawSector(PlainDisk(), 5),
                "Global::Seek failed to seek to sector 6, error 87\nFailed to seek to sector 6\n", 1);
}

// A decoder's seek back to its own sector: the pass ends, the run does not.
TEST(RunFaults, SeekBackRefusedEndsThePassOnly) {
  const auto outcome =
      RunOnMemory({ChainDisk(), {{.call = Call::kSeek, .nth = 2, .error = 87}}}, {"mem", "50"});
  EXPECT_EQ(outcome.err, "Global::Seek failed to seek to sector 0, error 87\n");
  EXPECT_EQ(outcome.status, 0);
  // Sector 10 is registered all the same, and registers 20 when the printing pass comes to it.
  EXPECT_TRUE(SameText(outcome.out,
                       Start("99", " sector 50") + "\nReading sector # 50 [Raw Sector]\n... empty ...\n"));
}

// What is registered later in the table is not loaded, but still visited by the printing pass.
TEST(RunFaults, ReadFailureEndsTheLoadingPassOnly) {
  const Disk disk = ChainDisk();
  const auto outcome = RunOnMemory({disk, {{.call = Call::kRead, .nth = 2, .error = 1117}}}, {"mem", "20"});
  EXPECT_EQ(outcome.err, "Global::Read failed, error 1117\nError reading sector\n");
  EXPECT_EQ(outcome.status, 0);
  const std::string start = Start("99", " sector 20") + "\nReading sector # 20 [Supplementary Boot Record]\n";
  EXPECT_TRUE(SameText(outcome.out.substr(0, start.size()), start));
}

// Both passes fail at the master boot record; nothing else is registered.
TEST(RunFaults, UnreadableDisk) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kRead, .calls = ~u64{0}, .error = 5}}});
  const std::string failure = "Global::Read failed, error 5\nError reading sector\n";
  ExpectOutcome(outcome,
                Start("99", " [ whole disk ]") + "\nReading sector # 0 [Master Boot Record]\n" +
                    Toc("         0\tMaster Boot Record\n"),
                failure + failure, 0);
}

// An unreadable master boot record ends the printing pass before the requested sector.
TEST(RunFaults, UnreadableMasterBootRecordHidesTheRequestedSector) {
  const auto outcome =
      RunOnMemory({PlainDisk(), {{.call = Call::kRead, .calls = 2, .error = 5}}}, {"mem", "5"});
  const std::string failure = "Global::Read failed, error 5\nError reading sector\n";
  ExpectOutcome(outcome, Start("99", " sector 5") + "\n", failure + failure, 0);
}

// The dump of an unregistered sector: its result is ignored. Reads: 0 in either pass, 5, 6, 7.
TEST(RunFaults, UnreadableRawSectorDoesNotEndTheRange) {
  const Disk disk = PlainDisk();
  for (const auto& [fault, message] :
       {std::pair<Fault, std::string>{{.call = Call::kRead, .nth = 4, .error = 5}, "failed, error 5"},
        {{.call = Call::kRead, .nth = 4, .amount = 511}, "short read, needed 512, got 511"}}) {
    const auto outcome = RunOnMemory({disk, {fault}}, {"mem", "5", "7"});
    ExpectOutcome(outcome,
                  Start("99", " sectors [ 5 - 7 ]") + "\n" + RawSector(disk, 5) +
                      "Reading sector # 6 [Raw Sector]\n" + RawSector(disk, 7),
                  "Global::Read " + message + "\nError reading sector\n", 0);
  }
}

// Below the sector size a whole sector is needed, and the message says so.
TEST(RunFaults, ShortReadOfALargeSector) {
  Disk disk(10, 4096);
  PutBootRecord(disk, 0, {});
  const auto outcome = RunOnMemory({disk, {{.call = Call::kRead, .nth = 1, .amount = 4095}}}, {"mem", "9"});
  EXPECT_EQ(outcome.err, "Global::Read short read, needed 4096, got 4095\nError reading sector\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(RunFaults, CloseThatFailsIsNotTold) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kClose, .error = 6}}}, {"mem", "5"});
  ExpectOutcome(outcome, Start("99", " sector 5") + "\n" + RawSector(PlainDisk(), 5), "", 0);
  EXPECT_EQ(outcome.calls.Of(Call::kClose), 1u);
}

// Each of its sectors shows the first bytes of the disk, so that a chain of extended boot records goes on and
// on.
TEST(RunFaults, ChainThroughSectorsOfNoBytesEnds) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0F, .first = 1}, {.type = 0x05, .first = 1}}});
  const auto outcome = RunOnMemory({disk, {{.call = Call::kSectorSize, .amount = 0}}}, {"mem"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("\nReading sector # 1023 ["), std::string::npos);
  EXPECT_EQ(outcome.out.find("\nReading sector # 1024 ["), std::string::npos);
  EXPECT_TRUE(outcome.out.ends_with("      1024\tSupplementary Boot Record\n"));
}

// A drive that claims sectors of no bytes has no length either; nothing divides by it.
TEST(RunFaults, SectorsOfNoBytes) {
  const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kSectorSize, .amount = 0}}}, {"mem", "5"});
  ExpectOutcome(
      outcome,
      Start("18446744073709551615", " sector 5") + "\nReading sector # 5 [Raw Sector]\n... empty ...\n", "",
      0);
}

// A run over the disk of the chain: the sectors whose structures the loading pass visits, and those of the
// printing pass, of which some have no structure.
struct ChainRun {
  std::vector<std::string> arguments;
  std::vector<u64> loaded;
  std::vector<u64> printed;
  u64 firstShown;
};

std::vector<ChainRun> ChainRuns() {
  std::vector<u64> range(31);
  std::iota(range.begin(), range.end(), u64{0});
  return {{{"mem"}, {0, 10, 20}, {0, 10, 20}, 0},
          {{"mem", "10"}, {0, 10}, {0, 10}, 10},
          {{"mem", "0", "30"}, {0, 10, 20}, range, 0}};
}

// The seeks and reads of such a run in their order, each with what the run comes to when it fails.
struct FailedCall {
  Call call;
  std::string out;
  std::string err;
  int status;
};

std::vector<FailedCall> CallsOf(const ChainRun& run, const std::string& sound) {
  constexpr char kUnread[] = "Global::Read failed, error 5\nError reading sector\n";
  const auto unsought = [](u64 sector) {
    return "Global::Seek failed to seek to sector " + std::to_string(sector) + ", error 5\n";
  };
  const auto ending = [](u64 sector) { return "Failed to seek to sector " + std::to_string(sector) + "\n"; };
  const std::string loading = "Loading TOC ...\n";
  const std::size_t first = sound.find(loading) + loading.size();
  const std::size_t table = std::min(sound.find("\n\tTable Of Contents\n"), sound.size());
  // Up to the sector's header line, or with it.
  const auto until = [&](const std::string& header) { return sound.substr(0, sound.find(header)); };
  const auto with = [&](const std::string& header) {
    return sound.substr(0, sound.find('\n', sound.find(header)) + 1);
  };
  const std::string rows = sound.substr(table);

  std::vector<FailedCall> calls;
  u64 position = 0;
  // What the loading pass does not come to, the printing pass makes up for.
  for (const u64 sector : run.loaded) {
    calls.push_back({Call::kSeek, sound.substr(0, first), unsought(sector) + ending(position), 1});
    calls.push_back({Call::kRead, sound, kUnread, 0});
    calls.push_back({Call::kSeek, sound, unsought(sector), 0});
    position = sector + 1;
  }
  for (const u64 sector : run.printed) {
    const bool shown = sector >= run.firstShown;
    const std::string header = "Reading sector # " + std::to_string(sector) + " [";
    const std::string dump = header + "as a raw sector]";
    const std::string before = shown ? until(header) : sound.substr(0, first + 1);
    calls.push_back({Call::kSeek, before, unsought(sector) + ending(sector), 1});
    if (sector % 10 != 0 || sector == 30) {  // no structure: the pass goes on
      const std::string listing = with(header) + "... empty ...\n";
      calls.push_back({Call::kRead, with(header) + sound.substr(listing.size()), kUnread, 0});
      continue;
    }
    calls.push_back({Call::kRead, (shown ? with(header) : before) + rows, kUnread, 0});
    calls.push_back({Call::kSeek, (shown ? until(dump) : before) + rows, unsought(sector), 0});
    if (shown) calls.push_back({Call::kRead, with(dump) + rows, kUnread, 0});
  }
  return calls;
}

TEST(RunFaults, EverySeekAndReadFailingInItsTurn) {
  for (const ChainRun& run : ChainRuns()) {
    const MemoryOutcome sound = RunOnMemory({ChainDisk()}, run.arguments);
    ExpectOutcome(sound, sound.out, "", 0);
    u64 seeks = 0;
    u64 reads = 0;
    for (const FailedCall& failed : CallsOf(run, sound.out)) {
      const u64 nth = ++(failed.call == Call::kSeek ? seeks : reads);
      SCOPED_TRACE((failed.call == Call::kSeek ? "seek " : "read ") + std::to_string(nth));
      ExpectOutcome(
          RunOnMemory({ChainDisk(), {{.call = failed.call, .nth = nth, .error = 5}}}, run.arguments),
          failed.out, failed.err, failed.status);
    }
    EXPECT_EQ(sound.calls.Of(Call::kSeek), seeks);
    EXPECT_EQ(sound.calls.Of(Call::kRead), reads);
    EXPECT_EQ(sound.calls.Of(Call::kOpen), 1u);  // these three have their tests above
    EXPECT_EQ(sound.calls.Of(Call::kSectorSize), 1u);
    EXPECT_EQ(sound.calls.Of(Call::kLength), 1u);
  }
}

// What was printed has left the program before the disk is read again, and a sector costs one write.
TEST(Report, OneReadAndOneWriteForEachSectorOfARange) {
  const auto outcome = RunOnMemory({PlainDisk()}, {"mem", "5", "7"});
  EXPECT_EQ(outcome.calls.order, std::string("W"     // banner
                                             "OGL"   // open
                                             "SWRS"  // loading pass: sector 0, seek back for its dump
                                             "SWRS"  // printing pass: sector 0 is not shown
                                             "SWRSWRSWR"
                                             "CW"));
}

TEST(Report, LeavesLineByLineOnATerminal) {
  MemoryDisk memory{Disk(100)};
  memory.terminal = true;
  const auto outcome = RunOnMemory(memory, {"mem", "99"});
  EXPECT_TRUE(SameText(outcome.out,
                       Start("99", " sector 99") + "\nReading sector # 99 [Raw Sector]\n... empty ...\n"));
  EXPECT_EQ(outcome.calls.Of(Call::kWriteReport), 9u);  // one for each of the lines above, empty ones too
}

TEST(Report, ThatCannotBeWrittenEndsTheRunAtOnce) {
  const u64 writes = RunOnMemory({PlainDisk()}, {"mem", "5", "7"}).calls.Of(Call::kWriteReport);
  for (u64 nth = 1; nth <= writes; ++nth) {
    const auto outcome = RunOnMemory({PlainDisk(), {{.call = Call::kWriteReport, .nth = nth, .error = 28}}},
                                     {"mem", "5", "7"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "Error writing the report, error 28\n");
    EXPECT_EQ(outcome.calls.Of(Call::kWriteReport), nth);  // and nothing is written after it
  }
}

TEST(Report, WhoseReaderHasGoneEndsQuietly) {
  const u64 writes = RunOnMemory({PlainDisk()}, {"mem", "5", "7"}).calls.Of(Call::kWriteReport);
  for (u64 nth = 1; nth <= writes; ++nth) {
    const auto outcome =
        RunOnMemory({PlainDisk(), {{.call = Call::kWriteReport, .nth = nth, .error = 32 /* EPIPE */}}},
                    {"mem", "5", "7"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.calls.Of(Call::kWriteReport), nth);
  }
}

// The same run twice in one process: nothing that the first one leaves behind reaches the second.
TEST(RunInProcess, StartsAfresh) {
  const Disk disk = ChainDisk();
  const auto first = RunInProcess({disk});
  const auto second = RunInProcess({disk});
  EXPECT_EQ(first.status, 0);
  EXPECT_TRUE(SameText(second.out, first.out));
  EXPECT_TRUE(SameText(first.out, RunOnMemory({disk}).out));
}

}  // namespace
}  // namespace trovisk::test
