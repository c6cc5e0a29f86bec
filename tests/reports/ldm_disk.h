// A dynamic disk with one structure of interest, and the report of one of its sectors.

#ifndef TROVISK_TESTS_REPORTS_LDM_DISK_H
#define TROVISK_TESTS_REPORTS_LDM_DISK_H

#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {

// The configuration area starts at sector 100: the table of contents at 102, VMDB at 110, VBLK records at 111
// and 112, KLOG at 120.
inline constexpr u64 kPrivheadSector = 6;
inline constexpr u64 kConfigStart = 100;
inline constexpr u64 kTocSector = 102;
inline constexpr u64 kVmdbSector = 110;
inline constexpr u64 kVblkSector = 111;
inline constexpr u64 kVblkEnd = 112;
inline constexpr u64 kKlogSector = 120;

// An MBR disk with a partition of type 0x42 and nothing behind it yet.
inline Disk DynamicMbrDisk(u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 63, .count = 4000}}});
  return disk;
}

inline Privhead SmallPrivhead() {
  return {.alternate1 = 60, .alternate2 = 61, .configStart = kConfigStart, .tocSize = 50};
}

inline TocBlock SmallTocBlock() {
  return {.config = {.name = "config", .start = 10, .size = 3},
          .log = {.name = "log", .start = 20, .size = 2}};
}

// The same with PRIVHEAD and table of contents, no alternates.
inline Disk DynamicDisk(u32 sectorSize = 512) {
  Disk disk = DynamicMbrDisk(sectorSize);
  PutPrivhead(disk, kPrivheadSector, SmallPrivhead());
  PutTocBlock(disk, kTocSector, SmallTocBlock());
  return disk;
}

// The report of one sector. PRIVHEAD writes an empty line in both passes, whether its sector was asked for or
// not.
inline std::string LdmReportOf(const Disk& disk, u64 sector) {
  const std::string report = ReportOf(disk, sector, "\n");
  EXPECT_EQ(report.substr(0, 1), "\n");
  return report.empty() ? report : report.substr(1);
}

// The same disk with a VMDB, so that the walk gets to the records, and with one record.
inline Disk DiskWithRecord(const VblkRecord& record, std::size_t slot = 0) {
  Disk disk = DynamicDisk();
  PutVmdb(disk, kVmdbSector, {});
  PutVblk(disk, kVblkSector, slot, record);
  return disk;
}

// The part of a record's report that its type makes: from the line behind "Record Type" up to the flags.
inline std::string TypeBlockOf(const VblkRecord& record, std::size_t slot = 0) {
  const std::string report = LdmReportOf(DiskWithRecord(record, slot), kVblkSector);
  const std::size_t type = report.find("\nRecord Type   : ");
  const std::size_t start = report.find('\n', type + 1) + 1;
  const std::size_t end = report.find("\nFlags         : 0x") + 1;
  EXPECT_TRUE(type != std::string::npos && end > start) << report;
  return end > start ? report.substr(start, end - start) : report;
}

// The table of contents of such a disk, from the rows behind those of sectors 0 and 6.
inline std::string TocWithMbr(const std::string& rest) {
  return "         0\tMaster Boot Record\n         6\tPRIVHEAD Sector\n" + rest;
}

}  // namespace trovisk::test

#endif
