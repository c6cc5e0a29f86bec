// How the characters of a listing's row are laid out, for the two ways of writing it.

#ifndef TROVISK_FRAME_REPORT_HEX_ROW_LAYOUT_H
#define TROVISK_FRAME_REPORT_HEX_ROW_LAYOUT_H

#include <array>
#include <cstddef>

namespace trovisk {

inline constexpr std::size_t kRowBytes = 16;

// The characters of the longest row, its line end included.
inline constexpr std::size_t kRowText = 2 + 2 * sizeof(std::size_t) + 2 + kRowBytes * 3 + 4 + kRowBytes + 1;

inline constexpr std::size_t kCellText = 3;  // "XX "
inline constexpr std::size_t kCellsText = kRowBytes * kCellText;
inline constexpr std::size_t kGap = 4;  // blanks between the cells and the characters
inline constexpr std::size_t kAfterOffset = kCellsText + kGap + kRowBytes + 1;
inline constexpr std::array<char, 16> kHexDigits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                    '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};

// What stands in front of the cells, for the rows of sectors of up to 4096 bytes.
inline constexpr std::size_t kOffsetText = 7;  // "0xXXX  "
constexpr std::array<std::array<char, 8>, 256> MakeRowOffsets() {
  std::array<std::array<char, 8>, 256> offsets{};
  for (std::size_t i = 0; i < offsets.size(); ++i)
    offsets[i] = {'0', 'x', kHexDigits[i >> 4], kHexDigits[i & 15], '0', ' ', ' ', ' '};
  return offsets;
}
inline constexpr auto kRowOffsets = MakeRowOffsets();

}  // namespace trovisk

#endif
