// The numbering of disks from the kernel's list.

#include "frame/disk/disk_numbers.h"

#include <gtest/gtest.h>

#include <sstream>

namespace trovisk {
namespace {

using Names = std::vector<std::string>;

const char* const kHeading = "major minor  #blocks  name\n\n";

bool NeverAPartition(const std::string& /*name*/) {
  return false;
}

bool IsOneOfThePartitions(const std::string& name) {
  return name == "sda1" || name == "sda2" || name == "nvme0n1p1" || name == "loop0p1";
}

Names Numbered(const std::string& list, bool (*isPartition)(const std::string&) = NeverAPartition) {
  std::istringstream text(list);
  return NumberedDisks(text, isPartition);
}

TEST(DiskNumbers, FollowTheOrderOfTheList) {
  EXPECT_EQ(Numbered(std::string(kHeading) + " 254        0  268435456 vda\n 8        0  1 sdb\n"
                                             " 8       16  9 sda\n 259        0  5 nvme0n1\n"),
            (Names{"vda", "sdb", "sda", "nvme0n1"}));
}

TEST(DiskNumbers, LeaveOutPartitions) {
  EXPECT_EQ(Numbered(std::string(kHeading) + "8 0 100 sda\n8 1 50 sda1\n8 2 50 sda2\n259 0 9 nvme0n1\n"
                                             "259 1 9 nvme0n1p1\n179 0 7 mmcblk0\n",
                     IsOneOfThePartitions),
            (Names{"sda", "nvme0n1", "mmcblk0"}));
}

TEST(DiskNumbers, LeaveOutDevicesThatAreNoDisks) {
  EXPECT_EQ(Numbered("7 0 1 loop0\n7 1 1 loop12\n1 0 1 ram0\n251 0 1 zram0\n2 0 1 fd0\n11 0 1 sr0\n"
                     "253 0 1 dm-0\n8 0 1 sda\n7 2 1 loop0p1\n9 0 1 md0\n43 0 1 nbd0\n",
                     IsOneOfThePartitions),
            (Names{"sda", "md0", "nbd0"}));
}

// Names that only begin like those of other kinds.
TEST(DiskNumbers, KeepDisksOfSimilarNames) {
  EXPECT_EQ(Numbered("1 0 1 loopy\n1 0 1 sra\n1 0 1 dm-a\n1 0 1 fdisk0\n1 0 1 ramdisk0\n1 0 1 cciss/c0d0\n"),
            (Names{"loopy", "sra", "dm-a", "fdisk0", "ramdisk0", "cciss/c0d0"}));
}

TEST(DiskNumbers, OfAListThatIsEmptyOrDamaged) {
  EXPECT_EQ(Numbered(""), Names{});
  EXPECT_EQ(Numbered(kHeading), Names{});
  EXPECT_EQ(Numbered("8 0 100\n8 0 sda\nx y z sdb\n\n 8 0 1 sdc"), Names{"sdc"});
}

}  // namespace
}  // namespace trovisk
