#include "frame/toc.h"

#include <iterator>

#include "frame/global.h"

namespace trovisk {
namespace {

// Runs per chunk: small enough that an insertion in the middle is cheap, large enough that a million runs
// cost little more than their own 24 bytes each.
constexpr std::size_t kChunkRuns = 512;

}  // namespace

std::size_t SectorToc::KindOf(SectorDecoder decoder, WideText description) {
  for (std::size_t i = kinds_.size(); i-- > 0;) {  // the newest kind is the likeliest
    if (kinds_[i].decoder == decoder && kinds_[i].description == description) return i;
  }
  kinds_.push_back({decoder, std::wstring(description)});
  return kinds_.size() - 1;
}

std::optional<SectorToc::Found> SectorToc::FirstAtOrAfter(u64 sector) const {
  auto chunk = chunks_.upper_bound(sector);
  const auto found = [this](u64 first, const Run& run) {
    const Kind& kind = kinds_[run.kind];
    return Found{first, run.last, {kind.decoder, kind.description}};
  };
  if (chunk != chunks_.begin()) {
    const Chunk& runs = std::prev(chunk)->second;
    const auto run = std::lower_bound(runs.begin(), runs.end(), sector,
                                      [](const Run& each, u64 wanted) { return each.last < wanted; });
    if (run != runs.end()) return found(std::max(run->first, sector), *run);
  }
  if (chunk == chunks_.end()) return std::nullopt;
  const Run& run = chunk->second.front();
  return found(run.first, run);
}

std::optional<TocEntry> SectorToc::At(u64 sector) const {
  const auto found = FirstAtOrAfter(sector);
  if (!found || found->first != sector) return std::nullopt;
  return found->entry;
}

void SectorToc::Add(u64 first, u64 last, SectorDecoder decoder, WideText description) {
  const std::size_t kind = KindOf(decoder, description);
  for (;;) {
    const auto taken = FirstAtOrAfter(first);
    if (!taken || taken->first > last) {
      AddGap(first, last, kind);
      return;
    }
    if (taken->first > first) AddGap(first, taken->first - 1, kind);
    if (taken->last >= last) return;
    first = taken->last + 1;
  }
}

// Adds a run that overlaps no other, joining it with the neighbours that it continues.
void SectorToc::AddGap(u64 first, u64 last, std::size_t kind) {
  const auto rekey = [this](std::map<u64, Chunk>::iterator chunk) {
    auto node = chunks_.extract(chunk);
    node.key() = node.mapped().front().first;
    chunks_.insert(std::move(node));
  };
  const Run added{first, last, kind};
  auto next = chunks_.upper_bound(first);
  if (next == chunks_.begin()) {  // before every other run
    if (next == chunks_.end()) {
      chunks_[first].push_back(added);
      return;
    }
    Chunk& runs = next->second;
    Run& after = runs.front();
    if (after.kind == kind && after.first == last + 1) {
      after.first = first;
    } else if (runs.size() < kChunkRuns) {
      runs.insert(runs.begin(), added);
    } else {
      chunks_[first].push_back(added);
      return;
    }
    rekey(next);
    return;
  }

  auto here = std::prev(next);
  Chunk* runs = &here->second;
  auto place = std::upper_bound(runs->begin(), runs->end(), first,
                                [](u64 wanted, const Run& each) { return wanted < each.first; });
  Run& before = *std::prev(place);
  const bool atEnd = place == runs->end();
  const Run* after = nullptr;
  if (!atEnd) {
    after = &*place;
  } else if (next != chunks_.end()) {
    after = &next->second.front();
  }
  const bool joinsBefore = before.kind == kind && before.last + 1 == first;
  const bool joinsAfter = after != nullptr && after->kind == kind && last + 1 == after->first;

  if (joinsBefore) {
    before.last = joinsAfter ? after->last : last;
    if (!joinsAfter) return;
    if (!atEnd) {
      runs->erase(place);
      return;
    }
    next->second.erase(next->second.begin());
    if (next->second.empty()) {
      chunks_.erase(next);
    } else {
      rekey(next);
    }
    return;
  }
  if (joinsAfter) {
    if (!atEnd) {
      place->first = first;
    } else {
      next->second.front().first = first;
      rekey(next);
    }
    return;
  }
  if (runs->size() < kChunkRuns) {
    runs->insert(place, added);
    return;
  }
  if (atEnd) {  // ascending registrations fill every chunk to the brim
    chunks_[first].push_back(added);
    return;
  }
  const auto middle = runs->begin() + static_cast<std::ptrdiff_t>(kChunkRuns / 2);
  Chunk upper(middle, runs->end());
  runs->erase(middle, runs->end());
  chunks_.emplace(upper.front().first, std::move(upper));
  AddGap(first, last, kind);
}

void SectorToc::Clear() {
  chunks_.clear();
  kinds_.clear();
}

bool AddTocEntry(Global& global, u64 sector, SectorDecoder decoder, WideText description) {
  global.toc.Add(sector, sector, decoder, description);
  return true;
}

bool AddTocRun(Global& global, u64 first, u64 end, SectorDecoder decoder, WideText description) {
  if (first < end) global.toc.Add(first, end - 1, decoder, description);
  return true;
}

}  // namespace trovisk
