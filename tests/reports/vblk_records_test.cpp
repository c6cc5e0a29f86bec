// Reports of VBLK records, type by type.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

constexpr u64 kCommit = u64{1} << 32;  // the records' commit numbers count up from here

VblkRecord Record(u8 type, const VblkData& data, u8 flags = 0) {
  return {.sequence = 11, .group = 12, .flags = flags, .type = type, .data = data};
}

void ExpectReport(const VblkRecord& record, const std::string& name) {
  const Disk disk = DiskWithRecord(record);
  EXPECT_TRUE(SameText(LdmReportOf(disk, kVblkSector), Expected(name, disk)));
}

// The one line of the type block that begins with the label, or an empty text.
std::string LineOf(const VblkRecord& record, const std::string& label, std::size_t slot = 0) {
  const std::string block = TypeBlockOf(record, slot);
  const std::size_t start = block.find("\n\t" + label);
  return start == std::string::npos ? std::string()
                                    : block.substr(start + 2, block.find('\n', start + 1) - start - 2);
}

// Components

VblkData Component(int leading = 0) {
  return VblkData()
      .Zeros(static_cast<std::size_t>(leading))
      .Id({0x0A, 0x0B})
      .Text("Volume1-01")
      .Text("ACTIVE")
      .Byte(2)
      .Fill(4, 0xEE)
      .Number(258, 2)
      .Be(kCommit + 19, 8)
      .Fill(8, 0xEE)
      .Id({5});
}

TEST(VblkComponent, WholeReport) {
  ExpectReport(Record(0x32, Component()), "ldm_vblk_component.txt");
}

// With bit 0 of the flags the first field stands two bytes further on.
TEST(VblkComponent, FirstFieldAtTwo) {
  EXPECT_TRUE(
      SameText(TypeBlockOf(Record(0x32, Component(2), 0x01)), TypeBlockOf(Record(0x32, Component()))));
}

// Behind the stripe size, of one byte here, the number of columns is not looked for at once, but one byte on.
TEST(VblkComponent, Striped) {
  VblkData data = Component();
  data.Byte(0xEE).Number(128, 1).Byte(0xEE).Number(3, 1);
  EXPECT_TRUE(SameText(TypeBlockOf(Record(0x32, data, 0x10)),
                       "\n\tVBLK Component (0x32)\n"
                       "\t---------------------\n"
                       "\tObject Id.          : 0x0A0B\n"
                       "\tName                : [ Volume1-01 ]\n"
                       "\tVolume State        : [ ACTIVE ]\n"
                       "\tComponent Type      : 2\n"
                       "\tNumber of Children  : 258\n"
                       "\tLog Commit Id.      : 4294967315\n"
                       "\tParent's Object Id. : 0x05\n"
                       "\tStripe Size         : 128 (sectors)\n"
                       "\tNumber Of Columns   : 3\n\n"));
}

TEST(VblkComponent, StripeSizeOfThreeBytes) {
  VblkData data = Component();
  data.Byte(0).Number(0x010203, 3).Fill(3, 0xEE).Number(0x0405, 2);
  const VblkRecord record = Record(0x32, data, 0x10);
  EXPECT_EQ(LineOf(record, "Stripe Size"), "Stripe Size         : 66051 (sectors)");
  EXPECT_EQ(LineOf(record, "Number Of Columns"), "Number Of Columns   : 1029");
}

TEST(VblkComponent, StripeSizeOfNoBytes) {
  VblkData data = Component();
  data.Byte(0).Byte(0).Number(7, 1);
  const VblkRecord record = Record(0x32, data, 0x10);
  EXPECT_EQ(LineOf(record, "Stripe Size"), "Stripe Size         : 0 (sectors)");
  EXPECT_EQ(LineOf(record, "Number Of Columns"), "Number Of Columns   : 7");
}

// The flags are compared as a whole: another bit beside this one, and there is no stripe.
TEST(VblkComponent, StripedOnlyWithTheseVeryFlags) {
  for (const int flags : {0x00, 0x11, 0x12, 0x18, 0x30, 0x90, 0x08}) {
    VblkData data = Component((flags & 1) * 2);
    data.Byte(0).Number(128, 1).Byte(0).Number(3, 1);
    const std::string block = TypeBlockOf(Record(0x32, data, static_cast<u8>(flags)));
    EXPECT_TRUE(block.ends_with("\n\tParent's Object Id. : 0x05\n\n")) << flags << block;
  }
}

// Partitions

VblkData Partition(int leading = 0) {
  return VblkData()
      .Zeros(static_cast<std::size_t>(leading))
      .Id({7})
      .Text("Disk1-01")
      .Fill(4, 0xEE)
      .Be(kCommit + 20, 8)
      .Be(kCommit + 21, 8)
      .Be(kCommit + 22, 8)
      .Number(0x1F4ABC, 3)
      .Id({6})
      .Id({2, 3});
}

TEST(VblkPartition, WholeReport) {
  ExpectReport(Record(0x33, Partition()), "ldm_vblk_partition.txt");
}

TEST(VblkPartition, FirstFieldAtTwo) {
  EXPECT_TRUE(
      SameText(TypeBlockOf(Record(0x33, Partition(2), 0x01)), TypeBlockOf(Record(0x33, Partition()))));
}

TEST(VblkPartition, IndexOnlyWithTheseVeryFlags) {
  for (const int flags : {0x00, 0x08, 0x09, 0x0A, 0x18, 0x88, 0x10}) {
    VblkData data = Partition((flags & 1) * 2);
    data.Number(0x0102, 2);
    const std::string block = TypeBlockOf(Record(0x33, data, static_cast<u8>(flags)));
    EXPECT_TRUE(block.ends_with(flags == 0x08
                                    ? "\n\tDisk's Object Id.   : 0x0203\n\tComponent Part Idx  : 258\n\n"
                                    : "\n\tDisk's Object Id.   : 0x0203\n\n"))
        << flags << block;
  }
}

// In bytes the size is a number of 64 bits; in MiB it is so less than it could be.
TEST(VblkPartition, Sizes) {
  const std::pair<u64, std::string> sizes[] = {
      {0, "0x0 (0 MiB)"},
      {2047, "0x7FF (0 MiB)"},
      {2048, "0x800 (1 MiB)"},
      {u64{1} << 55, "0x80000000000000 (0 MiB)"},
      {~u64{0}, "0xFFFFFFFFFFFFFFFF (17592186044415 MiB)"},
  };
  for (const auto& [sectors, text] : sizes) {
    VblkData data;
    data.Id({7}).Text("").Zeros(4 + 3 * 8).Number(sectors, 8).Id({6}).Id({2});
    EXPECT_EQ(LineOf(Record(0x33, data), "Size"), "Size                : " + text);
  }
}

// Disks

constexpr std::string_view kDiskId = "2f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80";

TEST(VblkDisk, FirstForm) {
  ExpectReport(
      Record(
          0x34,
          VblkData().Id({2}).Text("Disk1").Text(kDiskId).Text("Harddisk0").Fill(4, 0xEE).Be(kCommit + 21, 8)),
      "ldm_vblk_disk_34.txt");
}

// The text of the alternate name begins at 2 + 6 + 37 + 1 = 46: it is cut at 46 characters. What follows
// stands behind the whole of it, and counts up to position 92.
TEST(VblkDisk, AlternateNameIsCut) {
  const std::string letters(300, 'N');
  for (const std::size_t length : {45U, 46U, 47U, 60U, 255U}) {
    VblkData data;
    data.Id({2}).Text("Disk1").Text(kDiskId).Text(letters.substr(0, length)).Zeros(4).Be(77, 8);
    const std::string name = letters.substr(0, std::min<std::size_t>(length, 46));
    const std::string block = TypeBlockOf(Record(0x34, data));
    std::string end = " }\n\tAlternate Name     : [ " + name + " ]\n";
    end += length <= 46 ? "\tLog Commit Id.     : 77\n\n" : "\n";
    EXPECT_TRUE(block.ends_with(end)) << length << block;
  }
}

// The text begins at 91, 92 and 93: one character, none, and none.
TEST(VblkDisk, AlternateNameWithoutRoom) {
  for (const std::size_t position : {91U, 92U, 93U}) {
    VblkData data;
    data.Id({2}).Text(std::string(position - 5, 'n')).Text("").Text("Harddisk0").Zeros(4).Be(77, 8);
    const std::string block = TypeBlockOf(Record(0x34, data));
    EXPECT_TRUE(block.ends_with(position == 91 ? "\n\tAlternate Name     : [ H ]\n\n"
                                               : "\n\tAlternate Name     : [  ]\n\n"))
        << position << block;
  }
}

// Without a name the commit number is there as long as its position is below 93.
TEST(VblkDisk, CommitNumberBelow93) {
  VblkData at92;
  at92.Id({2}).Text(std::string(87, 'n')).Text("").Text("").Zeros(4).Be(77, 8);
  EXPECT_TRUE(TypeBlockOf(Record(0x34, at92)).ends_with(" [  ]\n\tLog Commit Id.     : 77\n\n"));
  VblkData at93;
  at93.Id({2}).Text(std::string(88, 'n')).Text("").Text("").Zeros(4).Be(77, 8);
  EXPECT_TRUE(TypeBlockOf(Record(0x34, at93)).ends_with("\n\tAlternate Name     : [  ]\n\n"));
}

TEST(VblkDisk, SecondForm) {
  ExpectReport(Record(0x44, VblkData()
                                .Id({3})
                                .Text("Disk2")
                                .Raw(CountingBytes(0x40))
                                .Raw(CountingBytes(0xF0))
                                .Fill(3, 0xEE)
                                .Be(0x1234, 2)
                                .Be(kCommit + 22, 8)),
               "ldm_vblk_disk_44.txt");
}

// Bit 0 of the flags does not move the fields of disks and groups.
TEST(VblkDisk, FirstFieldAlwaysAtZero) {
  for (const int type : {0x34, 0x44}) {
    EXPECT_EQ(LineOf(Record(static_cast<u8>(type), VblkData().Id({1, 2, 3}), 0x01), "Object Id."),
              "Object Id.         : 0x010203");
  }
}

// Disk groups

TEST(VblkDiskGroup, FirstForm) {
  ExpectReport(Record(0x35, VblkData()
                                .Id({1})
                                .Text("HOST-Dg0")
                                .Text("6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34")
                                .Fill(4, 0xEE)
                                .Be(kCommit + 23, 8)
                                .Byte(3)
                                .Fill(3, 0xFF)
                                .Byte(5)
                                .Fill(5, 0xFF)),
               "ldm_vblk_group_35.txt");
}

VblkData GroupForm2(u8 second) {
  return VblkData()
      .Id({1})
      .Text("HOST-Dg0")
      .Raw(CountingBytes(0x20))
      .Raw(CountingBytes(0x30))
      .Fill(4, 0xEE)
      .Be(kCommit + 24, 8)
      .Byte(3)
      .Fill(3, 0xFF)
      .Byte(5)
      .Fill(5, second);
}

TEST(VblkDiskGroup, SecondForm) {
  ExpectReport(Record(0x45, GroupForm2(0xFF)), "ldm_vblk_group_45.txt");
}

// Zeros are told from everything else, which is called 0xFF.
TEST(VblkDiskGroup, SecondFormWithZeros) {
  EXPECT_TRUE(TypeBlockOf(Record(0x45, GroupForm2(0x00)))
                  .ends_with("\n\tUnknown            : 0xFF x 3\n\tUnknown            : 0x00 x 5\n\n"));
  EXPECT_TRUE(TypeBlockOf(Record(0x45, GroupForm2(0x01)))
                  .ends_with("\n\tUnknown            : 0xFF x 3\n\tUnknown            : 0xFF x 5\n\n"));
}

TEST(VblkDiskGroup, FirstFieldAlwaysAtZero) {
  for (const int type : {0x35, 0x45}) {
    EXPECT_EQ(LineOf(Record(static_cast<u8>(type), VblkData().Id({1, 2, 3}), 0x01), "Object Id."),
              "Object Id.         : 0x010203");
  }
}

// The counts lead as far as 255 bytes on, into the following slots, and from the last slot out of the sector.
TEST(VblkDiskGroup, CountsThatLeadAway) {
  VblkData data;
  data.Id({1}).Text("").Text("").Zeros(12).Byte(255).Fill(255, 0xFF).Byte(9);
  EXPECT_TRUE(TypeBlockOf(Record(0x35, data))
                  .ends_with("\n\tUnknown            : 0xFF x 255\n\tUnknown            : 0xFF x 9\n\n"));
  EXPECT_TRUE(TypeBlockOf(Record(0x35, data), 3)
                  .ends_with("\n\tUnknown            : 0xFF x 255\n\tUnknown            : 0xFF x 0\n\n"));
  VblkData form2;
  form2.Id({1}).Text("").Zeros(32 + 12).Byte(255).Fill(255, 0xFF).Byte(9).Byte(0xFF);
  EXPECT_TRUE(TypeBlockOf(Record(0x45, form2))
                  .ends_with("\n\tUnknown            : 0xFF x 255\n\tUnknown            : 0xFF x 9\n\n"));
  EXPECT_TRUE(TypeBlockOf(Record(0x45, form2), 3)
                  .ends_with("\n\tUnknown            : 0xFF x 255\n\tUnknown            : 0x00 x 0\n\n"));
}

// Volumes

struct VolumeFields {
  u8 type = 3;
  u8 kind = 0x11;
  u64 size = 0x1F4ABC;
  std::size_t leading = 0;
};

// Up to the first GUID.
VblkData Volume(const VolumeFields& fields = {}) {
  return VblkData()
      .Zeros(fields.leading)
      .Id({5, 6})
      .Text("Volume1")
      .Text("gen")
      .Byte(0)
      .Chars("ACTIVE")
      .Zeros(8)
      .Byte(fields.type)
      .Byte(0xEE)
      .Byte(9)
      .Fill(3, 0xEE)
      .Byte(fields.kind)
      .Number(1, 1)
      .Be(kCommit + 25, 8)
      .Be(kCommit + 26, 8)
      .Number(fields.size, 3)
      .Byte(0)
      .Fill(3, 0xEE)
      .Byte(0x07)
      .Raw(CountingBytes(0x60));
}

// What every volume ends with.
VblkData& End(VblkData& data) {
  return data.Raw(CountingBytes(0x70)).Byte(0x0F);
}
constexpr char kVolumeEnd[] =
    "\tVolume Id2.        : { 70717273-7475-7677-7879-7A7B7C7D7E7F }\n"
    "\tUnknown.           : 0x0F }\n\n";

TEST(VblkVolume, WholeReport) {
  VblkData data = Volume();
  ExpectReport(Record(0x51, End(data)), "ldm_vblk_volume.txt");
}

TEST(VblkVolume, WholeReportWithEveryOptionalField) {
  VblkData data;
  data.Zeros(2).Id({5}).Text("V").Text("r5").Id({0x01, 0xFE}).Chars("ACTIVE").Zeros(8);
  data.Byte(4).Byte(0).Byte(9).Zeros(3).Byte(0x13).Number(3, 1).Be(kCommit + 25, 8).Be(kCommit + 26, 8);
  data.Number(0x40, 1).Number(0xABC, 2).Zeros(3).Byte(0x07).Raw(CountingBytes(0x60));
  data.Id({7}).Id({8}).Number(2050748, 3).Text("E:");
  ExpectReport(Record(0x51, End(data), 0xAB), "ldm_vblk_volume_all_flags.txt");
}

// Every combination of the five flags that say something, with the three that do not set as well.
TEST(VblkVolume, OptionalFieldsOfEveryCombinationOfFlags) {
  for (int combination = 0; combination < 64; ++combination) {
    const bool at2 = (combination & 1) != 0;
    const bool hint = (combination & 2) != 0;
    const bool id1 = (combination & 4) != 0;
    const bool id2 = (combination & 8) != 0;
    const bool size = (combination & 16) != 0;
    const int others = (combination & 32) != 0 ? 0x54 : 0;
    const int flags = others | (at2 ? 0x01 : 0) | (hint ? 0x02 : 0) | (id1 ? 0x08 : 0) | (id2 ? 0x20 : 0) |
                      (size ? 0x80 : 0);
    VblkData data;
    if (at2) data.Fill(2, 0xEE);
    data.Id({}).Text("").Text("").Byte(0).Zeros(14 + 7).Number(1, 1).Zeros(16).Number(1, 1);
    data.Zeros(4).Byte(0x07).Raw(CountingBytes(0x60));
    std::string expected = "\tVolume Id.         : { 60616263-6465-6667-6869-6A6B6C6D6E6F }\n";
    if (id1) {
      data.Id({0x0A});
      expected += "\tId1?               : 0x0A\n";
    }
    if (id2) {
      data.Id({0x0B});
      expected += "\tId2?               : 0x0B\n";
    }
    if (size) {
      data.Number(4096, 2);
      expected += "\tSize (if childen) : 4096(2 MiB)\n";
    }
    if (hint) {
      data.Text("E:");
      expected += "\tDrive Hint         : [ E: ]\n";
    }
    if (!at2) expected += "\n";
    expected += kVolumeEnd;
    const std::string block = TypeBlockOf(Record(0x51, End(data), static_cast<u8>(flags)));
    EXPECT_TRUE(block.ends_with(expected)) << std::hex << flags << block;
  }
}

TEST(VblkVolume, FirstFieldAtTwo) {
  EXPECT_EQ(LineOf(Record(0x51, Volume({.leading = 2}), 0x01), "Object Id."), "Object Id.         : 0x0506");
  EXPECT_EQ(LineOf(Record(0x51, Volume({.leading = 2}), 0x01), "Volume Id. "),
            "Volume Id.         : { 60616263-6465-6667-6869-6A6B6C6D6E6F }");
}

TEST(VblkVolume, KindsOfVolume) {
  struct Case {
    u8 type, kind;
    std::string typeText, kindText;
  };
  for (const Case& each : {Case{3, 0x11, "[ Normal ]", "[ Normal ]"}, Case{4, 0x13, "[ RAID ]", "[ RAID ]"},
                           Case{0, 0x00, "0x00", "0x00"}, Case{5, 0x12, "0x05", "0x12"},
                           Case{0x11, 3, "0x11", "0x03"}, Case{0xFE, 0xDC, "0xFE", "0xDC"}}) {
    const std::string block = TypeBlockOf(Record(0x51, Volume({.type = each.type, .kind = each.kind})));
    EXPECT_NE(block.find("\n\tVolume State       : [ ACTIVE ]\n\tVolume Type        : " + each.typeText +
                         "\n\tVolume Number      : 9\n\tFlags              : " + each.kindText +
                         "\n\tNumber Of Children : 1\n"),
              std::string::npos)
        << block;
  }
}

TEST(VblkVolume, StateOfFourteenCharacters) {
  VblkData data;
  data.Id({5}).Text("V").Text("gen").Byte(0).Chars("ABCDEFGHIJKLMN").Byte(0x4F);
  EXPECT_EQ(LineOf(Record(0x51, data), "Volume State"), "Volume State       : [ ABCDEFGHIJKLMN ]");
}

// The size in MiB counts the disk's sectors; that of the children has sectors of 512 bytes everywhere.
TEST(VblkVolume, SizesOn4096ByteSectors) {
  VblkData data = Volume({.size = 512});
  data.Number(4096, 2);
  Disk disk = DynamicDisk(4096);
  PutVmdb(disk, kVmdbSector, {});
  PutVblk(disk, kVblkSector, 0, Record(0x51, End(data), 0x80));
  PutVblk(disk, kVblkSector, 1, Record(0x33, Partition()));
  const std::string report = LdmReportOf(disk, kVblkSector);
  EXPECT_NE(report.find("\n\tSize               : 0x200 (2 MiB)\n"), std::string::npos) << report;
  EXPECT_NE(report.find("\n\tSize (if childen) : 4096(2 MiB)\n"), std::string::npos) << report;
  EXPECT_NE(report.find("\n\tSize                : 0x1F4ABC (8010 MiB)\n"), std::string::npos) << report;
}

TEST(VblkVolume, SizeOfChildrenWraps) {
  VblkData data = Volume();
  data.Number((u64{1} << 55) + 2048, 8);
  EXPECT_EQ(LineOf(Record(0x51, End(data), 0x80), "Size (if"),
            "Size (if childen) : 36028797018966016(1 MiB)");
}

TEST(VblkVolume, PartitionTypes) {
  for (const auto& [type, text] : {std::pair<u8, std::string>{0x42, "0x42 (Dynamic Disk)"},
                                   {0x0B, "0x0B (Win95 FAT-32)"},
                                   {0xF7, "0xF7 (unknown)"}}) {
    VblkData data;
    data.Id({}).Text("").Text("").Byte(0).Zeros(21).Byte(0).Zeros(16).Byte(0).Zeros(4).Byte(type);
    EXPECT_EQ(LineOf(Record(0x51, data), "Partition Type"), "Partition Type     : " + text);
  }
}

// A record that runs on meets the next slot's header: GUIDs, numbers and texts are read across it.
TEST(VblkVolume, FieldsAcrossTheFollowingSlot) {
  VblkData data = Volume();  // 80 bytes
  data.Text("0123456789").Raw(CountingBytes(0x70)).Byte(0x0F);
  // The GUID is the slot's bytes 91 to 106, of which 104 to 107 are the signature of the next one.
  EXPECT_TRUE(TypeBlockOf(Record(0x51, data, 0x02))
                  .ends_with("\n\tDrive Hint         : [ 0123456789 ]\n\n"
                             "\tVolume Id2.        : { 70717273-7475-7677-7879-7A7B7C56424C }\n"
                             "\tUnknown.           : 0x4B }\n\n"));
  // From the last slot it ends with the sector: three zero bytes.
  EXPECT_TRUE(TypeBlockOf(Record(0x51, data, 0x02), 3)
                  .ends_with("\n\tDrive Hint         : [ 0123456789 ]\n\n"
                             "\tVolume Id2.        : { 70717273-7475-7677-7879-7A7B7C000000 }\n"
                             "\tUnknown.           : 0x00 }\n\n"));
}

}  // namespace
}  // namespace trovisk::test
