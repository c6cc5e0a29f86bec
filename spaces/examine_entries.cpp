// SDBB, the records of a Storage Spaces database: an entry takes one of them, or several, which all name the
// first one as their parent.
//
// Big-endian. There is no published description: the layout is what is known from disks.
// Checked: that an entry's parts agree in their number, and are all there once. Not checked: what an entry
// says.

#include "spaces/examine_entries.h"

#include <string>

#include "spaces/sdbb_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostEntries = std::size_t{1} << 14;
constexpr u64 kMostOfOneName = 16;

std::string TypeName(u64 type) {
  return "type 0x" + Hex32(type).substr(6);
}

std::string Words(u64 id, u64 found, u64 stated) {
  return "entry " + std::to_string(id) + ": " + std::to_string(found) + " of " + std::to_string(stated) +
         " parts";
}

}  // namespace

void SpacesEntries::TakeSector(u64 sector, Bytes records) {
  for (u64 i = 0; i < sdbb::kRecords; ++i) {
    const Bytes record = SliceAt(records, i * sdbb::kRecordSize, sdbb::kRecordSize);
    const u64 stated = Be16At(record, sdbb::kPartCount);
    if (stated == 0) continue;
    const u64 id = Be32At(record, sdbb::kParent);
    if (entries_.size() == kMostEntries && !entries_.contains(id)) {
      ++leftOut_;
      continue;
    }
    Entry& entry = entries_[id];
    if (entry.stated == 0) {
      entry.sector = sector;
      entry.stated = stated;
    }
    const u64 index = Be16At(record, sdbb::kPartIndex);
    const u64 bit = index < 64 ? u64{1} << index : 0;
    if (stated != entry.stated || index >= stated || (entry.parts & bit) != 0) entry.contradicts = true;
    entry.parts |= bit;
    ++entry.found;
    if (index == 0) {
      entry.type = Be16At(record, sdbb::kEntryType);
      entry.sector = sector;
    }
  }
}

void SpacesEntries::Finish(u64 sector, StorageSpaces& spaces, std::vector<Check>& checks) const {
  u64 wrong = 0;
  for (const auto& [id, entry] : entries_) {
    const bool first = (entry.parts & 1) != 0;
    spaces.objects.push_back({.id = id,
                              .kind = first ? TypeName(entry.type) : "unknown",
                              .name = {},
                              .guid = {},
                              .parts = entry.found});
    const bool whole = entry.found == entry.stated && first;
    if (whole && !entry.contradicts) continue;
    if (++wrong > kMostOfOneName) continue;
    checks.push_back({entry.sector, "SDBB parts", entry.contradicts ? Verdict::kBad : Verdict::kMissing,
                      Words(id, entry.found, entry.stated) + (entry.contradicts ? " that contradict" : ""),
                      "each part once"});
  }
  if (wrong == 0) {
    checks.push_back({sector, "SDBB parts", Verdict::kGood, "each part once", "each part once"});
  } else if (wrong > kMostOfOneName) {
    spaces.remarks.push_back(std::to_string(wrong) +
                             " entries lack parts or contradict themselves; the first " +
                             std::to_string(kMostOfOneName) + " are shown.");
  }
  if (leftOut_ != 0) {
    spaces.remarks.push_back("Only the first " + std::to_string(kMostEntries) + " entries were read; " +
                             std::to_string(leftOut_) + " records of others were left out.");
  }
}

}  // namespace trovisk
