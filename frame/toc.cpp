#include "frame/toc.h"

#include <algorithm>
#include <iterator>

namespace trovisk {
namespace {

// Runs per chunk: few enough that one is read to its end in no time, enough that what the chunk itself costs
// hardly counts.
constexpr std::size_t kChunkRuns = 32;

// Numbers as seven bits a byte, least significant first; the top bit says that more follow.
void PutNumber(std::vector<u8>& bytes, u64 value) {
  for (; value >= 0x80; value >>= 7)
    bytes.push_back(static_cast<u8>(value | 0x80));
  bytes.push_back(static_cast<u8>(value));
}

}  // namespace

// Reads a chunk's runs one after the other. A run is stored as the distance of its first sector from the last
// one of the run before (from the chunk's key for the first run), its length less 1, and its kind.
class SectorToc::Reader {
 public:
  explicit Reader(const Chunks::value_type& chunk) : bytes_(chunk.second), last_(chunk.first) {}

  bool Next(Run& run) {
    if (position_ == bytes_.size()) return false;
    run.first = last_ + Number();
    run.last = last_ = run.first + Number();
    run.kind = static_cast<std::size_t>(Number());
    return true;
  }

 private:
  u64 Number() {
    u64 value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const u8 byte = bytes_[position_++];
      value |= u64{byte & 0x7FU} << shift;
      if (byte < 0x80) return value;
    }
  }

  const Chunk& bytes_;
  std::size_t position_ = 0;
  u64 last_;
};

SectorToc::Chunk SectorToc::Pack(const std::vector<Run>& runs) {
  Chunk bytes;
  bytes.reserve(runs.size() * 3);
  u64 last = runs.front().first;
  for (const Run& run : runs) {
    PutNumber(bytes, run.first - last);
    PutNumber(bytes, run.last - run.first);
    PutNumber(bytes, run.kind);
    last = run.last;
  }
  bytes.shrink_to_fit();
  return bytes;
}

std::vector<SectorToc::Run> SectorToc::Unpack(const Chunks::value_type& chunk) {
  std::vector<Run> runs;
  runs.reserve(kChunkRuns + 1);
  Reader reader(chunk);
  for (Run run{}; reader.Next(run);)
    runs.push_back(run);
  return runs;
}

std::size_t SectorToc::KindOf(SectorDecoder decoder, WideText description) {
  for (std::size_t i = kinds_.size(); i-- > 0;) {  // the newest kind is the likeliest
    if (kinds_[i].decoder == decoder && kinds_[i].description == description) return i;
  }
  kinds_.push_back({decoder, std::wstring(description)});
  return kinds_.size() - 1;
}

std::optional<SectorToc::Found> SectorToc::FirstAtOrAfter(u64 sector) const {
  auto chunk = chunks_.upper_bound(sector);
  if (chunk != chunks_.begin()) --chunk;
  // What is not in the chunk whose runs begin at or before the sector is in front of the next one.
  for (; chunk != chunks_.end(); ++chunk) {
    Reader reader(*chunk);
    for (Run run{}; reader.Next(run);) {
      if (run.last < sector) continue;
      const Kind& kind = kinds_[run.kind];
      return Found{std::max(run.first, sector), run.last, {kind.decoder, kind.description}};
    }
  }
  return std::nullopt;
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

// Puts runs in the place of a chunk's.
void SectorToc::Put(Chunks::iterator chunk, const std::vector<Run>& runs) {
  auto node = chunks_.extract(chunk);
  if (runs.empty()) return;
  node.key() = runs.front().first;
  node.mapped() = Pack(runs);
  chunks_.insert(std::move(node));
}

// Adds a run that overlaps no other, joining it with the neighbours that it continues.
void SectorToc::AddGap(u64 first, u64 last, std::size_t kind) {
  const Run added{first, last, kind};
  auto next = chunks_.upper_bound(first);
  if (next == chunks_.begin()) {
    if (next == chunks_.end()) {
      chunks_[first] = Pack({added});
      return;
    }
    ++next;
  }
  const auto here = std::prev(next);
  std::vector<Run> runs = Unpack(*here);
  auto place = std::upper_bound(runs.begin(), runs.end(), first,
                                [](u64 wanted, const Run& each) { return wanted < each.first; });
  place = runs.insert(place, added);
  if (place != runs.begin()) {
    Run& before = *std::prev(place);
    if (before.kind == kind && before.last + 1 == first) {
      before.last = last;
      place = std::prev(runs.erase(place));
    }
  }
  if (place + 1 != runs.end()) {
    const Run& after = *(place + 1);
    if (after.kind == kind && last + 1 == after.first) {
      place->last = after.last;
      place = std::prev(runs.erase(place + 1));
    }
  } else if (next != chunks_.end() && last + 1 == next->first) {
    std::vector<Run> behind = Unpack(*next);
    if (behind.front().kind == kind) {
      place->last = behind.front().last;
      behind.erase(behind.begin());
      Put(next, behind);
    }
  }
  if (runs.size() > kChunkRuns) {
    // Ascending registrations, the rule, fill every chunk to the brim.
    const bool atEnd = place + 1 == runs.end();
    const auto split = atEnd ? place : runs.begin() + static_cast<std::ptrdiff_t>(runs.size() / 2);
    chunks_[split->first] = Pack(std::vector<Run>(split, runs.end()));
    runs.erase(split, runs.end());
  }
  Put(here, runs);
}

void SectorToc::Clear() {
  chunks_.clear();
  kinds_.clear();
}

std::string SectorToc::Complaint() const {
  std::optional<Run> before;
  for (const auto& chunk : chunks_) {
    const std::vector<Run> runs = Unpack(chunk);
    const auto complaint = [&](const char* what, u64 sector) {
      std::string text = "chunk of sector ";
      return text.append(std::to_string(chunk.first)).append(", sector ").append(std::to_string(sector)) +
             what;
    };
    if (runs.empty()) return complaint(": no runs", chunk.first);
    if (runs.size() > kChunkRuns) return complaint(": too many runs", chunk.first);
    if (runs.front().first != chunk.first) return complaint(": is not the key", runs.front().first);
    for (const Run& run : runs) {
      if (run.last < run.first) return complaint(": the run ends before it begins", run.first);
      if (run.kind >= kinds_.size()) return complaint(": the run is of no kind", run.first);
      if (before && run.first <= before->last) return complaint(": the run overlaps another", run.first);
      if (before && run.first == before->last + 1 && run.kind == before->kind) {
        return complaint(": the run continues the one before it", run.first);
      }
      before = run;
    }
  }
  return {};
}

std::string SectorToc::ToText() const {
  std::string text;
  for (const auto& chunk : chunks_) {
    text += "chunk\n";
    for (const Run& run : Unpack(chunk)) {
      const std::wstring& description = kinds_[run.kind].description;
      text.append("  ").append(std::to_string(run.first)).append("-").append(std::to_string(run.last));
      text.append(" ").append(description.begin(), description.end()).append("\n");
    }
  }
  return text;
}

}  // namespace trovisk
