// Builder of VHD images that store the sectors of a disk that were touched, in blocks: dynamic ones, and
// differencing ones, which have the others from a parent.

#ifndef TROVISK_TESTS_DISKS_VHD_H
#define TROVISK_TESTS_DISKS_VHD_H

#include <array>
#include <string>

#include "tests/disks/disk.h"

namespace trovisk::test {

struct Vhd {
  std::array<u8, 16> identity = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  u32 blockSize = u32{512} * 1024;
  u32 timestamp = 0x2B3C4D5E;  // seconds since 2000
  u64 claimedSize = 0;         // bytes of the disk, where it is not the content's
  // Of a differencing image: which file its parent is, and the parent's identity.
  std::u16string parent = {};  // the file's name or path as Windows writes it; empty: a dynamic image
  std::array<u8, 16> parentIdentity = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
};

// The image of a disk with sectors of 512 bytes, as the bytes of a file.
Disk MakeVhd(const Disk& content, const Vhd& vhd = {});

// The same of fixed size: the disk and the footer.
Disk MakeFixedVhd(const Disk& content, const Vhd& vhd = {});

}  // namespace trovisk::test

#endif
