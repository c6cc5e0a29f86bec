#include "map/arrange.h"

#include <algorithm>
#include <tuple>

namespace trovisk {
namespace {

bool IsPartition(const Extent& extent) {
  return extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical;
}

bool HasSectors(const Extent& extent) {
  return (extent.flags & (kFlagReversed | kFlagEmpty)) == 0;
}

// What a second opinion says claims nothing: an unsound copy, a copy beside another, another reading.
bool IsSecondOpinion(const Extent& extent) {
  return (extent.flags & (kFlagUnsound | kFlagOtherReading | kFlagOtherCopy)) != 0;
}

// Whether its sectors are its own: nobody else may claim them.
bool IsExclusive(const Extent& extent) {
  if (!HasSectors(extent) || (extent.flags & kFlagContainer) != 0) return false;
  return extent.kind == ExtentKind::kStructure || (IsPartition(extent) && !IsSecondOpinion(extent));
}

// Whether its sectors are no gap: those of all that claims any, and of a volume on a bare disk.
bool Covers(const Extent& extent) {
  if (!HasSectors(extent) || (extent.flags & kFlagContainer) != 0) return false;
  return IsPartition(extent) || extent.kind == ExtentKind::kStructure || extent.kind == ExtentKind::kVolume;
}

bool IsOfMbr(const Extent& extent) {
  return extent.source.starts_with("MBR") || extent.source.starts_with("EBR");
}

// A partition that both an MBR and a GPT have: one for systems that know the one, one for the others.
void MarkHybrid(std::vector<Extent>& extents) {
  const bool protective = std::any_of(extents.begin(), extents.end(), [](const Extent& extent) {
    return extent.kind == ExtentKind::kPartition && extent.type == "0xee" && IsOfMbr(extent);
  });
  if (!protective) return;
  std::vector<Extent*> ofGpt;
  for (Extent& extent : extents) {
    if (IsPartition(extent) && !IsOfMbr(extent)) ofGpt.push_back(&extent);
  }
  const auto before = [](const Extent* a, const Extent* b) { return a->first < b->first; };
  std::sort(ofGpt.begin(), ofGpt.end(), before);
  for (Extent& extent : extents) {
    if (!IsPartition(extent) || !IsOfMbr(extent) || extent.type == "0xee") continue;
    extent.flags |= kFlagHybrid;
    const auto [from, to] = std::equal_range(ofGpt.begin(), ofGpt.end(), &extent, before);
    for (auto each = from; each != to; ++each) {
      if ((*each)->last == extent.last) (*each)->flags |= kFlagHybrid;
    }
  }
}

// Whether the second is the MBR's entry for the first, a partition of the GPT: they do not overlap each
// other, and what overlaps one overlaps the other.
bool IsTwin(const Extent& ofGpt, const Extent& ofMbr) {
  return (ofMbr.flags & kFlagHybrid) != 0 && IsOfMbr(ofMbr) && (ofGpt.flags & kFlagHybrid) != 0 &&
         !IsOfMbr(ofGpt) && ofGpt.first == ofMbr.first && ofGpt.last == ofMbr.last;
}

void MarkOverlaps(std::vector<Extent>& extents) {
  std::vector<Extent*> exclusive;
  for (Extent& extent : extents) {
    if (IsExclusive(extent)) exclusive.push_back(&extent);
  }
  std::stable_sort(exclusive.begin(), exclusive.end(), [](const Extent* a, const Extent* b) {
    return std::tuple(a->first, a->last, IsOfMbr(*a)) < std::tuple(b->first, b->last, IsOfMbr(*b));
  });
  Extent* before = nullptr;
  Extent* reaching = nullptr;  // of those so far the one that ends last
  std::vector<std::pair<const Extent*, Extent*>> twins;
  for (Extent* extent : exclusive) {
    if (before != nullptr && IsTwin(*before, *extent)) {
      twins.emplace_back(before, extent);
      before = extent;
      continue;
    }
    before = extent;
    if (reaching != nullptr && extent->first <= reaching->last) {
      extent->flags |= kFlagOverlaps;
      reaching->flags |= kFlagOverlaps;
    }
    if (reaching == nullptr || extent->last > reaching->last) reaching = extent;
  }
  for (const auto& [ofGpt, ofMbr] : twins)
    ofMbr->flags |= ofGpt->flags & kFlagOverlaps;
}

void MarkBeyondEnd(std::vector<Extent>& extents, u64 sectors) {
  if (sectors == 0) return;
  for (Extent& extent : extents) {
    if (std::max(extent.first, extent.last) >= sectors) extent.flags |= kFlagBeyondEnd;
  }
}

std::vector<Extent> Gaps(const std::vector<Extent>& extents, u64 sectors) {
  std::vector<const Extent*> covering;
  for (const Extent& extent : extents) {
    if (Covers(extent)) covering.push_back(&extent);
  }
  std::sort(covering.begin(), covering.end(),
            [](const Extent* a, const Extent* b) { return a->first < b->first; });
  std::vector<Extent> gaps;
  u64 next = 0;  // the first sector that is not covered yet
  for (const Extent* extent : covering) {
    if (sectors != 0 && extent->first >= sectors) break;
    if (extent->first > next)
      gaps.push_back({.first = next, .last = extent->first - 1, .source = "no table"});
    if (extent->last == ~u64{0}) return gaps;
    next = std::max(next, extent->last + 1);
  }
  if (next < sectors) gaps.push_back({.first = next, .last = sectors - 1, .source = "no table"});
  return gaps;
}

// Where extents have the same sectors, what holds stands before what is held.
int Rank(const Extent& extent) {
  if ((extent.flags & kFlagContainer) != 0) return 0;
  return 1 + static_cast<int>(extent.kind);
}

u64 End(const Extent& extent) {
  return HasSectors(extent) ? extent.last : extent.first;
}

void Sort(std::vector<Extent>& extents) {
  std::stable_sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) {
    if (a.first != b.first) return a.first < b.first;
    if (End(a) != End(b)) return End(a) > End(b);
    return Rank(a) < Rank(b);
  });
}

// A volume that is longer than its partition stands behind it all the same.
void PutVolumesBehindPartitions(std::vector<Extent>& extents) {
  for (auto volume = extents.begin(); volume != extents.end(); ++volume) {
    if (volume->kind != ExtentKind::kVolume) continue;
    const auto end = std::find_if(volume, extents.end(),
                                  [&](const Extent& extent) { return extent.first != volume->first; });
    const auto partition = std::find_if(volume, end, IsPartition);
    if (partition != end) std::rotate(volume, partition, partition + 1);
  }
}

void SetDepths(std::vector<Extent>& extents) {
  constexpr std::size_t kDeepest = 8;
  std::vector<u64> ends;  // of the extents around
  for (Extent& extent : extents) {
    std::erase_if(ends, [&](u64 end) { return end < End(extent); });
    extent.depth = ends.size();
    if (HasSectors(extent) && ends.size() < kDeepest) ends.push_back(extent.last);
  }
}

}  // namespace

void ArrangeExtents(std::vector<Extent>& extents, u64 sectors) {
  MarkHybrid(extents);
  MarkOverlaps(extents);
  std::vector<Extent> gaps = Gaps(extents, sectors);
  std::move(gaps.begin(), gaps.end(), std::back_inserter(extents));
  MarkBeyondEnd(extents, sectors);
  Sort(extents);
  PutVolumesBehindPartitions(extents);
  SetDepths(extents);
}

std::string ComplaintAbout(const std::vector<Extent>& extents, u64 sectors) {
  u64 next = 0;
  const Extent* before = nullptr;
  for (const Extent& extent : extents) {
    if (before != nullptr && extent.first < before->first)
      return "not sorted at " + std::to_string(extent.first);
    before = &extent;
    if (HasSectors(extent) && extent.last < extent.first)
      return "reversed at " + std::to_string(extent.first);
    const bool gap = extent.kind == ExtentKind::kGap;
    if (!gap && !Covers(extent)) continue;
    if (gap && extent.first < next) return "a gap over something at " + std::to_string(extent.first);
    if (extent.first > next && next < sectors) return "left out: " + std::to_string(next);
    if (extent.last == ~u64{0}) return {};
    next = std::max(next, extent.last + 1);
  }
  return next < sectors ? "left out: " + std::to_string(next) : std::string();
}

}  // namespace trovisk
