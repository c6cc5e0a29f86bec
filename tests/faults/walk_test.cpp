// The two passes, seen with structures of the tests' own.

#include <gtest/gtest.h>

#include "frame/global.h"
#include "frame/report/report.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

// Shows each call of a decoder as a line, in both passes.
void Tell(WideText description, u64 sector, bool print) {
  report << '<' << description << ' ' << sector << (print ? " printed>\n" : ">\n");
}

template <u64 Sectors>
u64 Spans(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  return sector + Sectors;
}

u64 Fails(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  return kEndPass;
}

u64 FailsWhenPrinting(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  return print ? kEndPass : sector + 1;
}

// Any result with the top bit set ends the pass, not all ones alone.
u64 ReturnsTopBit(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  return u64{1} << 63;
}

u64 StaysWhereItIs(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  return sector;
}

// Points to a sector before itself, to one after it, and to sectors that are others' already.
u64 PointsAround(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  AddTocEntry(disk, sector - 2, Spans<1>, L"behind");
  AddTocEntry(disk, sector + 2, Spans<1>, L"ahead");
  AddTocEntry(disk, sector + 3, Spans<1>, L"second");
  AddTocEntry(disk, sector, Spans<7>, L"itself");
  AddTocEntry(disk, 0, Spans<7>, L"not a master boot record");
  return sector + 1;
}

// Registers another sector when it is printed.
u64 PointsWhenPrinting(WideText description, u64 sector, bool print) {
  Tell(description, sector, print);
  if (print) AddTocEntry(disk, sector + 2, Spans<1>, L"late");
  return sector + 1;
}

const std::string kZero = "Reading sector # 0 [Master Boot Record]\n";

// Standard output of a run from the loading pass on, the whole report of sector 0 cut to "MBR".
std::string WalkOf(const std::vector<Registered>& registered, const std::vector<std::string>& arguments = {},
                   u64 sectors = 100) {
  MemoryDisk memory{Disk(sectors)};
  memory.registered = registered;
  std::vector<std::string> all = {"mem"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const MemoryOutcome outcome = RunOnMemory(memory, all);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
  const std::string loading = "Loading TOC ...\n";
  std::string walk = outcome.out.substr(outcome.out.find(loading) + loading.size());
  const std::string end = "Reading sector # 0 [as a raw sector]\n... empty ...\n";
  if (const std::size_t at = walk.find(kZero); at != std::string::npos) {
    walk.replace(at, walk.find(end) + end.size() - at, "MBR\n");
  }
  return walk;
}

std::string Toc(const std::string& rows) {
  return kTocHeading + rows;
}

TEST(Walk, LoadsAndPrintsInAscendingOrder) {
  EXPECT_TRUE(SameText(WalkOf({{9, Spans<1>, L"nine"}, {4, Spans<1>, L"four"}}),
                       "<four 4>\n<nine 9>\n\nMBR\n<four 4 printed>\n<nine 9 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         4\tfour\n         9\tnine\n")));
}

// Structure at 3 that goes on to 10, sectors 5 to 10 asked for: the pass jumps from 3 to 11.
TEST(Walk, RangeThatBeginsInsideAStructureShowsNothingOfIt) {
  EXPECT_TRUE(SameText(WalkOf({{3, Spans<8>, L"wide"}}, {"5", "10"}), "<wide 3>\n\n<wide 3>\n"));
  EXPECT_TRUE(SameText(WalkOf({{3, Spans<8>, L"wide"}}, {"5", "11"}),
                       "<wide 3>\n\n<wide 3>\nReading sector # 11 [Raw Sector]\n... empty ...\n"));
  EXPECT_TRUE(SameText(WalkOf({{3, Spans<8>, L"wide"}}, {"3", "10"}), "<wide 3>\n\n<wide 3 printed>\n"));
}

// A structure inside another one's sectors is passed over with them.
TEST(Walk, StructureInsideAnotherIsSkipped) {
  EXPECT_TRUE(SameText(WalkOf({{3, Spans<8>, L"wide"}, {5, Spans<1>, L"inner"}, {11, Spans<1>, L"next"}}),
                       "<wide 3>\n<next 11>\n\nMBR\n<wide 3 printed>\n<next 11 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         3\twide\n         5\tinner\n"
                               "        11\tnext\n")));
}

TEST(Walk, RegisteredSectorsOutsideTheRequestedOnesAreDecodedSilently) {
  const std::vector<Registered> registered = {
      {3, Spans<1>, L"three"}, {6, Spans<1>, L"six"}, {9, Spans<1>, L"nine"}};
  const std::string loaded = "<three 3>\n<six 6>\n<nine 9>\n\n";
  EXPECT_TRUE(SameText(WalkOf(registered, {"6"}), loaded.substr(0, 18) + "\n<three 3>\n<six 6 printed>\n"));
  EXPECT_TRUE(SameText(WalkOf(registered, {"5", "7"}),
                       "<three 3>\n<six 6>\n<nine 9>\n\n<three 3>\n"
                       "Reading sector # 5 [Raw Sector]\n... empty ...\n"
                       "<six 6 printed>\n"
                       "Reading sector # 7 [Raw Sector]\n... empty ...\n"));
}

// The limit holds for the position that a step starts from: from 7 the next entry, 9, is loaded although it
// lies beyond the limit, and nothing after it.
TEST(Walk, LimitIsTestedBeforeTheSearch) {
  EXPECT_TRUE(
      SameText(WalkOf({{6, Spans<1>, L"six"}, {9, Spans<1>, L"nine"}, {12, Spans<1>, L"twelve"}}, {"7"}),
               "<six 6>\n<nine 9>\n\n<six 6>\nReading sector # 7 [Raw Sector]\n... empty ...\n"));
}

// 10 and 5: the limit of both passes is 5, and no sector is asked for.
TEST(Walk, FirstBehindLastShowsNothing) {
  EXPECT_TRUE(SameText(WalkOf({{4, Spans<1>, L"four"}, {10, Spans<1>, L"ten"}}, {"10", "5"}),
                       "<four 4>\n<ten 10>\n\n<four 4>\n"));
}

// One sector, and no limit: what lies behind it is visited as well, unprinted, up to the last entry.
TEST(Walk, NegativeLastLeavesTheWalkWithoutLimit) {
  EXPECT_TRUE(SameText(
      WalkOf({{4, Spans<1>, L"four"}, {10, Spans<1>, L"ten"}, {5000, Spans<1>, L"far"}}, {"7", "-1"}),
      "<four 4>\n<ten 10>\n<far 5000>\n\n"
      "<four 4>\nReading sector # 7 [Raw Sector]\n... empty ...\n<ten 10>\n<far 5000>\n"));
}

// A whole disk with the last argument for its limit. From 1 the next entry, 4, is loaded, though beyond it.
TEST(Walk, NegativeFirstWithALastIsAWholeDiskUpToIt) {
  EXPECT_TRUE(SameText(
      WalkOf({{2, Spans<1>, L"two"}, {4, Spans<1>, L"four"}, {6, Spans<1>, L"six"}}, {"-5", "3"}),
      "<two 2>\n<four 4>\n\nMBR\n<two 2 printed>\n" +
          Toc("         0\tMaster Boot Record\n         2\ttwo\n         4\tfour\n         6\tsix\n")));
}

TEST(Walk, FailureEndsThePassNotTheRun) {
  EXPECT_TRUE(SameText(WalkOf({{4, Fails, L"bad"}, {6, Spans<1>, L"six"}}),
                       "<bad 4>\n\nMBR\n<bad 4 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         4\tbad\n         6\tsix\n")));
  EXPECT_TRUE(SameText(WalkOf({{4, ReturnsTopBit, L"bad"}, {6, Spans<1>, L"six"}}),
                       "<bad 4>\n\nMBR\n<bad 4 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         4\tbad\n         6\tsix\n")));
  EXPECT_TRUE(SameText(WalkOf({{4, FailsWhenPrinting, L"bad"}, {6, Spans<1>, L"six"}}),
                       "<bad 4>\n<six 6>\n\nMBR\n<bad 4 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         4\tbad\n         6\tsix\n")));
}

// ... also where the requested sectors lie behind it.
TEST(Walk, FailureOutsideTheRequestedSectorsHidesThem) {
  EXPECT_TRUE(SameText(WalkOf({{4, Fails, L"bad"}}, {"6"}), "<bad 4>\n\n<bad 4>\n"));
  EXPECT_TRUE(SameText(WalkOf({{4, Fails, L"bad"}}, {"3"}),
                       "<bad 4>\n\nReading sector # 3 [Raw Sector]\n... empty ...\n"));
}

// No decoder may return its own sector; should one do so, the pass ends instead of going round for ever.
TEST(Walk, DecoderThatDoesNotMoveOnEndsThePass) {
  EXPECT_TRUE(SameText(WalkOf({{4, StaysWhereItIs, L"still"}, {6, Spans<1>, L"six"}}, {"6"}),
                       "<still 4>\n\n<still 4>\n"));
}

// The first registration of a sector wins. One behind the sector being loaded is kept, listed and printed,
// but not loaded.
TEST(Walk, RegistrationsAheadAreLoadedThoseBehindAreNot) {
  EXPECT_TRUE(SameText(
      WalkOf({{8, PointsAround, L"eight"}, {11, Spans<1>, L"first"}}),
      "<eight 8>\n<ahead 10>\n<first 11>\n\nMBR\n"
      "<behind 6 printed>\n<eight 8 printed>\n<ahead 10 printed>\n<first 11 printed>\n" +
          Toc("         0\tMaster Boot Record\n         6\tbehind\n         8\teight\n        10\tahead\n"
              "        11\tfirst\n")));
}

TEST(Walk, RegistrationsOfThePrintingPassAreReached) {
  EXPECT_TRUE(SameText(WalkOf({{8, PointsWhenPrinting, L"eight"}}),
                       "<eight 8>\n\nMBR\n<eight 8 printed>\n<late 10 printed>\n" +
                           Toc("         0\tMaster Boot Record\n         8\teight\n        10\tlate\n")));
}

// Sector 0 is planted like any other registration: an earlier one would have won.
TEST(Walk, SectorZeroIsPlantedByTheSameRule) {
  EXPECT_TRUE(SameText(WalkOf({{0, Spans<1>, L"mine"}}, {"0"}), "<mine 0>\n\n<mine 0 printed>\n"));
}

// Beyond the walk limit of a whole-disk run, the end of the disk, an entry is loaded but not printed.
TEST(Walk, EntryBeyondTheDiskIsListed) {
  EXPECT_TRUE(SameText(WalkOf({{5000000000, Spans<1>, L"far"}, {12345678901, Spans<1>, L"further"}}),
                       "<far 5000000000>\n\nMBR\n" +
                           Toc("         0\tMaster Boot Record\n5000000000\tfar\n12345678901\tfurther\n")));
}

// A sector number with the top bit set can be registered and loaded; the printing pass ends before it.
TEST(Walk, SectorNumbersThatAreNegativeAreNotPrinted) {
  constexpr u64 kTop = (u64{1} << 63) + 8;  // times 512: 4096
  EXPECT_TRUE(SameText(WalkOf({{kTop, Spans<1>, L"top"}}, {"7", "-1"}),
                       "<top 9223372036854775816>\n\nReading sector # 7 [Raw Sector]\n... empty ...\n"));
}

// All ones is both a sector number and the end of a pass. With sectors of no bytes it can be sought; what
// follows it, 0, would begin the pass anew.
TEST(Walk, LastSectorNumberOfAllIsNotFollowedByTheFirst) {
  MemoryDisk memory{Disk(100), {{.call = Call::kSectorSize, .amount = 0}}};
  memory.registered = {{~u64{0}, Spans<1>, L"last"}};
  const MemoryOutcome outcome = RunOnMemory(memory, {"mem", "7", "-1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.ends_with(
      "Loading TOC ...\n<last 18446744073709551615>\n\nReading sector # 7 [Raw Sector]\n... empty ...\n"))
      << outcome.out;
}

}  // namespace
}  // namespace trovisk::test
