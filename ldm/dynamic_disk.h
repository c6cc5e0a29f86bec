// What the records of a dynamic disk's object database say together: the disk group, its disks, and each
// volume with its components and their partitions.

#ifndef TROVISK_LDM_DYNAMIC_DISK_H
#define TROVISK_LDM_DYNAMIC_DISK_H

#include <optional>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

struct DynamicPartition {
  u64 id = 0;  // object identifier
  std::string name = {};
  u64 diskId = 0;
  std::string disk = {};  // name of the disk's record; empty: there is none
  bool onThisDisk = false;
  u64 start = 0;          // sectors from the disk's logical start
  u64 absoluteStart = 0;  // where it is on this disk: absolute sector; all ones: beyond any
  u64 size = 0;           // sectors
  u64 volumeOffset = 0;   // sectors from the start of its component
  u64 column = 0;         // of a striped or RAID-5 component
};

struct DynamicComponent {
  u64 id = 0;
  std::string name = {};
  std::string type = {};  // "striped", "concatenated", "RAID-5"; for others "unknown 0xNN"
  std::string state = {};
  u64 stripeSize = 0;  // sectors, 0: none
  u64 columns = 0;
  std::vector<DynamicPartition> partitions = {};  // by column, then by offset
};

struct DynamicVolume {
  u64 id = 0;
  std::string name = {};
  std::string type = {};  // "simple", "spanned", "striped", "mirrored", "RAID-5"; without components
                          // "unknown", with one of an unknown type that
  std::string state = {};
  u64 size = 0;           // sectors
  std::string hint = {};  // drive letter, empty: none
  std::string guid = {};
  u64 partitionType = 0;
  std::vector<DynamicComponent> components = {};
};

struct DynamicDiskMember {
  u64 id = 0;
  std::string name = {};
  std::string guid = {};
  std::string device = {};  // its last known name, as the record's alternate name says; empty: none
  bool thisDisk = false;
};

struct DynamicDisk {
  std::string groupName = {};
  std::string groupGuid = {};
  std::string diskGuid = {};     // of this disk, as its PRIVHEAD says; GUIDs are in small letters
  u64 logicalStart = 0;          // absolute sector
  u64 logicalSize = 0;           // sectors
  u64 databaseStart = 0;         // absolute sector of the configuration area
  u64 databaseSize = 0;          // sectors
  std::vector<Area> areas = {};  // of the configuration area: PRIVHEADs, TOCBLOCKs, VMDB, VBLKs, log
  std::vector<DynamicDiskMember> disks = {};
  std::vector<DynamicVolume> volumes = {};
  std::vector<DynamicPartition> orphans = {};  // partitions whose component or volume is not there
  std::vector<std::string> remarks;            // what does not fit together, a sentence each
};

// Reads the configuration of a dynamic disk whose PRIVHEAD stands (or should stand) in the sector, from the
// sound copies, and judges the copies. None where no PRIVHEAD is found at all. sector: 6 on an MBR disk, the
// last one of the LDM metadata partition on a GPT disk. Record numbers are bounded by the area's size; what
// is cut is said in remarks.
std::optional<DynamicDisk> ExamineDynamicDisk(u64 sector, u64 lastOnDisk, std::vector<Check>& checks);

}  // namespace trovisk

#endif
