// Reports of VBLK sectors: slots, what all records have in common, the data, the chain of sectors.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

constexpr char kHeader[] = "Reading sector # 111 [VBLK Sector]\n\n";

// A record of a type without fields, with so many data bytes that count up from zero.
VblkRecord Plain(std::size_t bytes) {
  VblkData data;
  for (std::size_t i = 0; i < bytes; ++i)
    data.Byte(i & 0xFF);
  return {.sequence = 11, .group = 12, .type = 0x61, .data = data};
}

std::string ReportOfRecord(const VblkRecord& record, std::size_t slot = 0) {
  return LdmReportOf(DiskWithRecord(record, slot), kVblkSector);
}

TEST(Vblk, RecordOfUnknownType) {
  EXPECT_TRUE(SameText(ReportOfRecord({.sequence = 11,
                                       .group = 4294967295,
                                       .flags = 0xC0,
                                       .type = 0x0A,
                                       .data = VblkData().Byte(0xDE).Byte(0x0D)}),
                       "Reading sector # 111 [VBLK Sector]\n\n"
                       "Magic Number  : [VBLK]\n"
                       "Sequence      : 11\n"
                       "Group Number  : 4294967295\n"
                       "Record        : 1 of 1\n"
                       "Update Status : [Consistent]\n"
                       "Record Type   : [Unknown type 0x0A]\n"
                       "Flags         : 0xC0\n"
                       "Data Length   : 2\n"
                       "Data          : DE 0D \n\n"));
}

// The whole type byte counts: one with the low digit of a known type is unknown.
TEST(Vblk, TypesNextToTheKnownOnes) {
  for (const auto& [type, name] :
       {std::pair<u8, std::string>{0x31, "31"}, {0x36, "36"}, {0x52, "52"}, {0xB2, "B2"}, {0xFF, "FF"}}) {
    EXPECT_NE(ReportOfRecord({.type = type})
                  .find("\nRecord Type   : [Unknown type 0x" + name + "]\nFlags         : 0x00\n"),
              std::string::npos)
        << name;
  }
}

TEST(Vblk, RecordNumbers) {
  struct Case {
    u16 number, count;
    std::string line;
  };
  for (const Case& each : {Case{0, 1, "1 of 1"}, Case{0, 2, "1 of 2"}, Case{0, 0, "0 of 0"},
                           Case{5, 0, "5 of 0"}, Case{0, 65535, "1 of 65535"}}) {
    VblkRecord record = Plain(0);
    record.number = each.number;
    record.count = each.count;
    EXPECT_TRUE(SameText(ReportOfRecord(record), kHeader + ("Magic Number  : [VBLK]\n"
                                                            "Sequence      : 11\n"
                                                            "Group Number  : 12\n"
                                                            "Record        : " +
                                                            each.line +
                                                            "\nUpdate Status : [Consistent]\n"
                                                            "Record Type   : [Unknown type 0x61]\n"
                                                            "Flags         : 0x00\n"
                                                            "Data Length   : 0\n"
                                                            "Data          : \n\n")));
  }
}

// The slots that continue a record have no fields of their own. The number is one of 16 bits.
TEST(Vblk, ExtendedRecords) {
  struct Case {
    u16 number, count;
    std::string line;
  };
  for (const Case& each :
       {Case{1, 2, "2 of 2"}, Case{2, 2, "3 of 2"}, Case{65534, 1, "65535 of 1"}, Case{65535, 1, "0 of 1"}}) {
    VblkRecord record = Plain(20);
    record.number = each.number;
    record.count = each.count;
    EXPECT_TRUE(SameText(ReportOfRecord(record), kHeader + ("Magic Number  : [VBLK]\n"
                                                            "Sequence      : 11\n"
                                                            "Group Number  : 12\n"
                                                            "Record        : " +
                                                            each.line + " [Extended VBLK]\n\n")));
  }
}

TEST(Vblk, UpdateStatus) {
  const std::pair<u16, std::string> statuses[] = {
      {0x0000, "[Consistent]"},
      {0x0001, "[Active, about to be deleted]"},
      {0x0002, "[Created, but not yet active]"},
      {0x0003, "[Unknown 0300"},
      {0x0100, "[Unknown 0001"},
      {0xABCD, "[Unknown CDAB"},
  };
  for (const auto& [value, text] : statuses) {
    VblkRecord record = Plain(0);
    record.updateStatus = value;
    EXPECT_NE(ReportOfRecord(record).find("\nUpdate Status : " + text + "\nRecord Type   : "),
              std::string::npos)
        << value;
  }
}

TEST(Vblk, DataOfTwentyBytes) {
  EXPECT_TRUE(
      ReportOfRecord(Plain(20)).ends_with("\nData Length   : 20\n"
                                          "Data          : 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F \n"
                                          "                10 11 12 13 \n\n"));
}

// No line without bytes behind the sixteenth.
TEST(Vblk, DataOfSixteenBytes) {
  EXPECT_TRUE(ReportOfRecord(Plain(16)).ends_with(
      "\nData Length   : 16\n"
      "Data          : 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F \n\n"));
}

// From the first slot 488 bytes are left to the sector's end, from the last one 104; the length itself is
// shown as it stands. The disk's next bytes are not zero.
TEST(Vblk, DataRunsOnAndEndsWithTheSector) {
  struct Case {
    std::size_t slot;
    u32 length, shown;
  };
  for (const Case& each :
       {Case{0, 0, 0}, Case{0, 104, 104}, Case{0, 105, 105}, Case{0, 487, 487}, Case{0, 488, 488},
        Case{0, 489, 488}, Case{0, ~0U, 488}, Case{1, 488, 360}, Case{3, 20, 20}, Case{3, 104, 104},
        Case{3, 105, 104}, Case{3, 488, 104}, Case{3, ~0U, 104}}) {
    VblkRecord record = Plain(20);
    record.dataLength = each.length;
    Disk disk = DiskWithRecord(record, each.slot);
    disk.At(kVblkSector + 1).Fill(0, 512, 0xEE);
    const std::string tail = "\nData Length   : " + std::to_string(each.length) +
                             "\nData          : {{data 111 " + std::to_string(each.slot * 128 + 24) + " " +
                             std::to_string(each.shown) + "}}\n\n";
    const std::string report = LdmReportOf(disk, kVblkSector);
    EXPECT_TRUE(report.ends_with(ExpandExpected(tail, disk))) << each.slot << " " << each.length << "\n"
                                                              << report;
  }
}

// A sector larger than its four slots: only the first 512 bytes are records.
TEST(Vblk, DataEndsAfter512BytesOfALargerSector) {
  Disk disk = DynamicDisk(4096);
  PutVmdb(disk, kVmdbSector, {});
  VblkRecord record = Plain(104);
  record.dataLength = 200;
  PutVblk(disk, kVblkSector, 3, record).Fill(512, 3584, 0xEE);
  EXPECT_TRUE(LdmReportOf(disk, kVblkSector)
                  .ends_with(ExpandExpected("\nData Length   : 200\nData          : {{data 111 408 104}}\n\n",
                                            disk)));
}

// Four slots, two of them empty: the report has the others one behind the other.
TEST(Vblk, EmptySlotsAreLeftOut) {
  Disk disk = DiskWithRecord(Plain(0), 1);
  VblkRecord last = Plain(1);
  last.sequence = 13;
  PutVblk(disk, kVblkSector, 3, last);
  const std::string record =
      "Group Number  : 12\nRecord        : 1 of 1\nUpdate Status : [Consistent]\n"
      "Record Type   : [Unknown type 0x61]\nFlags         : 0x00\n";
  EXPECT_TRUE(SameText(LdmReportOf(disk, kVblkSector),
                       kHeader + ("Magic Number  : [VBLK]\nSequence      : 11\n" + record +
                                  "Data Length   : 0\nData          : \n\n"
                                  "Magic Number  : [VBLK]\nSequence      : 13\n" +
                                  record + "Data Length   : 1\nData          : 00 \n\n")));
}

TEST(Vblk, EmptySectorIsWalkedOn) {
  Disk disk = DynamicDisk();
  PutVmdb(disk, kVmdbSector, {});
  PutKlog(disk, kKlogSector, {});
  EXPECT_TRUE(SameText(LdmReportOf(disk, kVblkSector), kHeader));
  EXPECT_NE(TocOf(disk).find("       111\tVBLK Sector\n       112\tVBLK Sector\n       120\tKLOG Sector\n"),
            std::string::npos);
}

// Four type bytes of zero are enough: whatever else the slots hold is not looked at.
TEST(Vblk, EmptySectorWithoutSignatures) {
  Disk disk = DynamicDisk();
  PutVmdb(disk, kVmdbSector, {});
  disk.At(kVblkSector).Fill(0, 512, 0x41).U8(19, 0).U8(147, 0).U8(275, 0).U8(403, 0);
  const Outcome outcome = RunOn(disk, {"111"});
  EXPECT_TRUE(outcome.out.ends_with(kHeader));
  EXPECT_EQ(outcome.err, "");
}

// One used slot, and every slot has to have its signature, the empty ones too. What comes before is printed.
TEST(Vblk, SlotWithoutSignature) {
  for (std::size_t slot = 0; slot < 4; ++slot) {
    Disk disk = DiskWithRecord(Plain(0), 2);
    disk.At(kVblkSector).Text(slot * 128, "VBLk");
    const Outcome outcome = RunOn(disk, {"111"});
    const std::string message = "**** Entry #" + std::to_string(slot + 1) + " No VBLK magic found ****\n";
    EXPECT_EQ(outcome.err, message + message);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.ends_with("Data          : \n\n"), slot == 3) << outcome.out;
    EXPECT_EQ(outcome.out.ends_with(kHeader), slot != 3) << outcome.out;
    // The walk ends there: no second VBLK sector.
    EXPECT_EQ(TocOf(disk).find("       112\tVBLK Sector\n"), std::string::npos);
  }
}

TEST(Vblk, LastSectorRegistersNoSuccessor) {
  Disk disk = DiskWithRecord(Plain(0));
  PutVblk(disk, kVblkEnd, 0, Plain(0));
  PutKlog(disk, kKlogSector, {});
  EXPECT_NE(TocOf(disk).find("       112\tVBLK Sector\n       120\tKLOG Sector\n"), std::string::npos);
}

// The disk ends in front of the records; a walk without limit tries them in both passes.
TEST(Vblk, UnreadableSector) {
  Disk disk = DiskWithRecord(Plain(0));
  disk.Resize(kVblkSector);
  const Outcome outcome = RunOn(disk, {"1", "-1"});
  const std::string message = ReadBehindTheEnd(512) + "Error reading sector\n";
  EXPECT_EQ(outcome.err, message + message);
  EXPECT_EQ(outcome.status, 0);
}

// Every sector of the region is registered; consecutive ones take no memory of their own. All else stands in
// front of the region, which nothing interrupts.
TEST(Vblk, RegionOfAMillionEmptySectors) {
  constexpr u64 kSectors = 1'000'000;
  Disk disk(kSectors + 4096);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 63, .count = 4000}}});
  const Privhead header{.alternate1 = 8, .alternate2 = 9, .configStart = kConfigStart, .tocSize = 3};
  TocBlock toc = SmallTocBlock();
  toc.config.size = kSectors;
  toc.log.start = 5;
  for (const u64 sector : {kPrivheadSector, u64{108}, u64{109}})
    PutPrivhead(disk, sector, header);
  for (const u64 sector : {u64{102}, u64{103}})
    PutTocBlock(disk, sector, toc);
  PutKlog(disk, 105, {});
  PutVmdb(disk, kVmdbSector, {});
  constexpr u64 kLast = kVmdbSector + kSectors - 1;
  const Outcome outcome = RunOnWithinLimits(disk, {std::to_string(kLast), std::to_string(kLast + 1)});
  EXPECT_TRUE(outcome.out.ends_with("\nReading sector # " + std::to_string(kLast) +
                                    " [VBLK Sector]\n\nReading sector # " + std::to_string(kLast + 1) +
                                    " [Raw Sector]\n... empty ...\n"))
      << outcome.out;
  EXPECT_EQ(outcome.err, "");
}

}  // namespace
}  // namespace trovisk::test
