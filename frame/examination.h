// What is found on a disk beside the report of its structures: checks with their verdicts, and the areas that
// structures state. Each structure's examination stands in its folder, beside the fields that it needs; it
// reads by sector number and prints nothing.

#ifndef TROVISK_FRAME_EXAMINATION_H
#define TROVISK_FRAME_EXAMINATION_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

enum class Verdict : u8 {
  kGood,
  kBad,
  kMissing,     // what is expected at this place is not there, or cannot be read
  kNotChecked,  // and expected says why
};

// One question that was asked of the disk.
struct Check {
  u64 sector = 0;         // absolute, of the structure that is judged
  std::string name = {};  // the same words on every disk, e.g. "GPT header CRC-32"
  Verdict verdict = Verdict::kNotChecked;
  std::string found = {};     // as the disk has it; UTF-8, safe to show
  std::string expected = {};  // what it should be
};

// A stretch of sectors that a structure states, absolute and inclusive. Where the structure is damaged last
// may lie beyond the end of the disk, never before first.
struct Area {
  u64 first = 0;
  u64 last = 0;
  std::string name;  // of the area, e.g. "FAT 1", "$MFT"
};

// Where a volume stands. All in sectors of the disk.
struct VolumePlace {
  u64 sector = 0;      // its first one, absolute
  u64 sectors = 0;     // of the partition around it; 0: no partition says
  u64 lastOnDisk = 0;  // all ones: unknown
};

// What an examination tells of a volume.
struct VolumeFindings {
  std::string type;   // "NTFS", "FAT32", "exFAT", ...
  std::string label;  // UTF-8, where the boot sector holds one
  u64 sectors = 0;    // as its own boot sector states, in sectors of the disk; 0: not stated
  std::vector<Area> areas;
  std::vector<Check> checks;
};

// The sectors first up to first + count, or none where they cannot be read as a whole. For what is small:
// at most 1 MiB at once. The error lines of the disk layer go where errors go at the time.
std::optional<std::vector<u8>> ReadSectors(u64 first, u64 count);

// A check of two numbers or texts: good where they are equal.
Check CheckEqual(u64 sector, std::string_view name, u64 found, u64 expected);
Check CheckEqual(u64 sector, std::string_view name, std::string found, std::string expected);

// Eight digits, capitals, behind "0x": how a CRC-32 is written.
std::string Hex32(u64 value);

// Control characters, what changes the direction of the text around it, line and paragraph separators, and
// noncharacters: what text that is shown must not hold.
bool IsUnsafeToShow(char32_t character);

// Sixteen bytes in the order in which they are stored, as a GUID in small letters; fewer: empty.
std::string StoredGuidText(Bytes bytes);

// Text of the disk as UTF-8 that is safe to show: '?' for control characters, for what overrides the
// direction of text and for what is no character; it ends at the first NUL. units: UTF-16, little-endian.
// replaced: set where a character was.
std::string SafeUtf16(Bytes units, bool* replaced = nullptr);
// The same for text that claims to be UTF-8 already.
std::string SafeUtf8(std::string_view text);
// The same for text of one byte a character: '?' for what is no printable ASCII; without blanks at its end.
std::string SafeAscii(Bytes characters);

}  // namespace trovisk

#endif
