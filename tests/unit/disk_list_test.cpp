// What the system tells of this machine's disks, and how their sizes are shown.

#include "frame/disk/disk_list.h"

#include <gtest/gtest.h>

#include "frame/disk/disk_numbers.h"

namespace trovisk {
namespace {

TEST(DiskList, TextsArePrintable) {
  EXPECT_EQ(Printable("Sample 500"), "Sample 500");
  EXPECT_EQ(Printable(" \tSample  500   \r\n"), "Sample  500");
  EXPECT_EQ(Printable("a\x1b[2Jb\x7f\x80\xff~"), "a?[2Jb???~");
  EXPECT_EQ(Printable(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(Printable(""), "");
  EXPECT_EQ(Printable(" \n"), "");
}

TEST(DiskList, LengthsAreInUnitsOf512Bytes) {
  EXPECT_EQ(BytesOfUnits("0"), 0u);
  EXPECT_EQ(BytesOfUnits("1\n"), 512u);
  EXPECT_EQ(BytesOfUnits("536870912"), u64{1} << 38);
  EXPECT_EQ(BytesOfUnits("36028797018963967"), ~u64{0} - 511);
}

TEST(DiskList, LengthsThatAreNoneAreNotKnown) {
  for (const char* text : {"", "\n", "x", "-1", " 1", "36028797018963968", "99999999999999999999999"})
    EXPECT_EQ(BytesOfUnits(text), 0u) << text;
}

TEST(DiskList, SlashesInANameAreExclamationMarksInSysfs) {
  EXPECT_EQ(SysfsFolder("sda"), "/sys/class/block/sda");
  EXPECT_EQ(SysfsFolder("cciss/c0d0"), "/sys/class/block/cciss!c0d0");
}

// A storage device descriptor with names at these offsets and these bytes behind its fixed part of 36 bytes.
std::vector<u8> Descriptor(u32 vendor, u32 product, const std::string& names) {
  std::vector<u8> bytes(36, u8{0xEE});
  for (std::size_t i = 0; i < 4; ++i) {
    bytes[12 + i] = static_cast<u8>(vendor >> 8 * i);
    bytes[16 + i] = static_cast<u8>(product >> 8 * i);
  }
  bytes.insert(bytes.end(), names.begin(), names.end());
  return bytes;
}

TEST(DiskList, ModelIsTheVendorAndTheProduct) {
  const std::string names("Sample  \0Drive 8\0", 17);
  EXPECT_EQ(ModelOf(Descriptor(36, 45, names)), "Sample Drive 8");
  EXPECT_EQ(ModelOf(Descriptor(0, 45, names)), "Drive 8");
  EXPECT_EQ(ModelOf(Descriptor(36, 0, names)), "Sample");
  EXPECT_EQ(ModelOf(Descriptor(0, 0, names)), "");
}

TEST(DiskList, ModelOutsideItsDescriptorIsNotRead) {
  EXPECT_EQ(ModelOf(Descriptor(37, 36, "x")), "x");  // behind the last byte; up to the end without a NUL
  EXPECT_EQ(ModelOf(Descriptor(~u32{0}, 0x80000000, "x")), "");
  EXPECT_EQ(ModelOf({}), "");
  EXPECT_EQ(ModelOf(Bytes(Descriptor(36, 36, "x")).first(14)), "");
}

TEST(DiskList, SizesAreInTheLargestBinaryUnitThatTheyFill) {
  EXPECT_EQ(SizeText(0), "0 B");
  EXPECT_EQ(SizeText(1023), "1023 B");
  EXPECT_EQ(SizeText(1024), "1.0 KiB");
  EXPECT_EQ(SizeText(1474560), "1.4 MiB");
  EXPECT_EQ(SizeText(512110190592), "476.9 GiB");
  EXPECT_EQ(SizeText(u64{1} << 40), "1.0 TiB");
  EXPECT_EQ(SizeText(u64{1} << 50), "1.0 PiB");
  EXPECT_EQ(SizeText(~u64{0}), "16.0 EiB");
}

TEST(DiskList, SizesAreRoundedIntoTheNextUnit) {
  EXPECT_EQ(SizeText(1075), "1.0 KiB");
  EXPECT_EQ(SizeText(1076), "1.1 KiB");
  EXPECT_EQ(SizeText(1048524), "1023.9 KiB");
  EXPECT_EQ(SizeText(1048525), "1.0 MiB");
}

// What this machine has: counted as the command line counts, none of it able to control a terminal.
TEST(DiskList, OfThisMachineIsNumberedAsOnTheCommandLine) {
  const std::vector<std::string> names = NumberedDisksOfThisMachine();
  const std::vector<ListedDisk> disks = ListDisks();
  ASSERT_EQ(disks.size(), names.size());
  for (std::size_t i = 0; i < disks.size(); ++i) {
    EXPECT_EQ(disks[i].number, i);
    EXPECT_EQ(disks[i].device, "/dev/" + names[i]);
    EXPECT_EQ(disks[i].model, Printable(disks[i].model));
  }
}

}  // namespace
}  // namespace trovisk
