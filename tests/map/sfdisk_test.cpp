// The script for sfdisk: every field of a partition, and what sfdisk would refuse.

#include "map/sfdisk.h"

#include <gtest/gtest.h>

namespace trovisk::test {
namespace {

constexpr char kLinux[] = "0fc63daf-8483-4772-8e79-3d69d8477de4";
constexpr char kId[] = "a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f";

DiskMap GptDisk() {
  DiskMap map;
  map.disk.scheme = "GPT";
  map.disk.sectorSize = 512;
  map.disk.sectors = 100000;
  map.disk.id = "9abcdef0-1234-5678-9abc-def012345678";
  map.disk.firstUsable = 34;
  map.disk.lastUsable = 99966;
  map.disk.tableLength = 128;
  return map;
}

Extent GptPartition(u64 number, u64 first, u64 last) {
  return {.first = first,
          .last = last,
          .kind = ExtentKind::kPartition,
          .type = kLinux,
          .id = kId,
          .number = number};
}

DiskMap MbrDisk() {
  DiskMap map;
  map.disk.scheme = "MBR";
  map.disk.sectorSize = 512;
  map.disk.sectors = 100000;
  map.disk.id = "0x1234ABCD";
  return map;
}

Extent MbrPartition(u64 number, u64 first, u64 last, const std::string& type = "0x07") {
  return {.first = first,
          .last = last,
          .kind = number < 5 ? ExtentKind::kPartition : ExtentKind::kLogical,
          .type = type,
          .number = number};
}

// What stands behind the header's empty line.
std::string Lines(const DiskMap& map) {
  const std::string script = MapAsSfdisk(map);
  return script.substr(script.find("\n\n") + 2);
}

std::string LinesOfGpt(const std::vector<Extent>& extents) {
  DiskMap map = GptDisk();
  map.extents = extents;
  return Lines(map);
}

std::string LinesOfMbr(const std::vector<Extent>& extents) {
  DiskMap map = MbrDisk();
  map.extents = extents;
  return Lines(map);
}

TEST(SfdiskScript, GptHasItsHeaderAndPartitionsByNumber) {
  DiskMap map = GptDisk();
  map.extents = {GptPartition(128, 34, 34), GptPartition(2, 2048, 99966)};
  map.extents[1].name = "data";
  map.extents[1].attributes = 0x8001000000000007;
  EXPECT_EQ(MapAsSfdisk(map),
            "label: gpt\n"
            "label-id: 9abcdef0-1234-5678-9abc-def012345678\n"
            "unit: sectors\n"
            "first-lba: 34\n"
            "last-lba: 99966\n"
            "table-length: 128\n"
            "sector-size: 512\n"
            "\n"
            "disk2 : start=2048, size=97919, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f, name=\"data\", "
            "attrs=\"RequiredPartition NoBlockIOProtocol LegacyBIOSBootable GUID:48,63\"\n"
            "disk128 : start=34, size=1, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f\n");
}

TEST(SfdiskScript, MbrHasItsLogicalPartitionsByNumber) {
  DiskMap map = MbrDisk();
  map.extents = {MbrPartition(2, 63, 62 + 1000), MbrPartition(1, 2048, 50000, "0x0f"),
                 MbrPartition(5, 2111, 3000, "0x83"), MbrPartition(6, 3064, 50000, "0x0b")};
  map.extents[0].flags = kFlagActive;
  map.extents[1].flags = kFlagContainer;
  EXPECT_EQ(MapAsSfdisk(map),
            "label: dos\n"
            "label-id: 0x1234ABCD\n"
            "unit: sectors\n"
            "sector-size: 512\n"
            "\n"
            "disk1 : start=2048, size=47953, type=0f\n"
            "disk2 : start=63, size=1000, type=07, bootable\n"
            "disk5 : start=2111, size=890, type=83\n"
            "disk6 : start=3064, size=46937, type=0b\n");
}

TEST(SfdiskScript, HybridDiskIsRebuiltAsGpt) {
  DiskMap map = GptDisk();
  map.disk.scheme = "GPT, hybrid MBR";
  map.extents = {MbrPartition(1, 1, 33, "0xee"), MbrPartition(2, 2048, 4095), GptPartition(1, 2048, 4095)};
  EXPECT_EQ(Lines(map),
            "disk1 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f\n"
            "\n"
            "# the MBR states too:\n"
            "# disk2 : start=2048, size=2048, type=07\n");
}

TEST(SfdiskScript, TableWithoutRightChecksumsSaysSo) {
  DiskMap map = GptDisk();
  map.extents = {GptPartition(1, 2048, 4095)};
  map.extents[0].flags = kFlagUnsound;
  EXPECT_EQ(Lines(map),
            "# no copy of this table has the checksums that it should have\n"
            "disk1 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f\n");
}

TEST(SfdiskScript, GptThatTheMbrDoesNotLeadToIsAComment) {
  DiskMap map;
  map.disk.scheme = "MBR";
  map.disk.sectorSize = 512;
  map.extents = {MbrPartition(1, 63, 100), GptPartition(1, 2048, 4095)};
  EXPECT_EQ(Lines(map),
            "disk1 : start=63, size=38, type=07\n"
            "\n"
            "# a GPT on this disk, which no entry of the MBR leads to, states:\n"
            "# disk1 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f\n");
}

TEST(SfdiskScript, WhatIsCutIsSaid) {
  DiskMap map = MbrDisk();
  map.cut = {"Of 5000 logical partitions the first 4096 are shown."};
  EXPECT_EQ(Lines(map), "# Of 5000 logical partitions the first 4096 are shown.\n");
}

TEST(SfdiskScript, NoTableIsAComment) {
  DiskMap map;
  map.disk.scheme = "none";
  EXPECT_EQ(MapAsSfdisk(map), "# no partition table was found\n");
}

TEST(SfdiskScript, DynamicPartitionsAreNotInTheTable) {
  Extent dynamic = MbrPartition(0, 64, 100);
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 63, 99000, "0x42"), dynamic}),
            "disk1 : start=63, size=98938, type=42\n");
}

TEST(SfdiskScript, NameCannotLeaveItsQuotes) {
  Extent extent = GptPartition(1, 2048, 4095);
  extent.name = "a\"b\\c`$d, </script>\n#\x7f \u00e9";
  EXPECT_EQ(LinesOfGpt({extent}),
            "disk1 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f, "
            "name=\"a\\x22b\\x5cc\\x60\\x24d, </script>\\x0a#\\x7f \u00e9\"\n");
}

TEST(SfdiskScript, AttributesThatSfdiskDoesNotWriteAreSaid) {
  Extent extent = GptPartition(3, 2048, 4095);
  extent.attributes = u64{1} << 47;
  const std::string line =
      "disk3 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
      "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f\n";
  EXPECT_EQ(LinesOfGpt({extent}), line + "# of disk3 sfdisk does not write attribute bits 3 to 47\n");
  extent.attributes = 1 << 3;
  EXPECT_EQ(LinesOfGpt({extent}), line + "# of disk3 sfdisk does not write attribute bits 3 to 47\n");
}

TEST(SfdiskScript, CharactersThatAreNotWrittenAreSaid) {
  Extent extent = GptPartition(3, 2048, 4095);
  extent.name = "a?b";
  extent.nameReplaced = true;
  EXPECT_EQ(LinesOfGpt({extent}),
            "disk3 : start=2048, size=2048, type=0fc63daf-8483-4772-8e79-3d69d8477de4, "
            "uuid=a0b1c2d3-e4f5-4607-8819-2a3b4c5d6e7f, name=\"a?b\"\n"
            "# in the name of disk3 ? stands for other characters\n");
}

// A header that states what cannot be would make sfdisk refuse the script as a whole.
TEST(SfdiskScript, ImpossibleHeaderGivesWayToTheRegularOne) {
  const std::string regular = "unit: sectors\nfirst-lba: 34\nlast-lba: 99966\ntable-length: 128\n";
  const std::string stated = "unit: sectors\nfirst-lba: 35\nlast-lba: 99965\ntable-length: 127\n";
  const auto written = [](u64 first, u64 last, u64 entries) {
    DiskMap map = GptDisk();
    map.disk.firstUsable = first;
    map.disk.lastUsable = last;
    map.disk.tableLength = entries;
    return MapAsSfdisk(map);
  };
  EXPECT_NE(written(35, 99965, 127).find(stated), std::string::npos);
  EXPECT_NE(written(33, 99966, 128).find(regular), std::string::npos) << "over the array";
  EXPECT_NE(written(34, 99967, 128).find(regular), std::string::npos) << "over the backup array";
  EXPECT_NE(written(34, 99966, 129).find(regular), std::string::npos) << "an array that is longer";
  EXPECT_NE(written(34, 99966, 0).find(regular), std::string::npos) << "no entries";
  EXPECT_NE(written(34, 99966, 0xFFFFFFFF).find(regular), std::string::npos) << "more than the disk holds";
  EXPECT_NE(written(~u64{0}, 0, 128).find(regular), std::string::npos) << "reversed";
}

TEST(SfdiskScript, DiskTooSmallForAGptHasNoRange) {
  DiskMap map = GptDisk();
  map.disk.sectors = 10;
  EXPECT_EQ(MapAsSfdisk(map).find("first-lba"), std::string::npos);
}

TEST(SfdiskScript, MbrSignatureIsNoLabelOfAGpt) {
  DiskMap map = GptDisk();
  map.disk.id = "0x1234ABCD";
  EXPECT_EQ(MapAsSfdisk(map).find("label-id"), std::string::npos);
}

// Each of these lines alone would end sfdisk's work.
TEST(SfdiskRefusals, EmptyReversedAndBeyondTheEnd) {
  Extent empty = MbrPartition(1, 100, 100);
  empty.flags = kFlagEmpty;
  Extent beyond = MbrPartition(2, 99999, 100000);
  beyond.flags = kFlagBeyondEnd;
  EXPECT_EQ(LinesOfMbr({empty, beyond}),
            "# no sectors: disk1 : start=100, type=07\n"
            "# beyond the end of the disk: disk2 : start=99999, size=2, type=07\n");
  Extent reversed = GptPartition(1, 3000, 2999);
  reversed.flags = kFlagReversed;
  EXPECT_EQ(LinesOfGpt({reversed}).substr(0, 49), "# ends before it starts: disk1 : start=3000, type");
}

TEST(SfdiskRefusals, SecondOfTwoThatOverlap) {
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 1000, 1999), MbrPartition(2, 500, 1000), MbrPartition(3, 1999, 2000),
                        MbrPartition(4, 2000, 2000)}),
            "disk1 : start=1000, size=1000, type=07\n"
            "# over another one: disk2 : start=500, size=501, type=07\n"
            "# over another one: disk3 : start=1999, size=2, type=07\n"
            "disk4 : start=2000, size=1, type=07\n");
}

TEST(SfdiskRefusals, OutsideOfTheUsableSectors) {
  const std::string text = LinesOfGpt({GptPartition(1, 33, 40), GptPartition(2, 41, 99967),
                                       GptPartition(3, 34, 99966), GptPartition(129, 50, 50)});
  EXPECT_EQ(text.find("# outside of the usable sectors: disk1 "), 0U);
  EXPECT_NE(text.find("\n# outside of the usable sectors: disk2 "), std::string::npos);
  EXPECT_NE(text.find("\ndisk3 "), std::string::npos);
  EXPECT_NE(text.find("\n# beyond the end of the array: disk129 "), std::string::npos);
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 0, 9)}),
            "# outside of the usable sectors: disk1 : start=0, size=10, type=07\n");
}

TEST(SfdiskRefusals, LogicalPartitionWithoutRoomForItsRecord) {
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 1000, 4000, "0x05"), MbrPartition(5, 1000, 1100),
                        MbrPartition(6, 1001, 1100), MbrPartition(7, 1101, 1200), MbrPartition(8, 1102, 4000),
                        MbrPartition(9, 3999, 4001)}),
            "disk1 : start=1000, size=3001, type=05\n"
            "# outside of the extended partition: disk5 : start=1000, size=101, type=07\n"
            "disk6 : start=1001, size=100, type=07\n"
            "# over another one, or no room for its record: disk7 : start=1101, size=100, type=07\n"
            "disk8 : start=1102, size=2899, type=07\n"
            "# outside of the extended partition: disk9 : start=3999, size=3, type=07\n");
}

TEST(SfdiskRefusals, SecondExtendedPartition) {
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 1000, 1999, "0x05"), MbrPartition(2, 2000, 2999, "0x0f"),
                        MbrPartition(5, 2001, 2002)}),
            "disk1 : start=1000, size=1000, type=05\n"
            "# a second extended partition: disk2 : start=2000, size=1000, type=0f\n"
            "# outside of the extended partition: disk5 : start=2001, size=2, type=07\n");
}

TEST(SfdiskRefusals, WhatTheOtherCopyAndTheOtherReadingSay) {
  Extent other = GptPartition(1, 2048, 4095);
  other.flags = kFlagOtherCopy | kFlagCopyDiffers;
  Extent followed = GptPartition(1, 4096, 5000);
  followed.flags = kFlagCopyDiffers;
  const std::string text = LinesOfGpt({other, followed});
  EXPECT_EQ(text.find("# in the other copy of the table: disk1 : start=2048, size=2048"), 0U);
  EXPECT_NE(text.find("\ndisk1 : start=4096, size=905"), std::string::npos);
  Extent reading = MbrPartition(5, 1001, 1002);
  reading.flags = kFlagOtherReading;
  EXPECT_EQ(LinesOfMbr({MbrPartition(1, 1000, 1999, "0x05"), reading}),
            "disk1 : start=1000, size=1000, type=05\n"
            "# by another reading of the extended partition: disk5 : start=1001, size=2, type=07\n");
}

}  // namespace
}  // namespace trovisk::test
