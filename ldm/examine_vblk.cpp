// VBLK, the slots of a dynamic disk's object database.
//
// Slots of 128 bytes stand behind the VMDB, up to the end of the configuration region. A slot that states no
// slots of its record is unused. A record of several slots is cut into pieces: each slot has the same group
// number, its own number from 0 and, behind its first 16 bytes, its piece. Put together the pieces are what
// stands behind the first 16 bytes of a record of one slot. Big-endian. Layout and rules: the Linux-NTFS
// project's LDM documentation, "VBLK".
// Checked: the signatures, and that each record has all its slots once.

#include "ldm/examine_vblk.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "frame/global.h"
#include "ldm/examine_words.h"
#include "ldm/vblk_layout.h"

namespace trovisk {
namespace {

constexpr u64 kMostRecords = u64{1} << 14;
constexpr u64 kMostBytes = u64{8} << 20;
constexpr u64 kPieceBytes = u64{1} << 16;

// A slot's part of a record of several slots begins where the type-independent fields of such a record begin.
constexpr std::size_t kPieceStart = vblk::kUpdateStatus;
constexpr std::size_t kPieceSize = vblk::kSlotSize - kPieceStart;
// No object has as many fields as would fill them.
constexpr u64 kMostSlots = 32;

using Slot = FixedBytes<vblk::kSlotSize>;
using Piece = std::array<u8, kPieceSize>;

// A record of which not all slots have been met.
struct Group {
  u64 sector = 0;
  u64 slots = 0;
  std::map<u64, Piece> pieces;
};

struct Walk {
  const std::function<void(const LdmRecord&)>& visit;
  ManyChecks signatures;
  ManyChecks groups;
  VblkSummary summary = {};
  std::map<u64, Group> open = {};
  u64 leftOut = 0;
};

void Visit(Walk& walk, u64 sector, Bytes bytes) {
  if (walk.summary.records == kMostRecords) {
    ++walk.leftOut;
    return;
  }
  ++walk.summary.records;
  const auto at = [](std::size_t offset) { return offset - kPieceStart; };
  walk.visit({.sector = sector,
              .status = Be16At(bytes, at(vblk::kUpdateStatus)),
              .flags = U8At(bytes, at(vblk::kFlags)),
              .type = U8At(bytes, at(vblk::kType)),
              .dataLength = Be32At(bytes, at(vblk::kDataLength)),
              .data = FromAt(bytes, at(vblk::kData))});
}

std::string Words(u64 group, std::string_view what) {
  return "group " + std::to_string(group) + ": " + std::string(what);
}

void TakePiece(Walk& walk, u64 sector, Slot slot, u64 slots) {
  const u64 number = Be16<vblk::kRecordNumber>(slot);
  const u64 id = Be32<vblk::kGroup>(slot);
  const std::string expected = "each of its slots once";
  if (slots > kMostSlots || number >= slots) {
    walk.groups.Add(Verdict::kBad, sector,
                    Words(id, "slot " + std::to_string(number + 1) + " of " + std::to_string(slots)),
                    expected);
    return;
  }
  Group& group = walk.open[id];
  if (group.slots == 0) {
    group.sector = sector;
    group.slots = slots;
  }
  if (group.slots != slots || group.pieces.contains(number)) {
    walk.groups.Add(Verdict::kBad, sector,
                    Words(id, "slot " + std::to_string(number + 1) + " of " + std::to_string(slots) +
                                  " beside others of " + std::to_string(group.slots)),
                    expected);
    return;
  }
  if (number == 0) group.sector = sector;
  std::ranges::copy(Part<kPieceStart, kPieceSize>(slot), group.pieces[number].begin());
  if (group.pieces.size() < slots) return;
  std::vector<u8> bytes;
  for (const auto& [index, piece] : group.pieces)
    bytes.insert(bytes.end(), piece.begin(), piece.end());
  Visit(walk, group.sector, bytes);
  walk.open.erase(id);
}

void TakeSlot(Walk& walk, u64 sector, Slot slot) {
  const u64 slots = Be16<vblk::kRecordCount>(slot);
  // Of a record of several slots only the first has a type.
  if (slots == 0 || (slots == 1 && U8<vblk::kType>(slot) == 0)) return;
  walk.summary.lastUsed = std::max(walk.summary.lastUsed, sector);
  walk.summary.highestSequence = std::max<u64>(walk.summary.highestSequence, Be32<vblk::kSequence>(slot));
  if (slots == 1) {
    Visit(walk, sector, Part<kPieceStart, kPieceSize>(slot));
  } else {
    TakePiece(walk, sector, slot, slots);
  }
}

// Larger sectors hold four slots, or are full of them.
void TakeSector(Walk& walk, u64 sector, Bytes bytes) {
  bool empty = true;
  for (u64 i = 0; i < vblk::kSlotCount; ++i)
    empty = empty && U8At(bytes, i * vblk::kSlotSize + vblk::kType) == 0;
  for (u64 i = 0; (i + 1) * vblk::kSlotSize <= bytes.size(); ++i) {
    const Slot slot = bytes.subspan(i * vblk::kSlotSize).first<vblk::kSlotSize>();
    if (EqualsText(Part<vblk::kSignature, 4>(slot), "VBLK")) {
      TakeSlot(walk, sector, slot);
    } else if (i >= vblk::kSlotCount || empty) {
      return;
    } else {
      walk.signatures.Add(Verdict::kBad, sector, "slot " + std::to_string(i + 1) + ": none", "VBLK");
    }
  }
}

void TakeSectors(Walk& walk, const VblkPlace& place, u64 last) {
  const u64 bytesPerSector = disk.bytesPerSector;
  const u64 most = std::max<u64>(kPieceBytes / bytesPerSector, 1);
  u64 skipped = place.offset;
  u64 singly = 0;  // so many of the next sectors are read one by one
  for (u64 sector = place.first; sector <= last;) {
    const u64 count = singly != 0 ? 1 : std::min(most, last - sector + 1);
    const auto bytes = ReadSectors(sector, count);
    if (!bytes && count > 1) {  // so that the readable ones among them are read
      singly = count;
      continue;
    }
    if (singly != 0) --singly;
    if (!bytes) {
      walk.signatures.Add(Verdict::kMissing, sector, "unreadable", "VBLK");
      if (!disk.length) return;  // taken for the disk's end, which nobody knows
    }
    for (u64 i = 0; bytes && i < count; ++i) {
      TakeSector(walk, sector + i, FromAt(SliceAt(*bytes, i * bytesPerSector, bytesPerSector), skipped));
      skipped = 0;
    }
    sector += count;
  }
}

}  // namespace

VblkSummary VisitVblks(const VblkPlace& place, const std::function<void(const LdmRecord&)>& visit,
                       std::vector<Check>& checks, std::vector<std::string>& remarks) {
  if (place.last < place.first || disk.bytesPerSector < 512) return {};
  Walk walk{.visit = visit, .signatures = {"VBLK signatures", checks}, .groups = {"VBLK fragments", checks}};
  const u64 most = std::max<u64>(kMostBytes / disk.bytesPerSector, 1);
  const u64 last = place.first + std::min(place.last - place.first, most - 1);
  if (last < place.last) {
    remarks.push_back("Of the object database only the first " + std::to_string(most) +
                      " sectors were read.");
  }
  TakeSectors(walk, place, last);
  for (const auto& [id, group] : walk.open) {
    walk.groups.Add(
        Verdict::kMissing, group.sector,
        Words(id, std::to_string(group.pieces.size()) + " of " + std::to_string(group.slots) + " slots"),
        "all its slots");
  }
  walk.signatures.Finish(place.first, "VBLK", remarks);
  walk.groups.Finish(place.first, "all slots of each record", remarks);
  if (walk.leftOut != 0) {
    remarks.push_back("Only the first " + std::to_string(kMostRecords) + " records were read, " +
                      std::to_string(walk.leftOut) + " were left out.");
  }
  return walk.summary;
}

}  // namespace trovisk
