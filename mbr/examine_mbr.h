// The partitions of an MBR disk as other systems read them: those of the master boot record, and the logical
// ones of its extended partitions, whose links count from the start of the outermost one.

#ifndef TROVISK_MBR_EXAMINE_MBR_H
#define TROVISK_MBR_EXAMINE_MBR_H

#include <functional>
#include <optional>
#include <vector>

#include "frame/examination.h"

namespace trovisk {

inline constexpr u8 kTypeProtective = 0xEE;
inline constexpr u8 kTypeDynamicDisk = 0x42;

struct MbrPartition {
  unsigned entry = 0;  // 1 to 4 in its table
  u8 indicator = 0;    // 0x80: active
  u8 type = 0;
  u64 first = 0;  // absolute sector; wide enough for every sum of two entries' numbers
  u64 count = 0;  // sectors
};

struct MasterBootRecord {
  bool readable = false;
  bool endMark = false;
  bool blank = false;  // nothing but zeros
  bool plausible =
      false;  // each used entry's boot indicator is 0x00 or 0x80: what a table has and boot code does not
  u32 signature = 0;
  std::vector<MbrPartition> partitions;  // the used entries, in the table's order
  std::vector<MbrPartition> untyped;  // of type 0, which states no partition, and with sectors all the same

  const MbrPartition* OfType(u8 type) const;  // the first of them, or null
};

// Whether the type is one of those that hold logical partitions: 0x05, 0x0F, 0x85.
bool IsExtendedType(u8 type);

MasterBootRecord ReadMasterBootRecord();

// The protective entry of a GPT disk: starts at sector 1 and covers the disk, or says 0xFFFFFFFF sectors.
// Beside partitions of its own an MBR has one that covers what they leave: not checked then. Layout: UEFI,
// "Protective MBR". lastOnDisk: all ones where unknown.
Check CheckProtectiveEntry(const MasterBootRecord& mbr, const MbrPartition& entry, u64 lastOnDisk);

struct ExtendedRecord {
  u64 sector = 0;  // absolute
  bool readable = false;
  bool endMark = false;
  bool plausible = false;  // it can be an extended boot record: end mark, boot indicators
  std::optional<MbrPartition> logical;
  std::vector<MbrPartition>
      others;               // further partitions of its table, which some systems use and some do not
  std::optional<u64> link;  // to the next record: sectors from the start of the outermost extended partition
};

// The record in a sector, of whose entries the first of either kind is the logical partition and the link.
ExtendedRecord ReadExtendedRecord(u64 sector);

// Whether the 512 bytes can be an extended boot record: end mark, boot indicators.
bool LooksLikeExtendedRecord(Bytes record);

enum class ChainEnd : u8 { kRegular, kCircle, kTooLong, kBroken, kStopped };

// Walks the records of the extended partition, one after the other, at most mostRecords. The walk ends behind
// a record that cannot be read or has no end mark. isKnown: asked of a record's sector before it is read;
// where that gives true the walk stops.
ChainEnd WalkExtended(const MbrPartition& outermost, u64 mostRecords,
                      const std::function<bool(u64 sector)>& isKnown,
                      const std::function<void(const ExtendedRecord&)>& visit);

}  // namespace trovisk

#endif
