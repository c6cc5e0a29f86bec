// The extents as a table that fits a terminal. Numbers and kinds are never cut; what is long and text is,
// then the source goes, then the flags go below their row; where all of that does not help, each row's texts
// do.

#include <algorithm>
#include <limits>
#include <optional>

#include "map/display_width.h"
#include "map/extent_rows.h"
#include "map/text_layout.h"
#include "map/text_map.h"

namespace trovisk {
namespace {

using Widths = std::array<std::size_t, kExtentColumns>;

constexpr std::array<std::string_view, kExtentColumns> kHeadings = {"",     "first", "last",   "size", "kind",
                                                                    "type", "name",  "source", "flags"};
constexpr std::size_t kGap = 2;  // between two columns; one behind the letter

bool IsNumber(std::size_t column) {
  return column == kFirst || column == kLast || column == kSize;
}

std::size_t GapBehind(std::size_t column) {
  return column == kLetter ? 1 : kGap;
}

// As wide as the widest text in each column; 0 for one that is empty throughout.
Widths NaturalWidths(const std::vector<ExtentRow>& rows) {
  Widths widths{};
  for (const ExtentRow& row : rows) {
    for (std::size_t column = 0; column < kExtentColumns; ++column)
      widths[column] = std::max(widths[column], DisplayWidth(row.cells[column]));
  }
  for (std::size_t column = 0; column < kExtentColumns; ++column) {
    if (widths[column] != 0) widths[column] = std::max(widths[column], kHeadings[column].size());
  }
  return widths;
}

std::size_t LineWidth(const Widths& widths) {
  std::size_t width = 0;
  std::size_t gap = 0;
  for (std::size_t column = 0; column < kExtentColumns; ++column) {
    if (widths[column] == 0) continue;
    width += gap + widths[column];
    gap = GapBehind(column);
  }
  return width;
}

// The widths with texts made narrower, the widest first, until a line has the width; none where that would
// take more than to least.
std::optional<Widths> Narrowed(Widths widths, std::size_t width, const Widths& least) {
  while (LineWidth(widths) > width) {
    std::size_t widest = kExtentColumns;
    for (const std::size_t column : {kType, kName, kSource}) {
      const bool mayShrink = widths[column] > least[column];
      if (mayShrink && (widest == kExtentColumns || widths[column] > widths[widest])) widest = column;
    }
    if (widest == kExtentColumns) return std::nullopt;
    --widths[widest];
  }
  return widths;
}

// What something is and is called says more than which structure says so.
std::optional<Widths> FittingWidths(const Widths& natural, std::size_t width) {
  const auto least = [](std::size_t ofText, std::size_t ofSource) {
    Widths widths{};
    widths[kType] = widths[kName] = ofText;
    widths[kSource] = ofSource;
    return widths;
  };
  if (const auto widths = Narrowed(natural, width, least(20, 11))) return widths;
  Widths fewer = natural;
  fewer[kSource] = 0;
  if (const auto widths = Narrowed(fewer, width, least(16, 0))) return widths;
  fewer[kFlags] = 0;
  return Narrowed(fewer, width, least(8, 0));
}

Colour ColourOf(std::size_t column, const ExtentRow& row) {
  if (column == kLetter || (column == kKind && row.colour == Colour::kFaint)) return row.colour;
  return column == kFlags && row.wrong ? Colour::kWrong : Colour::kNone;
}

// How wide a text may be: as its column, and on into the next ones as long as they are empty.
std::size_t RoomFor(std::size_t column, const ExtentRow& row, const Widths& widths) {
  std::size_t room = widths[column];
  std::size_t gap = GapBehind(column);
  for (std::size_t next = column + 1; next < kExtentColumns && row.cells[next].empty(); ++next) {
    if (widths[next] == 0) continue;
    room += gap + widths[next];
    gap = GapBehind(next);
  }
  return room;
}

// One line. stop: the first column that is not shown.
std::string Line(const ExtentRow& row, const Widths& widths, const TextStyle& style,
                 std::size_t stop = kExtentColumns) {
  std::string line;
  std::size_t blanks = 0;
  std::size_t taken = 0;  // of the blanks to come, by a text that goes on into empty columns
  for (std::size_t column = 0; column < stop; ++column) {
    if (widths[column] == 0) continue;
    const std::string text = IsNumber(column)
                                 ? row.cells[column]
                                 : CutToWidth(row.cells[column], RoomFor(column, row, widths), style.utf8);
    const std::size_t rest = widths[column] - std::min(widths[column], DisplayWidth(text));
    if (IsNumber(column)) blanks += rest;
    if (!text.empty()) {
      line.append(blanks, ' ').append(Coloured(text, ColourOf(column, row), style));
      blanks = 0;
      taken = DisplayWidth(text) - std::min(widths[column], DisplayWidth(text));
    }
    if (text.empty() && IsNumber(column)) blanks -= rest;
    blanks += (IsNumber(column) && !text.empty() ? 0 : rest) + GapBehind(column);
    const std::size_t less = std::min(blanks, taken);
    blanks -= less;
    taken -= less;
  }
  return line + "\n";
}

// Texts of a row on lines below it, further in than its kind.
std::string Below(const ExtentRow& row, const std::string& texts, Colour colour, const TextStyle& style) {
  constexpr std::size_t kIndent = 4;
  const std::size_t indent = kIndent + std::min(row.cells[kKind].find_first_not_of(' '), 2 * kIndent);
  return texts.empty() ? ""
                       : Coloured(Wrap(std::string(indent, ' '), indent, texts, style.width), colour, style);
}

std::string RowText(const ExtentRow& row, const Widths& widths, const TextStyle& style) {
  const std::string flags = widths[kFlags] == 0 ? row.cells[kFlags] : "";
  return Line(row, widths, style) + Below(row, flags, ColourOf(kFlags, row), style);
}

// Letter and numbers on a line, everything else below it.
std::string Stacked(const ExtentRow& row, const Widths& widths, const TextStyle& style) {
  std::string texts;
  for (std::size_t column = kKind; column < kFlags; ++column) {
    std::string_view text = row.cells[column];
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (!text.empty()) texts.append(texts.empty() ? "" : ", ").append(text);
  }
  if (!row.cells[kFlags].empty()) texts.append(" (").append(row.cells[kFlags]).append(")");
  return Line(row, widths, style, kKind) + Below(row, texts, Colour::kNone, style);
}

}  // namespace

std::string TableOfExtents(const DiskMap& map, const TextStyle& style) {
  const std::vector<ExtentRow> rows = RowsOfExtents(map, style);
  if (rows.empty()) return {};
  const Widths natural = NaturalWidths(rows);
  const auto fitting = FittingWidths(natural, style.width);
  const Widths widths = fitting.value_or(natural);
  ExtentRow headings;
  std::copy(kHeadings.begin(), kHeadings.end(), headings.cells.begin());
  std::string text = Line(headings, widths, style, fitting ? kExtentColumns : std::size_t{kKind});
  for (const ExtentRow& row : rows)
    text += fitting ? RowText(row, widths, style) : Stacked(row, widths, style);
  return text;
}

}  // namespace trovisk
