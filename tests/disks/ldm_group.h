// A dynamic disk as Windows lays it out: PRIVHEADs, tables of contents and an object database that agree with
// one another, in the last 2048 sectors of an MBR disk. What a test wants wrong it writes over.

#ifndef TROVISK_TESTS_DISKS_LDM_GROUP_H
#define TROVISK_TESTS_DISKS_LDM_GROUP_H

#include <string>
#include <string_view>
#include <vector>

#include "tests/disks/ldm.h"

namespace trovisk::test {

// Sectors from the start of the configuration area.
inline constexpr u64 kGroupConfigSize = 2048;
inline constexpr u64 kGroupVmdb = 17;
inline constexpr u64 kGroupConfigRegion = 1481;
inline constexpr u64 kGroupLog = 1498;
inline constexpr u64 kGroupLogSize = 224;
inline constexpr u64 kGroupAlternate1 = 2047;
inline constexpr u64 kGroupAlternate2 = 1856;

inline constexpr std::string_view kGroupGuid = "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34";
inline constexpr std::string_view kGroupName = "TEST-Dg0";

// The GUID of the group's n-th disk, from 1 to 9.
std::string GroupDiskGuid(int number);

// Records of objects; every number is written in as many bytes as it needs.
struct VolumeFields {
  u64 id = 0;
  std::string_view name;
  std::string_view type = "gen";  // "raid5"
  u64 typeByte = 3;               // 4: RAID-5
  std::string_view state = "ACTIVE";
  u64 children = 1;
  u64 size = 0;
  u64 partitionType = 7;
  u8 guid = 0x50;              // the first of sixteen that count up
  std::string_view hint = {};  // with the flag that says that it is there
};
VblkRecord VolumeRecord(const VolumeFields& fields);

struct ComponentFields {
  u64 id = 0;
  std::string_view name;
  std::string_view state = "ACTIVE";
  u64 type = 2;  // 1: striped, 2: concatenated, 3: RAID-5
  u64 children = 1;
  u64 volume = 0;
  u64 stripeSize = 0;  // not 0: with the flag that says that it and columns are there
  u64 columns = 0;
};
VblkRecord ComponentRecord(const ComponentFields& fields);

struct PartitionFields {
  u64 id = 0;
  std::string_view name;
  u64 start = 0;
  u64 volumeOffset = 0;
  u64 size = 0;
  u64 component = 0;
  u64 disk = 0;
  int column = -1;  // not below 0: with the flag that says that it is there
};
VblkRecord PartitionRecord(const PartitionFields& fields);

VblkRecord DiskRecord(u64 id, std::string_view name, std::string_view guid, std::string_view device = "");
// The other form, whose GUID is sixteen bytes.
VblkRecord DiskRecord4(u64 id, std::string_view name, const std::array<u8, 16>& guid);
VblkRecord GroupRecord(u64 id, std::string_view name, std::string_view guid);

struct GroupDisk {
  u64 sectors = 32768;  // of the disk; its last 2048 are the configuration area
  int number = 1;       // which of the group's disks it is
  u16 minorVersion = 12;
  std::vector<VblkRecord> records = {};
  ObjectCounts counts = {};  // committed
};

// The n-th slot behind the VMDB, counted from 0.
Sector& PutGroupSlot(Disk& disk, u64 configStart, u64 slot, VblkRecord record);

// A record cut into pieces, one for each of these slots; the first one's group number is that of all.
void PutFragments(Disk& disk, u64 configStart, const std::vector<u64>& slots, const VblkRecord& record);

// The whole disk, with an MBR partition of type 0x42.
Disk MakeGroupDisk(const GroupDisk& group);

// The header that MakeGroupDisk writes.
Privhead GroupPrivhead(const GroupDisk& group);

// Three disks, and a volume of each type on them; on disk 1:
//   Simple E:  1000 sectors at 0
//   Span       2000 at 1000 and 500 at 3000
//   Stripe     4096 at 4096, column 0; disk 2: column 1
//   Mirror     3000 at 8192; disk 2: the other half
//   Raid       2048 at 12288, column 0; disks 2 and 3: columns 1 and 2
std::vector<VblkRecord> FiveVolumes();
inline constexpr ObjectCounts kFiveVolumesCounts = {
    .volumes = 5, .components = 6, .partitions = 10, .disks = 3};

}  // namespace trovisk::test

#endif
