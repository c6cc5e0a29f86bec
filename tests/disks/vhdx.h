// Builder of VHDX images that store the sectors of a disk that were touched, in blocks: dynamic ones, and
// differencing ones, which have the others from a parent.

#ifndef TROVISK_TESTS_DISKS_VHDX_H
#define TROVISK_TESTS_DISKS_VHDX_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/disks/disk.h"

namespace trovisk::test {

inline constexpr Guid kVhdxIdentity{"11223344-5566-7788-99AA-BBCCDDEEFF00"};
inline constexpr std::u16string_view kVhdxIdentityText = u"{11223344-5566-7788-99aa-bbccddeeff00}";

struct Vhdx {
  Guid identity = kVhdxIdentity;                // of what is in it
  u64 claimedSize = 0;                          // bytes of the disk, where it is not the content's
  std::optional<Guid> log = std::nullopt;       // of the entries of the log that are in force
  std::optional<Guid> logEntry = std::nullopt;  // of the one entry that the log has
  // What the parent locator says, by key; empty: a dynamic image.
  std::vector<std::pair<std::u16string, std::u16string>> parent = {};
};

// The usual ones of a parent beside the image.
std::vector<std::pair<std::u16string, std::u16string>> VhdxParent(
    const std::u16string& name, std::u16string_view identity = kVhdxIdentityText);

// The image of a disk with sectors of 512 bytes, as the bytes of a file, in sectors of 64 KiB.
Disk MakeVhdx(const Disk& content, const Vhdx& vhdx = {});

}  // namespace trovisk::test

#endif
