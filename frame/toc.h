// The sector table of contents: which absolute sector holds which structure, and which decoder reads it.
//
// To its users the table is an ordered map from sector number to entry. It is kept as runs: consecutive
// sectors with the same decoder and description take one element, so that a partition of 2^40 sectors
// registered sector by sector costs no time and no memory. The first registration of a sector wins, sector by
// sector: a later run fills the gaps only. Invariants, which Complaint checks:
//   1. runs are sorted by first sector and do not overlap;
//   2. neighbouring runs with the same decoder and description, and no gap between them, are one run.

#ifndef TROVISK_FRAME_TOC_H
#define TROVISK_FRAME_TOC_H

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

// A decoder loads and prints the structure at one sector.
//
// It is entered with the disk at the first byte of that sector (sector: absolute, in units of the disk's
// bytes per sector) and with the description under which the sector was registered. With print clear it
// validates and registers what the structure points to; with print set it also reports. It returns the next
// sector to visit, always beyond its own, or kEndPass.
using SectorDecoder = u64 (*)(WideText description, u64 sector, bool print);

// Ends the pass that the decoder is in, not the run. The frame takes any result with the top bit set so.
inline constexpr u64 kEndPass = ~u64{0};

struct TocEntry {
  SectorDecoder decoder = nullptr;
  WideText description;  // owned by the table, valid until Clear
};

class SectorToc {
 public:
  struct Found {
    u64 first = 0;  // the sector asked for, or the first registered one after it
    u64 last = 0;   // the last sector of the same run
    TocEntry entry;
  };

  // Registers the sectors first..last (inclusive) that are not registered yet; first <= last.
  void Add(u64 first, u64 last, SectorDecoder decoder, WideText description);

  // The smallest registered sector at or after the given one.
  std::optional<Found> FirstAtOrAfter(u64 sector) const;

  // The entry of exactly this sector.
  std::optional<TocEntry> At(u64 sector) const;

  // Forgets every entry.
  void Clear();

  // For tests: what is wrong with the table, nothing while its invariants hold; and its runs as text.
  std::string Complaint() const;
  std::string ToText() const;

 private:
  struct Run {
    u64 first;
    u64 last;
    std::size_t kind;
  };
  // A few runs in ascending order, never none while in the table. Packed, for a damaged disk may register as
  // many single sectors as it has: three bytes a run are the rule, where a Run takes 24.
  using Chunk = std::vector<u8>;
  using Chunks = std::map<u64, Chunk>;  // by the first sector of the chunk's first run

  static Chunk Pack(const std::vector<Run>& runs);
  static std::vector<Run> Unpack(const Chunks::value_type& chunk);
  class Reader;

  std::size_t KindOf(SectorDecoder decoder, WideText description);
  void AddGap(u64 first, u64 last, std::size_t kind);
  void Put(Chunks::iterator chunk, const std::vector<Run>& runs);

  struct Kind {
    SectorDecoder decoder;
    std::wstring description;
  };
  Chunks chunks_;
  std::deque<Kind> kinds_;  // a deque, so that the views handed out stay valid as it grows
};

}  // namespace trovisk

#endif
