// The run container of the table of contents against a plain map of single sectors.

#include "frame/toc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <numeric>
#include <random>

#include "frame/decoders.h"
#include "frame/global.h"
#include "tests/support/child.h"
#include "tests/support/limits.h"

namespace trovisk {
namespace {

// What frame/toc.h says that the table is to its users: a map from each sector to its first registration.
struct Model {
  std::map<u64, std::wstring> sectors;

  void Add(u64 first, u64 last, const std::wstring& description) {
    for (u64 sector = first; sector <= last; ++sector)
      sectors.emplace(sector, description);
  }
};

void ExpectSame(const SectorToc& toc, const Model& model) {
  u64 position = 0;
  auto expected = model.sectors.begin();
  while (const auto found = toc.FirstAtOrAfter(position)) {
    for (u64 sector = found->first; sector <= found->last; ++sector, ++expected) {
      ASSERT_NE(expected, model.sectors.end());
      ASSERT_EQ(sector, expected->first);
      ASSERT_EQ(found->entry.description, expected->second);
    }
    position = found->last + 1;
  }
  ASSERT_EQ(expected, model.sectors.end());
}

// Registers, and holds the table to its invariants.
void Add(SectorToc& toc, u64 first, u64 last, SectorDecoder decoder, WideText description) {
  toc.Add(first, last, decoder, description);
  ASSERT_EQ(toc.Complaint(), "") << toc.ToText();
}

TEST(SectorToc, RandomRegistrationsAgreeWithAMapOfSingleSectors) {
  const std::wstring names[] = {L"one", L"two", L"three"};
  for (unsigned seed = 0; seed < 18; ++seed) {
    std::mt19937 random(seed);
    const u64 range = 40u << (seed % 9);
    SectorToc toc;
    Model model;
    for (int i = 0; i < 2500; ++i) {
      const u64 first = random() % range;
      const u64 last = first + (random() % 4 == 0 ? random() % 9 : 0);
      const std::wstring& name = names[random() % 3];
      Add(toc, first, last, DumpRawSector, name);
      model.Add(first, last, name);
    }
    ExpectSame(toc, model);
    for (u64 sector = 0; sector < range + 10; ++sector) {
      const auto entry = toc.At(sector);
      const auto expected = model.sectors.find(sector);
      ASSERT_EQ(entry.has_value(), expected != model.sectors.end()) << sector;
      if (entry) {
        ASSERT_EQ(entry->description, expected->second);
      }
    }
  }
}

constexpr u64 kLastSector = ~u64{0};

// The whole table as text: "first-last description", a run each.
std::string RunsOf(const SectorToc& toc) {
  std::string text;
  for (u64 position = 0;;) {
    const auto found = toc.FirstAtOrAfter(position);
    if (!found) return text;
    text += std::to_string(found->first) + "-" + std::to_string(found->last) + " " +
            std::string(found->entry.description.begin(), found->entry.description.end()) + "; ";
    if (found->last == kLastSector) return text;
    position = found->last + 1;
  }
}

TEST(SectorToc, IsEmptyAtFirstAndAfterClear) {
  SectorToc toc;
  EXPECT_FALSE(toc.FirstAtOrAfter(0));
  EXPECT_FALSE(toc.At(0));
  Add(toc, 5, 9, DumpRawSector, L"a");
  toc.Clear();
  EXPECT_FALSE(toc.FirstAtOrAfter(0));
  Add(toc, 7, 7, DumpRawSector, L"b");
  EXPECT_EQ(RunsOf(toc), "7-7 b; ");
}

TEST(SectorToc, RunOfEverySectorThereIs) {
  SectorToc toc;
  Add(toc, 0, kLastSector, DumpRawSector, L"all");
  EXPECT_EQ(RunsOf(toc), "0-18446744073709551615 all; ");
  Add(toc, 0, kLastSector, DumpRawSector, L"again");
  Add(toc, kLastSector, kLastSector, DumpRawSector, L"again");
  Add(toc, 0, 0, DumpRawSector, L"again");
  EXPECT_EQ(RunsOf(toc), "0-18446744073709551615 all; ");
  EXPECT_EQ(toc.At(kLastSector)->description, L"all");
}

TEST(SectorToc, RunOf2To63SectorsAroundSingleOnes) {
  SectorToc toc;
  const u64 half = u64{1} << 63;
  Add(toc, half, half, DumpRawSector, L"middle");
  Add(toc, 0, 0, DumpRawSector, L"zero");
  Add(toc, kLastSector, kLastSector, DumpRawSector, L"last");
  Add(toc, 0, half, DumpRawSector, L"run");
  EXPECT_EQ(RunsOf(toc),
            "0-0 zero; 1-9223372036854775807 run; 9223372036854775808-9223372036854775808 middle; "
            "18446744073709551615-18446744073709551615 last; ");
  Add(toc, 0, kLastSector, DumpRawSector, L"run");
  EXPECT_EQ(RunsOf(toc),
            "0-0 zero; 1-9223372036854775807 run; 9223372036854775808-9223372036854775808 middle; "
            "9223372036854775809-18446744073709551614 run; 18446744073709551615-18446744073709551615 last; ");
}

TEST(SectorToc, NeighboursOfTheSameKindAreOneRun) {
  SectorToc toc;
  Add(toc, 10, 10, DumpRawSector, L"a");
  Add(toc, 11, 11, DumpRawSector, L"a");  // behind
  Add(toc, 9, 9, DumpRawSector, L"a");    // in front
  Add(toc, 13, 14, DumpRawSector, L"a");
  EXPECT_EQ(RunsOf(toc), "9-11 a; 13-14 a; ");
  Add(toc, 12, 12, DumpRawSector, L"a");  // between
  EXPECT_EQ(RunsOf(toc), "9-14 a; ");
}

TEST(SectorToc, NeighboursOfAnotherKindAreNot) {
  SectorToc toc;
  Add(toc, 10, 10, DumpRawSector, L"a");
  Add(toc, 11, 11, DumpRawSector, L"b");
  Add(toc, 12, 12, DumpLabelledRawSector, L"b");
  EXPECT_EQ(RunsOf(toc), "10-10 a; 11-11 b; 12-12 b; ");
  EXPECT_EQ(toc.At(11)->decoder, &DumpRawSector);
  EXPECT_EQ(toc.At(12)->decoder, &DumpLabelledRawSector);
}

// However the table is divided inside: as many single sectors, and then what lies between them, leave one
// run.
TEST(SectorToc, FilledGapsLeaveOneRun) {
  std::vector<u64> gaps(999);
  for (u64 i = 0; i < gaps.size(); ++i)
    gaps[i] = 2 * i + 1;
  std::vector<std::vector<u64>> orders = {gaps, {gaps.rbegin(), gaps.rend()}, gaps};
  std::shuffle(orders[2].begin(), orders[2].end(), std::mt19937(1));
  for (const std::vector<u64>& order : orders) {
    SectorToc toc;
    for (u64 sector = 0; sector <= 1998; sector += 2)
      Add(toc, sector, sector, DumpRawSector, L"a");
    for (const u64 sector : order)
      Add(toc, sector, sector, DumpRawSector, L"a");
    EXPECT_EQ(RunsOf(toc), "0-1998 a; ");
  }
}

// ... and of another kind in between none is joined.
TEST(SectorToc, GapsFilledWithAnotherKindStayApart) {
  SectorToc toc;
  std::string runs;
  for (u64 sector = 0; sector < 1000; sector += 2)
    Add(toc, sector, sector, DumpRawSector, L"a");
  for (u64 sector = 0; sector < 1000; ++sector) {
    Add(toc, sector, sector, DumpRawSector, L"b");
    const std::string number = std::to_string(sector);
    runs.append(number).append("-").append(number).append(sector % 2 == 0 ? " a; " : " b; ");
  }
  EXPECT_EQ(RunsOf(toc), runs);
}

TEST(SectorToc, LaterRunFillsTheGaps) {
  SectorToc toc;
  Add(toc, 10, 12, DumpRawSector, L"a");
  Add(toc, 20, 20, DumpRawSector, L"b");
  Add(toc, 11, 25, DumpRawSector, L"c");
  Add(toc, 5, 30, DumpRawSector, L"a");
  EXPECT_EQ(RunsOf(toc), "5-12 a; 13-19 c; 20-20 b; 21-25 c; 26-30 a; ");
}

TEST(SectorToc, FindsTheSectorItselfInsideARun) {
  SectorToc toc;
  Add(toc, 10, 20, DumpRawSector, L"a");
  for (const auto& [asked, first] : {std::pair<u64, u64>{0, 10}, {9, 10}, {10, 10}, {15, 15}, {20, 20}}) {
    const auto found = toc.FirstAtOrAfter(asked);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->first, first);
    EXPECT_EQ(found->last, 20u);
  }
  EXPECT_FALSE(toc.FirstAtOrAfter(21));
  EXPECT_FALSE(toc.At(9));
  EXPECT_TRUE(toc.At(10));
}

TEST(SectorToc, DescriptionsAreCopied) {
  SectorToc toc;
  {
    std::wstring text = L"temporary";
    Add(toc, 1, 1, DumpRawSector, text);
    text.assign(text.size(), L'x');
  }
  const TocEntry entry = *toc.At(1);
  for (u64 i = 0; i < 1000; ++i)  // what was handed out stays as the table grows
    Add(toc, 10 + i, 10 + i, DumpRawSector, std::to_wstring(i));
  EXPECT_EQ(entry.description, L"temporary");
  EXPECT_EQ(toc.At(1)->description, L"temporary");
}

TEST(AddTocEntry, FirstRegistrationWinsAndEveryOneSucceeds) {
  Global global;
  EXPECT_TRUE(AddTocEntry(global, 7, DumpRawSector, L"first"));
  EXPECT_TRUE(AddTocEntry(global, 7, DumpLabelledRawSector, L"second"));
  EXPECT_EQ(global.toc.At(7)->description, L"first");
  EXPECT_EQ(global.toc.At(7)->decoder, &DumpRawSector);
  EXPECT_TRUE(AddTocEntry(global, kLastSector, DumpRawSector, L"last"));
  EXPECT_EQ(RunsOf(global.toc), "7-7 first; 18446744073709551615-18446744073709551615 last; ");
}

TEST(AddTocRun, EndIsNotPartOfIt) {
  Global global;
  EXPECT_TRUE(AddTocRun(global, 5, 8, DumpRawSector, L"run"));
  EXPECT_TRUE(AddTocRun(global, 20, 20, DumpRawSector, L"none"));
  EXPECT_TRUE(AddTocRun(global, 20, 19, DumpRawSector, L"none"));
  EXPECT_TRUE(AddTocRun(global, kLastSector, 0, DumpRawSector, L"none"));
  EXPECT_EQ(RunsOf(global.toc), "5-7 run; ");
}

// A million single sectors, no two adjacent, in one order; measured in a process of its own. most: bytes an
// entry.
void ExpectAMillionEntriesToBeSmall(const char* name, const std::vector<u64>& sectors, double most) {
  test::RunChild([] { std::exit(0); });  // what this process brings along is the same for both
  const long base = test::RunChild([] { std::exit(0); }).peakKiB;
  const test::Outcome outcome = test::RunChild([&] {
    SectorToc toc;
    for (const u64 sector : sectors)
      toc.Add(sector, sector, DumpRawSector, L"single");
    u64 entries = 0;
    u64 position = 0;
    while (const auto found = toc.FirstAtOrAfter(position)) {
      position = found->last + 1;
      ++entries;
    }
    std::_Exit(entries == sectors.size() ? 0 : 1);
  });
  const double bytes =
      static_cast<double>(outcome.peakKiB - base) * 1024 / static_cast<double>(sectors.size());
  std::cout << name << ": " << bytes << " bytes an entry\n";
  EXPECT_EQ(outcome.status, 0);
  if (test::kMemoryCounts) {
    EXPECT_LT(bytes, most) << "three of them are the run itself";
  }
}

std::vector<u64> AMillionSectors() {
  std::vector<u64> sectors(1000000);
  std::iota(sectors.begin(), sectors.end(), u64{0});
  for (u64& sector : sectors)
    sector = 2 * sector + 1;
  return sectors;
}

TEST(SectorTocSize, AMillionEntriesInAscendingOrder) {
  ExpectAMillionEntriesToBeSmall("ascending", AMillionSectors(), 6.5);
}

TEST(SectorTocSize, AMillionEntriesInDescendingOrder) {
  std::vector<u64> sectors = AMillionSectors();
  std::reverse(sectors.begin(), sectors.end());
  ExpectAMillionEntriesToBeSmall("descending", sectors, 10);
}

TEST(SectorTocSize, AMillionEntriesInRandomOrder) {
  std::vector<u64> sectors = AMillionSectors();
  std::shuffle(sectors.begin(), sectors.end(), std::mt19937(1));
  ExpectAMillionEntriesToBeSmall("random", sectors, 10);
}

}  // namespace
}  // namespace trovisk
