// The map of a disk: what the survey has found, for the printers to show.

#ifndef TROVISK_MAP_MODEL_H
#define TROVISK_MAP_MODEL_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"
#include "ldm/dynamic_disk.h"
#include "spaces/storage_spaces.h"

namespace trovisk {

enum class ExtentKind : u8 {
  kPartition,  // of an MBR, a GPT or a dynamic disk
  kLogical,    // of an extended boot record
  kStructure,  // sectors that hold partitioning or configuration structures
  kVolume,     // what stands in a partition or on the bare disk
  kArea,       // a part of a volume or of a configuration
  kGap,        // what nothing claims
};

// What is to be said of an extent beside its place.
enum ExtentFlag : u32 {
  kFlagActive = 1U << 0,        // the boot indicator is set, or attribute bit 2 of a GPT partition
  kFlagContainer = 1U << 1,     // it only holds others: extended, protective, dynamic
  kFlagOverlaps = 1U << 2,      // another partition or a partitioning structure claims some of its sectors
  kFlagBeyondEnd = 1U << 3,     // some of it lies beyond the end of the disk
  kFlagReversed = 1U << 4,      // it ends before it starts, or wraps: last is what the disk states, not where
                                // it ends
  kFlagEmpty = 1U << 5,         // it states no sectors: last equals first
  kFlagHybrid = 1U << 6,        // an MBR partition beside a protective one; where a GPT entry has the same
                                // sectors, both have the flag
  kFlagUnsound = 1U << 7,       // from a copy of the table whose checksums are wrong
  kFlagCopyDiffers = 1U << 8,   // the other copy of the table says something else here
  kFlagOtherReading = 1U << 9,  // not from the usual reading of extended boot records: from the report's, or
                                // a further partition that one of them holds
  kFlagDamaged = 1U << 10,      // a structure stood here, and is invalid or unreadable
  kFlagOtherCopy = 1U << 11,    // from the copy of the GPT that the map does not follow
};

// The flag's name in all output: "active", "container", "overlaps", "beyond-end", "reversed", "empty",
// "hybrid", "unsound", "copy-differs", "other-reading", "damaged", "other-copy".
std::string_view NameOfFlag(ExtentFlag flag);
// The flags' names in the order of their bits.
std::vector<std::string_view> NamesOfFlags(u32 flags);

// A stretch of sectors, absolute and inclusive.
struct Extent {
  u64 first = 0;
  u64 last = 0;
  ExtentKind kind = ExtentKind::kGap;
  u32 flags = 0;
  std::string type = {};      // as stored: "0x07", a GUID in small letters; empty where there is none
  std::string typeName = {};  // "NTFS", "Basic data partition", "FAT 1"
  std::string name = {};      // the partition's name or the volume's label: UTF-8, safe to show
  std::string source = {};    // which structure says so: "MBR entry 1", "GPT entry 3", "NTFS boot sector"
  u64 depth = 0;              // how many extents it lies in, for indenting
  std::string id = {};        // of a GPT partition: its unique GUID in small letters
  u64 attributes = 0;         // of a GPT partition
  bool nameReplaced = false;  // characters of the name, which were not safe to show
  u64 number = 0;             // of a partition in its table, from 1, logical ones from 5; 0: it has none
};

// "partition", "logical", "structure", "volume", "area", "gap".
std::string_view NameOfKind(ExtentKind kind);

// "good", "bad", "missing", "not checked".
std::string_view NameOfVerdict(Verdict verdict);

// Whether a check is bad or missing, or an extent's flags say that something is wrong with it.
bool IsWrong(const Check& check);
bool IsWrong(const Extent& extent);

struct DiskFacts {
  std::string path = {};  // the disk argument, UTF-8, safe to show
  u32 sectorSize = 0;
  u64 sectors = 0;          // 0: unknown
  u64 bytes = 0;            // 0: unknown
  std::string scheme = {};  // "GPT", "MBR", "GPT, hybrid MBR", "none": what partitions it
  std::string id = {};      // the disk GUID or the MBR's disk signature ("0x1234ABCD"), for sfdisk
  // As the header of the GPT that the map follows states them; 0: there is none.
  u64 firstUsable = 0;  // absolute sectors
  u64 lastUsable = 0;
  u64 tableLength = 0;  // entries of the array
};

struct DiskMap {
  DiskFacts disk = {};
  std::vector<Extent> extents = {};  // by first sector, then those that hold others before what they hold
  std::vector<Check> checks = {};    // by sector
  std::optional<DynamicDisk> dynamicDisk = {};
  std::optional<StorageSpaces> storageSpaces = {};
  std::vector<std::string> cut = {};  // sentences: what was left out because there is too much of it
  u64 structures = 0;                 // that were found
  u64 invalidStructures = 0;          // that are invalid or unreadable

  // 0: nothing wrong found; 2: a check is bad or missing, or an extent has a flag that says that it is wrong.
  // A structure that must be where it is invalid has a check that says so; others may be absent.
  int ExitStatus() const;
};

// Of a partition whose type promises a volume and that begins with none that is known.
inline constexpr std::string_view kVolumeRecognised = "volume is recognised";

// How many such partitions there are, and whether there is anything at all that the map could judge.
u64 UnrecognisedVolumes(const DiskMap& map);
bool HasTableOrVolume(const DiskMap& map);

// One field of a table of a structure's report.
struct StructureField {
  std::string label;
  std::string value;
  u64 offset = 0;       // bytes from the start of the sector
  u64 length = 0;       // bytes
  bool placed = false;  // whether offset is known
};

// One structure, or a run of like ones.
struct Structure {
  u64 sector = 0;
  u64 count = 1;          // sectors, as many as are alike: the first one is shown for all
  std::string title;      // the report's description
  std::string structure;  // what it is, for programs: "gpt_header"
  bool valid = true;
  std::vector<std::string> messages;
  std::vector<StructureField> fields;
  std::string text;       // the report's own
  std::vector<u8> bytes;  // of the sector, as the decoder has read them
};

}  // namespace trovisk

#endif
