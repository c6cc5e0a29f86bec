// The rows of the table of signatures, and what tells more than the signature does.

#ifndef TROVISK_MAP_SIGNATURE_ROWS_H
#define TROVISK_MAP_SIGNATURE_ROWS_H

#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// Where superblocks can be, in bytes from the start of the place.
struct SuperblockPlaces {
  u64 first = 0;
  u64 step = 0;  // to the next one
  u64 count = 1;
  // Where fromEnd is not 0, so many bytes before the end of the place instead, rounded down.
  u64 fromEnd = 0;
  u64 alignment = 1;
  // Where not 0: a place that is blank there has none of them, however many may follow.
  u64 unlessBlank = 0;
};

struct Superblock {
  Bytes bytes;          // kSuperblockSize of them; zeros where the place ends
  u64 position = 0;     // bytes from the start of the place
  u64 magicOffset = 0;  // from the superblock
};
inline constexpr u64 kSuperblockSize = 4096;

struct ContentDetails {
  std::string type;        // as the row has it, to be told more exactly
  std::string label = {};  // safe to show
  u64 bytes = 0;           // size; 0: not stated
};

// False: it is none after all.
using Describe = bool (*)(const Superblock& superblock, ContentDetails& details);

struct SignatureRow {
  std::string_view type;
  SuperblockPlaces places;
  u64 magicOffset = 0;  // bytes from the superblock
  std::string_view magic;
  Describe describe = nullptr;
};

// How signatures with NULs are written.
template <std::size_t Size>
constexpr std::string_view Magic(const char (&text)[Size]) {
  return {text, Size - 1};
}

// Linux
bool DescribeExt(const Superblock& superblock, ContentDetails& details);
bool DescribeXfs(const Superblock& superblock, ContentDetails& details);
bool DescribeBtrfs(const Superblock& superblock, ContentDetails& details);
bool DescribeF2fs(const Superblock& superblock, ContentDetails& details);
bool DescribeErofs(const Superblock& superblock, ContentDetails& details);
bool DescribeSquashFs(const Superblock& superblock, ContentDetails& details);

// What holds further volumes, or memory
bool DescribeLvm2(const Superblock& superblock, ContentDetails& details);
bool DescribeLuks2(const Superblock& superblock, ContentDetails& details);
bool DescribeSwap(const Superblock& superblock, ContentDetails& details);
bool DescribeMd090(const Superblock& superblock, ContentDetails& details);
bool DescribeMd1(const Superblock& superblock, ContentDetails& details);

// Other systems
bool DescribeApfs(const Superblock& superblock, ContentDetails& details);
bool DescribeHfsPlus(const Superblock& superblock, ContentDetails& details);
bool DescribeIso9660(const Superblock& superblock, ContentDetails& details);

}  // namespace trovisk

#endif
