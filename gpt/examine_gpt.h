// The GUID partition table as other systems read it: both copies, with their checksums.

#ifndef TROVISK_GPT_EXAMINE_GPT_H
#define TROVISK_GPT_EXAMINE_GPT_H

#include <array>
#include <string>
#include <vector>

#include "frame/examination.h"

namespace trovisk {

struct GptPartition {
  u64 number = 0;  // from 1: the entry's place in the array
  std::array<u8, 16> type{};
  std::array<u8, 16> unique{};
  u64 first = 0;  // absolute sectors, inclusive, as stored: last may lie before first
  u64 last = 0;
  u64 attributes = 0;
  std::string name;           // UTF-8, safe to show
  bool nameReplaced = false;  // characters of it were replaced for that

  bool operator==(const GptPartition&) const = default;
};

// One copy: a header and the array that it names.
struct GptCopy {
  std::string which;  // "primary", "backup"
  u64 sector = 0;     // absolute, where the header was looked for
  bool readable = false;
  bool present = false;      // the signature stands there
  bool headerSound = false;  // and the header's checksum is right
  bool arraySound = false;   // and the array's

  u64 ownLba = 0;
  u64 otherLba = 0;
  u64 firstUsable = 0;
  u64 lastUsable = 0;
  u64 entriesLba = 0;
  u64 entryCount = 0;
  u64 entrySize = 0;     // bytes
  u64 arraySectors = 0;  // rounded up; 0 where the header's numbers make no sense
  u32 arrayCrc = 0;      // as the header states it
  std::array<u8, 16> diskGuid{};
  std::vector<GptPartition> partitions;  // the used entries, the first kMostGptPartitions of them
  u64 usedEntries = 0;

  // A header that says that it stands elsewhere is not believed, as by other systems.
  bool Sound() const { return headerSound && arraySound && ownLba == sector; }
};

// Used entries beyond so many are counted, not kept.
inline constexpr u64 kMostGptPartitions = u64{1} << 13;

// Reads the copy whose header stands (or should stand) in the sector, and judges it by itself. lastOnDisk:
// all ones where unknown. which: "primary" or "backup".
GptCopy ExamineGptCopy(std::string_view which, u64 sector, u64 lastOnDisk, std::vector<Check>& checks);

// Whether the array that stands there, from its first sector on, is the one that the copy's header has the
// checksum of.
bool IsGptArray(const GptCopy& copy, u64 first);

// Judges the two copies against each other, where both are present.
void CheckGptAgreement(const GptCopy& primary, const GptCopy& backup, std::vector<Check>& checks);

// Judges the partitions of a copy: within the usable sectors, none reversed, none over another.
void CheckGptPartitions(const GptCopy& copy, std::vector<Check>& checks);

// The registry form in small letters, without braces.
std::string GuidText(const std::array<u8, 16>& guid);

}  // namespace trovisk

#endif
