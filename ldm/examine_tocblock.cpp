// TOCBLOCK, the table of contents of a dynamic disk's configuration area, in its two or four copies.
//
// They stand 1 and 2 sectors behind the start of the configuration area, and near its end: as many sectors
// behind its start as the PRIVHEAD says that a table takes, and one more, which are 2045 and 2046 as a rule.
// Big-endian. Layout and rules: the Linux-NTFS project's LDM documentation, "TOCBLOCK".
// Checked: number and agreement of the copies, and that the regions lie in the area. Not checked: the
// sequence numbers, whose meaning is not published.

#include "ldm/examine_tocblock.h"

#include <algorithm>
#include <string>

#include "ldm/examine_words.h"
#include "ldm/tocblock_layout.h"

namespace trovisk {
namespace {

// Where the database stands where no table says it.
constexpr u64 kUsualConfigStart = 17;

struct Copy {
  u64 sector = 0;
  std::vector<u8> bytes;
};

struct Region {
  std::string name;
  u64 start = 0;
  u64 size = 0;

  bool operator==(const Region&) const = default;
};

Region ConfigRegion(Bytes toc) {
  return {SafeAscii(SliceAt(toc, tocblock::kConfigName, 8)), Be64At(toc, tocblock::kConfigStart),
          Be64At(toc, tocblock::kConfigSize)};
}

Region LogRegion(Bytes toc) {
  return {SafeAscii(SliceAt(toc, tocblock::kLogName, 8)), Be64At(toc, tocblock::kLogStart),
          Be64At(toc, tocblock::kLogSize)};
}

std::string Words(const Region& region) {
  return region.name + " " + SectorsFrom(region.start, region.size);
}

std::string Words(Bytes toc) {
  return Words(ConfigRegion(toc)) + ", " + Words(LogRegion(toc));
}

bool Agree(const Copy& a, const Copy& b) {
  return ConfigRegion(a.bytes) == ConfigRegion(b.bytes) && LogRegion(a.bytes) == LogRegion(b.bytes);
}

// Where copies may stand, from the start of the area. The first of them are those that the version uses.
std::vector<u64> Places(const PrivheadFacts& head) {
  std::vector<u64> places = {2, head.tocSize};
  if (head.version != kPrivheadVersion12) places = {1, 2, head.tocSize, head.tocSize + 1};
  for (const u64 usual : {u64{1}, u64{2}, u64{2045}, u64{2046}}) {
    if (std::ranges::find(places, usual) == places.end()) places.push_back(usual);
  }
  std::erase_if(places, [&](u64 place) { return place == 0 || place >= head.configSize; });
  return places;
}

u64 ExpectedCopies(const PrivheadFacts& head) {
  if (head.tocCount >= 1 && head.tocCount <= 4) return head.tocCount;
  return head.version == kPrivheadVersion12 ? 2 : 4;
}

// The copies that are there; missing: the first place that has none.
std::vector<Copy> ReadCopies(const PrivheadFacts& head, u64 lastOnDisk, u64& missing) {
  std::vector<Copy> copies;
  missing = 0;
  for (const u64 place : Places(head)) {
    const u64 sector = head.configStart + place;
    const bool known = std::ranges::any_of(copies, [&](const Copy& copy) { return copy.sector == sector; });
    if (known || sector > lastOnDisk) continue;
    auto bytes = ReadSectors(sector, 1);
    if (bytes && bytes->size() >= 512 && EqualsText(SliceAt(*bytes, 0, 8), "TOCBLOCK")) {
      bytes->resize(512);
      copies.push_back({sector, *bytes});
    } else if (missing == 0) {
      missing = sector;
    }
  }
  return copies;
}

bool RegionFits(const Region& region, u64 configSize) {
  return region.size != 0 && configSize != 0 && Within(region.start, region.size, configSize - 1);
}

// The copy that most others agree with; of equals one whose regions lie in the area.
const Copy& MostAgreed(const std::vector<Copy>& copies, u64 configSize) {
  return *std::ranges::max_element(copies, {}, [&](const Copy& copy) {
    const auto agreeing =
        std::ranges::count_if(copies, [&](const Copy& other) { return Agree(copy, other); });
    return 2 * agreeing + (RegionFits(ConfigRegion(copy.bytes), configSize) ? 1 : 0);
  });
}

// The part of a region that lies in the area.
u64 SizeInside(const Region& region, u64 configSize) {
  return region.start >= configSize ? 0 : std::min(region.size, configSize - region.start);
}

void JudgeRegions(const PrivheadFacts& head, const Copy& copy, std::vector<Check>& checks) {
  const Region config = ConfigRegion(copy.bytes);
  const Region log = LogRegion(copy.bytes);
  const bool fit = RegionFits(config, head.configSize) && RegionFits(log, head.configSize);
  const bool apart = fit && (config.start + config.size <= log.start || log.start + log.size <= config.start);
  checks.push_back({copy.sector, "TOCBLOCK regions", apart ? Verdict::kGood : Verdict::kBad,
                    Words(copy.bytes),
                    "two regions apart among " + std::to_string(head.configSize) + " sectors"});
}

}  // namespace

TocFacts ExamineTocBlocks(const PrivheadFacts& head, u64 lastOnDisk, std::vector<Check>& checks) {
  TocFacts facts;
  u64 missing = 0;
  const std::vector<Copy> copies = ReadCopies(head, lastOnDisk, missing);
  const u64 expected = ExpectedCopies(head);
  const bool enough = !copies.empty() && copies.size() >= expected;
  u64 judged = missing;
  if (enough) judged = copies.front().sector;
  checks.push_back({judged, "TOCBLOCK copies", enough ? Verdict::kGood : Verdict::kMissing,
                    std::to_string(copies.size()), std::to_string(expected)});
  if (copies.empty()) {
    const Region usual{"config", kUsualConfigStart, head.configRegionSize};
    facts.configStart = head.configStart + std::min(usual.start, head.configSize);
    facts.configSize = SizeInside(usual, head.configSize);
    return facts;
  }
  const Copy& reference = MostAgreed(copies, head.configSize);
  for (const Copy& copy : copies) {
    facts.areas.push_back({copy.sector, copy.sector, "TOCBLOCK"});
    checks.push_back(
        CheckEqual(copy.sector, "TOCBLOCK", Words(Bytes(copy.bytes)), Words(Bytes(reference.bytes))));
  }
  JudgeRegions(head, reference, checks);
  const Region config = ConfigRegion(reference.bytes);
  const Region log = LogRegion(reference.bytes);
  facts.found = true;
  facts.configStart = head.configStart + std::min(config.start, head.configSize);
  facts.configSize = SizeInside(config, head.configSize);
  facts.logStart = head.configStart + std::min(log.start, head.configSize);
  facts.logSize = SizeInside(log, head.configSize);
  return facts;
}

}  // namespace trovisk
