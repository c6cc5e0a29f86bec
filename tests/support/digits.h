// Bytes as hexadecimal digits, as digests are written everywhere.

#ifndef TROVISK_TESTS_SUPPORT_DIGITS_H
#define TROVISK_TESTS_SUPPORT_DIGITS_H

#include <string>

#include "frame/bytes.h"

namespace trovisk::test {

// Two small digits a byte, nothing between them.
inline std::string SmallDigits(Bytes bytes) {
  std::string digits;
  for (const u8 byte : bytes) {
    digits += "0123456789abcdef"[byte >> 4];
    digits += "0123456789abcdef"[byte & 15];
  }
  return digits;
}

}  // namespace trovisk::test

#endif
