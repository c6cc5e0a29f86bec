// The run container of the table of contents against a plain map of single sectors.

#include "frame/toc.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "frame/dump.h"

namespace trovisk {
namespace {

// What the table is described to be.
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

TEST(SectorToc, RandomRegistrationsAgreeWithAMapOfSingleSectors) {
  const std::wstring names[] = {L"one", L"two", L"three"};
  for (unsigned seed = 0; seed < 60; ++seed) {
    std::mt19937 random(seed);
    const u64 range = 40u << (seed % 9);
    SectorToc toc;
    Model model;
    for (int i = 0; i < 4000; ++i) {
      const u64 first = random() % range;
      const u64 last = first + (random() % 4 == 0 ? random() % 9 : 0);
      const std::wstring& name = names[random() % 3];
      toc.Add(first, last, DumpRawSector, name);
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

}  // namespace
}  // namespace trovisk
