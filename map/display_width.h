// How much room text takes on a terminal, which is not how many bytes or characters it has.
//
// Widths follow Unicode Standard Annex #11, East Asian Width (wide and full-width: two columns), and the
// general categories Mn, Me and Cf (combining and invisible: none). Characters whose width is ambiguous
// count as one column.

#ifndef TROVISK_MAP_DISPLAY_WIDTH_H
#define TROVISK_MAP_DISPLAY_WIDTH_H

#include <cstddef>
#include <string>
#include <string_view>

namespace trovisk {

// The first character of UTF-8 text that is not empty, which is shortened by it; U+FFFD for a byte that
// begins none.
char32_t TakeCharacter(std::string_view& rest);

// The columns of one character, and of UTF-8 text on one line.
std::size_t WidthOf(char32_t character);
std::size_t DisplayWidth(std::string_view text);

// The text where it is at most so wide, else as much of its beginning as fits in front of an ellipsis: one
// character where utf8 is set, else up to three dots.
std::string CutToWidth(std::string_view text, std::size_t width, bool utf8);

}  // namespace trovisk

#endif
