// Builders of master and extended boot records.

#ifndef TROVISK_TESTS_DISKS_MBR_H
#define TROVISK_TESTS_DISKS_MBR_H

#include "tests/disks/disk.h"

namespace trovisk::test {

struct PartitionEntry {
  u8 bootIndicator = 0;
  u8 startHead = 0;
  u8 startSector = 0;  // with cylinder bits 8 and 9 in its bits 6 and 7
  u8 startCylinder = 0;
  u8 type = 0;
  u8 endHead = 0;
  u8 endSector = 0;
  u8 endCylinder = 0;
  u32 first = 0;  // relative to the table's sector
  u32 count = 0;
};

struct BootRecord {
  u32 diskSignature = 0;
  PartitionEntry entries[4] = {};
  u16 endMark = 0xAA55;
};

// Writes signature, entries and end mark, nothing else. Used for master and extended boot records.
Sector& PutBootRecord(Disk& disk, u64 sector, const BootRecord& record);

}  // namespace trovisk::test

#endif
