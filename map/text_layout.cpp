#include "map/text_layout.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "frame/disk/disk_list.h"
#include "map/display_width.h"

namespace trovisk {
namespace {

// The bytes of the beginning of a word that fit into so many columns: one character at least.
std::size_t BytesThatFit(std::string_view word, std::size_t width) {
  std::string_view rest = word;
  std::size_t used = WidthOf(TakeCharacter(rest));
  std::size_t bytes = word.size() - rest.size();
  while (!rest.empty()) {
    used += WidthOf(TakeCharacter(rest));
    if (used > width) break;
    bytes = word.size() - rest.size();
  }
  return bytes;
}

}  // namespace

std::string Wrap(std::string_view first, std::size_t indent, std::string_view text, std::size_t width) {
  std::string newLine(indent + 1, ' ');
  newLine.front() = '\n';
  std::string lines(first);
  std::size_t column = DisplayWidth(first);
  for (bool fresh = true; !text.empty(); fresh = false) {
    const std::size_t end = std::min(text.find(' '), text.size());
    std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!fresh && column + 1 + DisplayWidth(word) > width) {
      lines += newLine;
      column = indent;
    } else if (!fresh) {
      lines += ' ';
      ++column;
    }
    while (column + DisplayWidth(word) > width) {
      const std::size_t bytes = BytesThatFit(word, width - std::min(column, width));
      if (bytes == word.size()) break;
      lines.append(word.substr(0, bytes)).append(newLine);
      word.remove_prefix(bytes);
      column = indent;
    }
    lines += word;
    column += DisplayWidth(word);
  }
  return lines.append("\n");
}

Colour ColourOfPartition(std::size_t number) {
  constexpr std::size_t kColours = 4;
  return static_cast<Colour>(static_cast<std::size_t>(Colour::kFirstOfPartitions) + number % kColours);
}

std::string Coloured(std::string text, Colour colour, const TextStyle& style) {
  // Select Graphic Rendition of ECMA-48. Red is kept for what is wrong.
  constexpr std::array<std::string_view, 9> kSequences = {
      "", "\x1b[1;31m", "\x1b[1;33m", "\x1b[32m", "\x1b[2m", "\x1b[36m", "\x1b[35m", "\x1b[34m", "\x1b[33m"};
  if (!style.colours || colour == Colour::kNone || text.empty()) return text;
  text.insert(text.ends_with('\n') ? text.size() - 1 : text.size(), "\x1b[0m");
  return text.insert(0, kSequences.at(static_cast<std::size_t>(colour)));
}

std::string Counted(u64 count, std::string_view thing) {
  return std::to_string(count).append(" ").append(thing).append(count == 1 ? "" : "s");
}

std::string SizeOfSectors(u64 sectors, u32 sectorSize) {
  if (sectorSize == 0 || sectors > std::numeric_limits<u64>::max() / sectorSize)
    return Counted(sectors, "sector");
  return SizeText(sectors * sectorSize);
}

std::string MoreLine(std::size_t count, std::size_t most, const TextStyle& style) {
  if (style.all || count <= most) return {};
  return std::string("  ").append(std::to_string(count - most)).append(" more; --all shows them.\n");
}

}  // namespace trovisk
