// Text in columns and lines of a terminal. All widths are columns (map/display_width.h).

#ifndef TROVISK_MAP_TEXT_LAYOUT_H
#define TROVISK_MAP_TEXT_LAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "frame/bytes.h"
#include "map/text_style.h"

namespace trovisk {

// The first words and the text behind them, in lines of at most so many columns: broken at blanks, words that
// are longer than a line within. From the second on they begin with as many blanks as indent says. Ends in
// '\n'.
std::string Wrap(std::string_view first, std::size_t indent, std::string_view text, std::size_t width);

enum class Colour : u8 { kNone, kWrong, kMissing, kGood, kFaint, kFirstOfPartitions };
// Of the partition that is counted from 0; neighbours have different ones.
Colour ColourOfPartition(std::size_t number);

// The text between the sequences that switch the colour on and off, where the style has colours.
std::string Coloured(std::string text, Colour colour, const TextStyle& style);

// "3 checks", "1 check".
std::string Counted(u64 count, std::string_view thing);

// The length of so many sectors: "465.8 GiB", or "N sectors" where that is beyond 2^64 bytes.
std::string SizeOfSectors(u64 sectors, u32 sectorSize);

// Where more than most things are to be shown, "N more; --all shows them." on an indented line, else nothing.
std::string MoreLine(std::size_t count, std::size_t most, const TextStyle& style);

}  // namespace trovisk

#endif
