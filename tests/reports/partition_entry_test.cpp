// Partition table entries: what is printed of one, and what its type registers.

#include <gtest/gtest.h>

#include <sstream>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

// What an inactive entry of that type registers in the sector that it points to.
std::string DescriptionOf(int type) {
  switch (type) {
    case 0x01:
    case 0x04:
    case 0x06:
    case 0x0E:
      return "FAT Boot Sector";
    case 0x0B:
    case 0x0C:
      return "FAT32 Boot Sector";
    case 0x05:
    case 0x0F:
      return "Supplementary Boot Record";
    case 0x07:
      return "NTFS Boot Sector";
    case 0xDE:
      return "Dell Utility Partition";
    default:
      return "";
  }
}

Disk DiskWith(const PartitionEntry& entry) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {entry}});
  return disk;
}

// The report's lines of the first entry.
std::string EntryOf(const Disk& disk) {
  const std::string heading = "Partition table entries\n\n";
  const std::string report = ReportOf(disk, 0);
  const std::size_t first = report.find(heading) + heading.size();
  return report.substr(first, report.find("\n\n", first) + 2 - first);
}

// The names of a report's entries, in their order.
std::vector<std::string> NamesIn(const std::string& report) {
  const std::string begin = "\tInactive [ ";
  std::vector<std::string> names;
  for (std::size_t at = report.find(begin); at != std::string::npos; at = report.find(begin, at)) {
    at += begin.size();
    names.push_back(report.substr(at, report.find(" ]\n", at) - at));
  }
  return names;
}

// Of every type byte: a name, and the one sector that it registers. Four to a disk; those from 0xEC on make
// the disk GPT, those from 0x40 on dynamic.
TEST(PartitionEntry, NamesAndRegistersEveryType) {
  int named = 0;
  for (int type = 0; type < 0x100; type += 4) {
    SCOPED_TRACE(type);
    BootRecord record;
    std::ostringstream rows;
    rows << "         0\tMaster Boot Record\n";
    if (type == 0xEC) rows << "         1\tPrimary GPT Header\n";
    if (type == 0x40) rows << "         6\tPRIVHEAD Sector\n";
    for (int i = 0; i < 4; ++i) {
      const int first = 100 + i;
      record.entries[i] = {.type = static_cast<u8>(type + i), .first = static_cast<u32>(first), .count = 1};
      if (const std::string description = DescriptionOf(type + i); !description.empty()) {
        rows << "       " << first << "\t" << description << "\n";
      }
    }
    Disk disk;
    PutBootRecord(disk, 0, record);
    const std::string report = ReportOf(disk, 0);
    const std::size_t at = report.find("\nPartition table entries\n\n");
    ASSERT_NE(at, std::string::npos);
    const std::vector<std::string> names = NamesIn(report);
    ASSERT_EQ(names.size(), type == 0 ? 3U : 4U);
    std::ostringstream entries;
    if (type == 0) entries << "\tEmpty\n\n";
    for (std::size_t i = 4 - names.size(); i < 4; ++i) {
      const std::string& name = names[i - (4 - names.size())];
      named += name != "unknown" ? 1 : 0;
      entries << "\tInactive [ " << name << " ]\n\tC/H/S 0/0/0 - 0/0/0\n"
              << "\tPartition Sectors [ " << 100 + i << " - " << 100 + i << " ]\n\n";
    }
    EXPECT_TRUE(SameText(report.substr(at, report.find("Sector End Mark", at) - at),
                         "\nPartition table entries\n\n" + entries.str() + "\n\n"));
    EXPECT_TRUE(SameText(TocOf(disk), rows.str()));
  }
  EXPECT_EQ(named, 90);
}

// Some names have lost their end on the way.
TEST(PartitionEntry, SomeNames) {
  const std::pair<u8, std::string> some[] = {{0x07, "NTFS"},         {0x0C, "Win95 FAT-32 (LBA"},
                                             {0x0D, "unknown"},      {0x83, "Linux ext2"},
                                             {0xDE, "Dell Utility"}, {0xFF, "BBT"}};
  for (const auto& [type, name] : some)
    EXPECT_EQ(NamesIn(ReportOf(DiskWith({.type = type, .first = 100}), 0)), std::vector<std::string>{name});
}

// Only 0x80 is active, as printed.
TEST(PartitionEntry, ActiveIsOneValueOfTheBootIndicator) {
  for (const u8 indicator : std::vector<u8>{0x00, 0x01, 0x7F, 0x81, 0xFF}) {
    const Disk disk = DiskWith({.bootIndicator = indicator, .type = 0x83, .first = 63, .count = 2});
    EXPECT_EQ(EntryOf(disk),
              "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 64 ]\n\n");
  }
  const Disk disk = DiskWith({.bootIndicator = 0x80, .type = 0x83, .first = 63, .count = 2});
  EXPECT_EQ(EntryOf(disk),
            "\tActive   [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 64 ]\n\n");
}

// The type alone makes an entry empty, whatever else stands in it.
TEST(PartitionEntry, EmptyHidesEveryOtherField) {
  const Disk disk =
      DiskWith({.bootIndicator = 0x80, .startHead = 1, .endSector = 63, .first = 63, .count = 9});
  EXPECT_EQ(EntryOf(disk), "\tEmpty\n\n");
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n");
}

// On a dynamic disk only a partition that something may boot from holds a boot sector: any non-zero indicator
// counts, though only 0x80 is shown as active.
TEST(PartitionEntry, DynamicRegistersItsBootSectorUnlessTheIndicatorIsZero) {
  const std::string rows = "         0\tMaster Boot Record\n         6\tPRIVHEAD Sector\n";
  const std::string extent = "[ Dynamic Disk ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 162 ]\n\n";
  PartitionEntry entry{.type = 0x42, .first = 63, .count = 100};
  EXPECT_EQ(EntryOf(DiskWith(entry)), "\tInactive " + extent);
  EXPECT_EQ(TocOf(DiskWith(entry)), rows);
  entry.bootIndicator = 0x01;
  EXPECT_EQ(EntryOf(DiskWith(entry)), "\tInactive " + extent);
  EXPECT_EQ(TocOf(DiskWith(entry)), rows + "        63\tDynamic Boot Sector\n");
  entry.bootIndicator = 0x80;
  EXPECT_EQ(EntryOf(DiskWith(entry)), "\tActive   " + extent);
  EXPECT_EQ(TocOf(DiskWith(entry)), rows + "        63\tDynamic Boot Sector\n");
}

TEST(PartitionEntry, LargestCountIsLarge) {
  const Disk disk = DiskWith({.type = 0x83, .first = 63, .count = 0xFFFFFFFF});
  EXPECT_EQ(EntryOf(disk),
            "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - LARGE ]\n\n");
}

// One less than the largest count is a number like any other, and the sum wraps in 32 bits.
TEST(PartitionEntry, LastSectorWrapsIn32Bits) {
  const struct {
    u32 first;
    u32 count;
    const char* extent;
  } kCases[] = {
      {63, 0xFFFFFFFE, "[ 63 - 60 ]"},
      {0xFFFFFFFF, 2, "[ 4294967295 - 0 ]"},
      {0xFFFFFFFF, 1, "[ 4294967295 - 4294967295 ]"},
      {0x80000000, 0x80000000, "[ 2147483648 - 4294967295 ]"},
      {63, 0, "[ 63 - 62 ]"},
      {0, 0, "[ 0 - 4294967295 ]"},
      {0, 0xFFFFFFFF, "[ 0 - LARGE ]"},
  };
  for (const auto& extents : kCases) {
    const Disk disk = DiskWith({.type = 0x83, .first = extents.first, .count = extents.count});
    EXPECT_EQ(EntryOf(disk),
              std::string("\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors ") +
                  extents.extent + "\n\n");
  }
}

// Bits 6 and 7 of the sector byte are bits 8 and 9 of the cylinder: 0x41 is sector 1 of 256 and up, 0xBF
// sector 63 of 512 and up.
TEST(PartitionEntry, CylinderTakesTwoBitsOfTheSectorByte) {
  const Disk disk = DiskWith({.startHead = 1,
                              .startSector = 0x41,
                              .startCylinder = 2,
                              .type = 0x83,
                              .endHead = 254,
                              .endSector = 0xBF,
                              .endCylinder = 0xFE,
                              .first = 63,
                              .count = 1});
  EXPECT_EQ(EntryOf(disk),
            "\tInactive [ Linux ext2 ]\n\tC/H/S 258/1/1 - 766/254/63\n\tPartition Sectors [ 63 - 63 ]\n\n");
  const Disk full = DiskWith({.startHead = 255,
                              .startSector = 0xC0,
                              .startCylinder = 0,
                              .type = 0x83,
                              .endHead = 255,
                              .endSector = 0xFF,
                              .endCylinder = 0xFF,
                              .first = 63,
                              .count = 1});
  EXPECT_EQ(
      EntryOf(full),
      "\tInactive [ Linux ext2 ]\n\tC/H/S 768/255/0 - 1023/255/63\n\tPartition Sectors [ 63 - 63 ]\n\n");
}

TEST(PartitionEntry, FirstOfTwoPartitionsInOneSectorIsRegistered) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0F, .first = 100}, {.type = 0x07, .first = 100}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n       100\tSupplementary Boot Record\n");
}

// The planted sector 0 stays what it is.
TEST(PartitionEntry, PartitionInSectorZeroChangesNothing) {
  EXPECT_EQ(TocOf(DiskWith({.type = 0x07, .first = 0, .count = 10})), "         0\tMaster Boot Record\n");
}

// Overlapping partitions, and one beyond the end of the disk, are registered as found.
TEST(PartitionEntry, ExtentsAreNotValidated) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x07, .first = 100, .count = 1000},
                             {.type = 0x07, .first = 500, .count = 1000},
                             {.type = 0x07, .first = 0xFFFFFFFF, .count = 1000}}});
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n       100\tNTFS Boot Sector\n       500\tNTFS Boot Sector\n"
            "4294967295\tNTFS Boot Sector\n");
}

}  // namespace
}  // namespace trovisk::test
