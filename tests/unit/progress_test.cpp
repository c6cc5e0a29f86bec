// What the line of progress says, and how it is made to fit a terminal.

#include "frame/progress.h"

#include <gtest/gtest.h>

#include "frame/report/status_line.h"

namespace trovisk::test {
namespace {

constexpr u64 kMiB = u64{1} << 20;

TEST(ProgressText, RangeCountsItsOwnSectors) {
  EXPECT_EQ(ProgressText({.sector = 1500,
                          .first = 1000,
                          .last = 1999,
                          .bytesRead = 250 * kMiB,
                          .reported = 1536 * kMiB,
                          .unreadable = 3,
                          .seconds = 2.5,
                          .secondsOfPass = 2}),
            "sector 1500, 501 of 1000, 100 MiB/s, report 1.5 GiB, 0:02 left, 3 unreadable");
}

TEST(ProgressText, WholeDiskCountsFromItsFirstSector) {
  EXPECT_EQ(ProgressText({.doing = "loading",
                          .sector = 100,
                          .last = 999,
                          .bytesRead = 99 * kMiB,
                          .reported = 1023 * 1024 + 1023,
                          .seconds = 1.25,
                          .secondsOfPass = 1000}),
            "loading sector 100 of 1000, 79.2 MiB/s, report 1023 KiB, 2:30:00 left, 0 unreadable");
}

// Unbounded, or of unknown length.
TEST(ProgressText, WithoutAnEndThereIsNoTimeLeft) {
  for (const u64 last : {~u64{0}, u64{1} << 63}) {
    EXPECT_EQ(ProgressText({.doing = "listing", .sector = 7, .last = last, .seconds = 2, .secondsOfPass = 1}),
              "listing sector 7, 0.0 MiB/s, report 0.0 KiB, 0 unreadable");
  }
}

TEST(ProgressText, OutsideTheRangeNothingIsCounted) {
  for (const u64 sector : {u64{9}, u64{21}}) {
    EXPECT_EQ(ProgressText({.sector = sector, .first = 10, .last = 20, .seconds = 2, .secondsOfPass = 1}),
              "sector " + std::to_string(sector) + ", 0.0 MiB/s, report 0.0 KiB, 0 unreadable");
  }
}

// At the first sector nothing is known of the others; what takes months says nothing.
TEST(ProgressText, TimeLeftNeedsSomethingDone) {
  EXPECT_EQ(ProgressText({.sector = 10, .first = 10, .last = 19, .seconds = 2, .secondsOfPass = 2}),
            "sector 10, 1 of 10, 0.0 MiB/s, report 0.0 KiB, 0 unreadable");
  EXPECT_EQ(ProgressText({.sector = 1, .last = 3600000, .seconds = 2, .secondsOfPass = 1}),
            "sector 1 of 3600001, 0.0 MiB/s, report 0.0 KiB, 0 unreadable");
  EXPECT_EQ(ProgressText({.sector = 1, .last = 3599999, .seconds = 2, .secondsOfPass = 1}),
            "sector 1 of 3600000, 0.0 MiB/s, report 0.0 KiB, 999:59:59 left, 0 unreadable");
}

TEST(ProgressText, NoTimeHasPassedYet) {
  EXPECT_EQ(ProgressText({.last = 9, .bytesRead = kMiB}),
            "sector 0 of 10, 0.0 MiB/s, report 0.0 KiB, 0 unreadable");
}

TEST(StatusLine, IsShorterThanTheTerminalIsWide) {
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 24), "sector 5, 12 unreadable");
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 23), "sector 5");
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 9), "sector 5");
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 8), "sector ");
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 1), "");
  EXPECT_EQ(FitStatusLine("sector 5, 12 unreadable", 0), "");
}

}  // namespace
}  // namespace trovisk::test
