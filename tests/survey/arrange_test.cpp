// The order of extents: by hand, and random ones against a model that looks at every pair and every sector.

#include "map/arrange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace trovisk::test {
namespace {

constexpr u64 kMost = ~u64{0};

Extent Partition(u64 first, u64 last, u32 flags = 0) {
  return {
      .first = first, .last = last, .kind = ExtentKind::kPartition, .flags = flags, .source = "GPT entry 1"};
}

Extent OfMbr(u64 first, u64 last, const char* type = "0x83", u32 flags = 0) {
  return {.first = first,
          .last = last,
          .kind = ExtentKind::kPartition,
          .flags = flags,
          .type = type,
          .source = "MBR entry 1"};
}

// "first-last kind flags @depth", in order.
std::vector<std::string> Arranged(std::vector<Extent> extents, u64 sectors) {
  ArrangeExtents(extents, sectors);
  EXPECT_EQ(ComplaintAbout(extents, sectors), "");
  std::vector<std::string> texts;
  for (const Extent& extent : extents) {
    std::string text = std::to_string(extent.first) + "-" + std::to_string(extent.last) + " ";
    text.append(NameOfKind(extent.kind));
    for (const std::string_view flag : NamesOfFlags(extent.flags))
      text.append(" ").append(flag);
    texts.push_back(text + " @" + std::to_string(extent.depth));
  }
  return texts;
}

using Lines = std::vector<std::string>;

TEST(Arrange, AnEmptyDiskIsOneGap) {
  EXPECT_EQ(Arranged({}, 100), (Lines{"0-99 gap @0"}));
}

TEST(Arrange, ADiskOfUnknownLengthEndsWithItsLastExtent) {
  EXPECT_EQ(Arranged({Partition(10, 19)}, 0), (Lines{"0-9 gap @0", "10-19 partition @0"}));
}

TEST(Arrange, PartitionsOfTheSameExtentOverlap) {
  EXPECT_EQ(Arranged({Partition(0, 9), Partition(0, 9)}, 10),
            (Lines{"0-9 partition overlaps @0", "0-9 partition overlaps @1"}));
}

TEST(Arrange, NeighboursDoNotOverlap) {
  EXPECT_EQ(Arranged({Partition(5, 9), Partition(0, 4)}, 10),
            (Lines{"0-4 partition @0", "5-9 partition @0"}));
}

TEST(Arrange, APartitionThatHoldsTwoOthersOverlapsBoth) {
  EXPECT_EQ(Arranged({Partition(0, 9), Partition(1, 2), Partition(4, 5)}, 10),
            (Lines{"0-9 partition overlaps @0", "1-2 partition overlaps @1", "4-5 partition overlaps @1"}));
}

TEST(Arrange, AContainerOverlapsNothing) {
  EXPECT_EQ(Arranged({OfMbr(0, 9, "0x05", kFlagContainer), Partition(1, 2)}, 10),
            (Lines{"0-9 partition container @0", "0-0 gap @1", "1-2 partition @1", "3-9 gap @1"}));
}

TEST(Arrange, AnExtentThatEndsBeforeItStartsClaimsNothing) {
  EXPECT_EQ(Arranged({Partition(5, 3, kFlagReversed), Partition(0, 9)}, 10),
            (Lines{"0-9 partition @0", "5-3 partition reversed @1"}));
}

TEST(Arrange, TheLargestSectorsDoNotWrap) {
  EXPECT_EQ(Arranged({Partition(8, kMost), Partition(kMost, kMost)}, 10),
            (Lines{"0-7 gap @0", "8-18446744073709551615 partition overlaps beyond-end @0",
                   "18446744073709551615-18446744073709551615 partition overlaps beyond-end @1"}));
  EXPECT_EQ(Arranged({Partition(0, kMost)}, 0), (Lines{"0-18446744073709551615 partition @0"}));
}

TEST(Arrange, WhatLiesWhollyBeyondTheEndLeavesTheGapInFrontOfIt) {
  EXPECT_EQ(Arranged({Partition(20, 29)}, 10), (Lines{"0-9 gap @0", "20-29 partition beyond-end @0"}));
}

// A partition that both tables have is one for either kind of system; a third that runs into it runs into
// both.
TEST(Arrange, AHybridPartitionIsNoOverlap) {
  EXPECT_EQ(Arranged({OfMbr(0, 9, "0xee", kFlagContainer), OfMbr(4, 7), Partition(4, 7)}, 10),
            (Lines{"0-9 partition container @0", "0-3 gap @1", "4-7 partition hybrid @1",
                   "4-7 partition hybrid @2", "8-9 gap @1"}));
}

TEST(Arrange, WhatRunsIntoAHybridPartitionRunsIntoBothOfItsEntries) {
  const Extent protective = OfMbr(0, 0, "0xee", kFlagContainer);
  for (const auto& [first, last] : {std::pair<u64, u64>{2, 4}, {4, 7}, {4, 9}, {5, 6}, {7, 9}}) {
    std::vector<Extent> extents = {protective, OfMbr(4, 7), Partition(4, 7), Partition(first, last)};
    ArrangeExtents(extents, 10);
    for (const Extent& extent : extents) {
      const bool overlaps = (extent.flags & kFlagOverlaps) != 0;
      const bool entry = extent.kind == ExtentKind::kPartition && extent.type != "0xee";
      EXPECT_EQ(overlaps, entry) << first << ": " << extent.first << "-" << extent.last;
    }
  }
}

TEST(Arrange, ASecondOpinionOverlapsNothing) {
  for (const u32 flag : {kFlagUnsound, kFlagOtherReading, kFlagOtherCopy}) {
    std::vector<Extent> extents = {Partition(0, 9), Partition(5, 9, flag)};
    ArrangeExtents(extents, 10);
    EXPECT_EQ(extents[0].flags, 0u);
    EXPECT_EQ(extents[1].flags, flag);
  }
}

// The model.

bool ClaimsNothing(const Extent& extent) {
  return (extent.flags & (kFlagContainer | kFlagReversed | kFlagEmpty)) != 0;
}

bool IsPartitionOf(const Extent& extent) {
  return extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical;
}

bool OverlapsByModel(const Extent& a, const Extent& b) {
  for (const Extent* each : {&a, &b}) {
    if (ClaimsNothing(*each)) return false;
    if (!IsPartitionOf(*each) && each->kind != ExtentKind::kStructure) return false;
    if (IsPartitionOf(*each) && (each->flags & (kFlagUnsound | kFlagOtherReading | kFlagOtherCopy)) != 0)
      return false;
  }
  return a.first <= b.last && b.first <= a.last;
}

bool CoversByModel(const Extent& extent, u64 sector) {
  if (extent.kind == ExtentKind::kGap || extent.kind == ExtentKind::kArea || ClaimsNothing(extent))
    return false;
  return extent.first <= sector && sector <= extent.last;
}

Extent Random(std::mt19937& random) {
  constexpr ExtentKind kKinds[] = {ExtentKind::kPartition, ExtentKind::kPartition, ExtentKind::kLogical,
                                   ExtentKind::kStructure, ExtentKind::kVolume,    ExtentKind::kArea};
  constexpr u32 kFlags[] = {0, 0, 0, 0, kFlagContainer, kFlagUnsound, kFlagOtherReading, kFlagOtherCopy};
  Extent extent{
      .first = random() % 40, .kind = kKinds[random() % std::size(kKinds)], .source = "GPT entry 1"};
  extent.last = extent.first + random() % 12;
  if (IsPartitionOf(extent)) {
    extent.flags = kFlags[random() % std::size(kFlags)];
    if (random() % 8 == 0) {
      extent.last = extent.first;
      extent.flags |= kFlagEmpty;
    } else if (random() % 8 == 0 && extent.first != 0) {
      extent.last = random() % extent.first;
      extent.flags |= kFlagReversed;
    }
  }
  return extent;
}

TEST(Arrange, RandomExtentsAreMarkedAndOrderedAsTheModelSays) {
  std::mt19937 random(17);
  for (int round = 0; round < 20000; ++round) {
    const u64 sectors = random() % 60;  // 0: unknown
    std::vector<Extent> extents(random() % 7);
    std::generate(extents.begin(), extents.end(), [&] { return Random(random); });
    for (std::size_t i = 0; i < extents.size(); ++i)
      extents[i].number = i;
    const std::vector<Extent> before = extents;
    ArrangeExtents(extents, sectors);
    ASSERT_EQ(ComplaintAbout(extents, sectors), "") << "round " << round;
    std::size_t kept = 0;
    for (const Extent& extent : extents) {
      if (extent.kind == ExtentKind::kGap) {
        for (u64 sector = extent.first; sector <= extent.last; ++sector) {
          ASSERT_TRUE(std::none_of(before.begin(), before.end(),
                                   [&](const Extent& each) { return CoversByModel(each, sector); }))
              << "round " << round << ", sector " << sector;
        }
        continue;
      }
      ++kept;
      const Extent& was = before[extent.number];
      const bool overlaps = std::any_of(before.begin(), before.end(), [&](const Extent& other) {
        return &other != &was && OverlapsByModel(was, other);
      });
      const bool beyond = sectors != 0 && std::max(was.first, was.last) >= sectors;
      const u32 expected = was.flags | (overlaps ? kFlagOverlaps : 0U) | (beyond ? kFlagBeyondEnd : 0U);
      ASSERT_EQ(extent.flags, expected) << "round " << round << ": " << was.first << "-" << was.last;
    }
    ASSERT_EQ(kept, before.size());
    for (u64 sector = 0; sector < sectors; ++sector) {
      const bool covered = std::any_of(extents.begin(), extents.end(), [&](const Extent& each) {
        return CoversByModel(each, sector) ||
               (each.kind == ExtentKind::kGap && each.first <= sector && sector <= each.last);
      });
      ASSERT_TRUE(covered) << "round " << round << ", sector " << sector;
    }
  }
}

TEST(Arrange, TheComplaintNamesEachInvariant) {
  const Extent gap{.first = 0, .last = 9};
  EXPECT_EQ(ComplaintAbout({gap}, 10), "");
  EXPECT_EQ(ComplaintAbout({gap}, 11), "left out: 10");
  EXPECT_EQ(ComplaintAbout({Partition(2, 9)}, 10), "left out: 0");
  EXPECT_EQ(ComplaintAbout({Partition(0, 9), gap}, 10), "a gap over something at 0");
  EXPECT_EQ(ComplaintAbout({Partition(5, 9), Partition(0, 4)}, 10), "left out: 0");
  EXPECT_EQ(ComplaintAbout({Partition(0, 4), Partition(5, 3)}, 10), "reversed at 5");
}

TEST(Arrange, AVolumeLongerThanItsPartitionStandsBehindIt) {
  std::vector<Extent> extents = {{.first = 63, .last = 120, .kind = ExtentKind::kVolume},
                                 {.first = 63, .last = 100, .kind = ExtentKind::kPartition}};
  ArrangeExtents(extents, 200);
  ASSERT_EQ(extents.size(), 4u);
  EXPECT_EQ(extents[1].kind, ExtentKind::kPartition);
  EXPECT_EQ(extents[2].kind, ExtentKind::kVolume);
}

}  // namespace
}  // namespace trovisk::test
