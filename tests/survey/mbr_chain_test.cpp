// Chains of extended boot records: ordinary ones, and what damage and malice make of them.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

#include "tests/disks/mbr.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view kCheck = "extended boot records lead to an end";

// One extended partition, from sector 1000 to 3999.
Disk Extended(u8 type = 0x05) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = type, .first = 1000, .count = 3000}}});
  return disk;
}

// A record with a partition of nine sectors right behind it; link: absolute, 0: none.
void PutLogical(Disk& disk, u64 sector, u64 link) {
  BootRecord record = {.entries = {{.type = 0x83, .first = 1, .count = 9}}};
  if (link != 0) record.entries[1] = {.type = 0x05, .first = static_cast<u32>(link - 1000), .count = 10};
  PutBootRecord(disk, sector, record);
}

// The logical partitions' numbers, in the map's order.
std::vector<u64> NumbersOf(const DiskMap& map) {
  std::vector<u64> numbers;
  for (const Extent& extent : map.extents) {
    if (extent.kind == ExtentKind::kLogical) numbers.push_back(extent.number);
  }
  return numbers;
}

TEST(MbrChain, LinksCountFromTheOutermostPartition) {
  for (const u8 type : {u8{0x05}, u8{0x0F}, u8{0x85}}) {
    Disk disk = Extended(type);
    PutLogical(disk, 1000, 1500);
    PutLogical(disk, 1500, 2000);
    PutLogical(disk, 2000, 2500);
    PutLogical(disk, 2500, 0);
    const DiskMap map = SurveyOf(disk);
    EXPECT_EQ(PartitionsOf(map), (Lines{"1000-3999 MBR entry 1 container", "1001-1009 EBR at sector 1000",
                                        "1501-1509 EBR at sector 1500", "2001-2009 EBR at sector 2000",
                                        "2501-2509 EBR at sector 2500"}));
    EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5, 6, 7, 8}));
    EXPECT_EQ(VerdictOf(map, kCheck, 1000), "good");
    EXPECT_EQ(WrongChecks(map), Lines{});
  }
}

// Two entries over one chain: it is read once, and neither is right.
TEST(MbrChain, OneChainOfTwoExtendedPartitionsIsReadOnce) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x05, .first = 1000, .count = 2000},
                             {.type = 0x0F, .first = 1000, .count = 3000}}});
  PutLogical(disk, 1000, 1500);
  PutLogical(disk, 1500, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1000-3999 MBR entry 2 container overlaps", "1000-2999 MBR entry 1 container overlaps",
                   "1001-1009 EBR at sector 1000", "1501-1509 EBR at sector 1500"}));
  EXPECT_EQ(WrongChecks(map), (Lines{std::string(kCheck) + ": bad"}));
}

TEST(MbrChain, AnExtendedPartitionOverAnotherOneOverlaps) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x05, .first = 1000, .count = 2000},
                             {.type = 0x83, .first = 2900, .count = 500}}});
  PutLogical(disk, 1000, 0);
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)),
            (Lines{"1000-2999 MBR entry 1 container overlaps", "1001-1009 EBR at sector 1000",
                   "2900-3399 MBR entry 2 overlaps"}));
}

TEST(MbrChain, NumbersFollowTheLinksNotTheSectors) {
  Disk disk = Extended();
  PutLogical(disk, 1000, 2000);
  PutLogical(disk, 2000, 1500);
  PutLogical(disk, 1500, 0);
  EXPECT_EQ(NumbersOf(SurveyOf(disk)), (std::vector<u64>{5, 7, 6}));
}

TEST(MbrChain, ARecordWithoutAPartitionTakesNoNumber) {
  Disk disk = Extended();
  PutBootRecord(disk, 1000, {.entries = {{}, {.type = 0x05, .first = 500, .count = 10}}});
  PutLogical(disk, 1500, 0);
  EXPECT_EQ(NumbersOf(SurveyOf(disk)), (std::vector<u64>{5}));
}

TEST(MbrChain, TheLinkMayStandInAnyEntry) {
  Disk disk = Extended();
  PutBootRecord(
      disk, 1000,
      {.entries = {
           {}, {}, {.type = 0x05, .first = 500, .count = 10}, {.type = 0x83, .first = 2, .count = 3}}});
  PutLogical(disk, 1500, 0);
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)),
            (Lines{"1000-3999 MBR entry 1 container", "1002-1004 EBR at sector 1000",
                   "1501-1509 EBR at sector 1500"}));
}

// Some systems use all partitions of a record, others the first one.
TEST(MbrChain, FurtherPartitionsOfARecordAreAnotherReading) {
  Disk disk = Extended();
  PutBootRecord(disk, 1000,
                {.entries = {{.type = 0x83, .first = 1, .count = 9},
                             {.type = 0x05, .first = 500, .count = 10},
                             {.type = 0x83, .first = 20, .count = 10},
                             {.type = 0x83, .first = 2995, .count = 6}}});  // leads out of it
  PutLogical(disk, 1500, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1000-3999 MBR entry 1 container", "1001-1009 EBR at sector 1000",
                   "1020-1029 EBR at sector 1000, entry 3 other-reading", "1501-1509 EBR at sector 1500"}));
  EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5, 0, 6}));
}

TEST(MbrChain, ASecondExtendedPartitionGoesOnCounting) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x05, .first = 1000, .count = 1000},
                             {.type = 0x0F, .first = 2000, .count = 1000}}});
  PutLogical(disk, 1000, 0);
  PutLogical(disk, 2000, 0);
  EXPECT_EQ(NumbersOf(SurveyOf(disk)), (std::vector<u64>{5, 6}));
}

TEST(MbrChain, ACircleEnds) {
  for (const u64 back : {1000U, 1500U, 2000U}) {
    Disk disk = Extended();
    PutLogical(disk, 1000, 1500);
    PutLogical(disk, 1500, 2000);
    PutLogical(disk, 2000, back);
    const DiskMap map = SurveyOf(disk);
    EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5, 6, 7}));
    ASSERT_EQ(VerdictOf(map, kCheck), "bad");
    EXPECT_EQ(CheckOf(map, kCheck)->found, "the links form a circle");
  }
}

TEST(MbrChain, ABrokenLinkEndsTheChainAndNothingElse) {
  Disk disk = Extended();
  PutLogical(disk, 1000, 1500);
  PutLogical(disk, 2000, 0);
  disk.At(1500).Text(0, "no record");
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5}));
  EXPECT_EQ(VerdictOf(map, kCheck, 1500), "bad");
  EXPECT_EQ(map.ExitStatus(), 2);
}

TEST(MbrChain, AnUnreadableRecordIsMissing) {
  Disk disk = Extended();
  PutLogical(disk, 1000, 1500);
  PutLogical(disk, 1500, 0);
  const DiskMap map = SurveyOf(
      {.disk = disk, .faults = {{.call = Call::kRead, .calls = kAnySector, .error = EIO, .sector = 1500}}});
  EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5}));
  EXPECT_EQ(VerdictOf(map, kCheck, 1500), "missing");
}

TEST(MbrChain, ALinkBeyondTheDiskIsMissing) {
  Disk disk = Extended();
  PutLogical(disk, 1000, 5000);
  EXPECT_EQ(VerdictOf(SurveyOf(disk), kCheck, 5000), "missing");
}

TEST(MbrChain, TheLargestNumbersDoNotWrap) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x0F, .first = 0xFFFFFFFF, .count = 0xFFFFFFFF},
                             {.type = 0x83, .first = 0xFFFFFFF0, .count = 5}}});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map), (Lines{"4294967280-4294967284 MBR entry 2 beyond-end",
                                      "4294967295-8589934589 MBR entry 1 container beyond-end"}));
}

// A type of 0 makes no difference to those who count logical partitions.
TEST(MbrChain, ALogicalPartitionOfTypeZeroHasItsNumber) {
  Disk disk = Extended();
  PutLogical(disk, 1000, 1500);
  PutLogical(disk, 1500, 0);
  disk.At(1000).U8(0x1BE + 4, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map), (Lines{"1000-3999 MBR entry 1 container", "1001-1009 EBR at sector 1000",
                                      "1501-1509 EBR at sector 1500"}));
  EXPECT_EQ(NumbersOf(map), (std::vector<u64>{5, 6}));
}

TEST(MbrChain, WhatLiesOutsideOfTheExtendedPartitionIsBad) {
  constexpr std::string_view kInside = "logical partitions lie in the extended partition";
  Disk disk = Extended();
  PutLogical(disk, 1000, 3990);
  PutLogical(disk, 3990, 0);
  EXPECT_EQ(VerdictOf(SurveyOf(disk), kInside), "none");
  disk.At(3990).Le32(0x1BE + 12, 10);
  const DiskMap map = SurveyOf(disk);
  ASSERT_EQ(VerdictOf(map, kInside, 3990), "bad");
  EXPECT_EQ(CheckOf(map, kInside)->found, "3991 to 4000");
  EXPECT_EQ(CheckOf(map, kInside)->expected, "inside of 1000 to 3999");
  PutLogical(disk, 1000, 4050);
  PutLogical(disk, 4050, 0);
  EXPECT_EQ(VerdictOf(SurveyOf(disk), kInside, 4050), "bad");
}

// An entry without sectors claims none, wherever it says that it begins.
TEST(MbrChain, AnEmptyEntryOverlapsNothing) {
  const auto surveyed = [](PartitionEntry extended, PartitionEntry other) {
    Disk disk(6000);
    PutBootRecord(disk, 0, {.entries = {extended, other}});
    PutBootRecord(disk, extended.first, {});
    return PartitionsOf(SurveyOf(disk));
  };
  EXPECT_EQ(surveyed({.type = 0x05, .first = 2100}, {.type = 0x83, .first = 2048, .count = 2000}),
            (Lines{"2048-4047 MBR entry 2", "2100-2100 MBR entry 1 container empty"}));
  EXPECT_EQ(surveyed({.type = 0x05, .first = 2048, .count = 2000}, {.type = 0x83, .first = 2200}),
            (Lines{"2048-4047 MBR entry 1 container", "2200-2200 MBR entry 2 empty"}));
  EXPECT_EQ(surveyed({.type = 0x05, .first = 2048, .count = 2000}, {.type = 0x83, .first = 2200, .count = 1}),
            (Lines{"2048-4047 MBR entry 1 container overlaps", "2200-2200 MBR entry 2 overlaps"}));
}

// Links alone, each to the record before: nothing is shown of most of them, and that is said.
TEST(MbrChain, ALongChainIsCut) {
  constexpr u64 kRecords = 20000;
  Disk disk(2 * kRecords + 2000);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 1000, .count = 2 * kRecords}}});
  for (u64 i = 0; i < kRecords; ++i) {
    const u32 link = static_cast<u32>(i == 0 ? 2 * (kRecords - 1) : 2 * (i - 1));
    BootRecord record;
    if (i != 1) record.entries[0] = {.type = 0x05, .first = link, .count = 1};
    PutBootRecord(disk, 1000 + 2 * i, record);
  }
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kStructure).size(), 4096u + 1);
  EXPECT_EQ(map.cut[0], "Of 20000 extended boot records the first 4096 are shown.");
  EXPECT_EQ(VerdictOf(map, kCheck), "good");
}

}  // namespace
}  // namespace trovisk::test
