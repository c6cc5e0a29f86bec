// Where the bytes of two sectors differ.

#ifndef TROVISK_MAP_BYTE_DIFFERENCES_H
#define TROVISK_MAP_BYTE_DIFFERENCES_H

#include <string>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

struct ByteRange {
  u64 offset = 0;  // bytes from the start
  u64 length = 0;
};

// The first few stretches that differ, in hexadecimal, and how many bytes else: "bytes 0x1B8-0x1B9: 0102 ->
// 0304, and 7 more bytes". Empty where nothing does. told: what need not be said again.
std::string ByteDifferences(Bytes before, Bytes after, const std::vector<ByteRange>& told);

}  // namespace trovisk

#endif
