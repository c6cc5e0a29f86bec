// GUID constants written in their registry form.

#ifndef TROVISK_FRAME_GUID_H
#define TROVISK_FRAME_GUID_H

#include <array>

#include "frame/bytes.h"

namespace trovisk {

// The 16 bytes of a GUID as they lie on disk, from its registry form (capitals, no braces): the first three
// groups are little-endian on disk.
struct Guid {
  std::array<u8, 16> bytes{};

  consteval explicit Guid(const char (&text)[37]) {
    constexpr std::size_t kPlaces[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::size_t digit = 0;
    for (const std::size_t place : kPlaces) {
      if (text[digit] == '-') ++digit;
      bytes[place] = static_cast<u8>(Nibble(text[digit]) << 4 | Nibble(text[digit + 1]));
      digit += 2;
    }
  }

  bool operator==(FixedBytes<16> other) const {
    return std::equal(other.begin(), other.end(), bytes.begin());
  }

 private:
  static consteval u8 Nibble(char digit) {
    return static_cast<u8>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
  }
};

}  // namespace trovisk

#endif
