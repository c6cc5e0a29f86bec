#include "map/disk_bar.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "map/display_width.h"
#include "map/text_layout.h"

namespace trovisk {
namespace {

// A stretch of the bar: a partition, or what lies between two.
struct Piece {
  u64 first = 0;
  u64 sectors = 0;  // those that no piece before it has
  std::optional<std::size_t> number = {};
  std::string_view label = {};
  std::size_t columns = 0;
};

constexpr u32 kWithoutPlace = kFlagContainer | kFlagReversed | kFlagEmpty | kFlagOtherReading;

bool HasPlace(const Extent& extent) {
  return (extent.flags & kWithoutPlace) == 0 && extent.last >= extent.first;
}

bool IsPartition(const Extent& extent) {
  return extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical;
}

// The partitions in their order, what lies between them, and what is left of the disk's end.
std::vector<Piece> PiecesOf(const DiskMap& map) {
  const auto numbers = NumbersInBar(map);
  std::vector<Piece> pieces;
  u64 position = 0;
  std::size_t next = 0;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const Extent& extent = map.extents[i];
    if (numbers[i] != next) continue;  // no number, or one that it shares
    ++next;
    const u64 end = std::min(extent.last, map.disk.sectors - 1) + 1;
    if (extent.first > position) pieces.push_back({position, extent.first - position});
    position = std::max(position, extent.first);
    pieces.push_back({extent.first, std::max(end, position) - position, numbers[i],
                      extent.name.empty() ? extent.typeName : extent.name});
    position = std::max(position, end);
  }
  if (position < map.disk.sectors) pieces.push_back({position, map.disk.sectors - position});
  return pieces;
}

// The columns that it can do without.
std::size_t Spare(const Piece& piece) {
  return piece.columns - (piece.number ? 1 : 0);
}

// Shares the columns out by size, largest remainder first; a partition has one at least.
void ShareOut(std::vector<Piece>& pieces, u64 sectors, std::size_t columns) {
  std::vector<std::pair<double, Piece*>> remainders;
  std::size_t used = 0;
  for (Piece& piece : pieces) {
    const double share =
        static_cast<double>(piece.sectors) / static_cast<double>(sectors) * static_cast<double>(columns);
    piece.columns = std::max(static_cast<std::size_t>(share), std::size_t{piece.number ? 1U : 0U});
    used += piece.columns;
    remainders.emplace_back(share - static_cast<double>(piece.columns), &piece);
  }
  std::stable_sort(remainders.begin(), remainders.end(),
                   [](const auto& one, const auto& other) { return one.first > other.first; });
  for (std::size_t i = 0; used < columns; ++i, ++used)
    ++remainders[i % remainders.size()].second->columns;
  for (; used > columns; --used) {
    --std::max_element(pieces.begin(), pieces.end(), [](const Piece& one, const Piece& other) {
        return Spare(one) < Spare(other);
      })->columns;
  }
}

// One column of the bar. Patterns tell neighbours apart where there are block characters, else letters do.
std::string_view CellOf(std::optional<std::size_t> number, const TextStyle& style) {
  static constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz*";
  if (!style.utf8) return number ? kLetters.substr(std::min<std::size_t>(*number, 52), 1) : ".";
  constexpr std::array<std::string_view, 3> kPatterns = {"\u2588", "\u2592", "\u2593"};
  return number ? kPatterns.at(*number % kPatterns.size()) : "\u00B7";
}

std::string Framed(const std::string& cells, const TextStyle& style) {
  return style.utf8 ? "\u2595" + cells + "\u258F\n" : "[" + cells + "]\n";
}

// A letter below each partition's first column, and its name behind that where there is room.
std::string Labels(const std::vector<Piece>& pieces, const TextStyle& style) {
  std::string line;
  std::size_t blanks = 1;  // below the frame
  for (const Piece& piece : pieces) {
    blanks += piece.columns;
    if (!piece.number) continue;
    std::string label(1, LetterOf(*piece.number));
    constexpr std::size_t kBesideName = 3;  // the letter and two blanks
    constexpr std::size_t kWorthCutting = 8;
    const std::size_t room = piece.columns - std::min(piece.columns, kBesideName);
    // A name may take no column, and has none to stand in all the same.
    if (!piece.label.empty() && room != 0 && (DisplayWidth(piece.label) <= room || room >= kWorthCutting))
      label.append(" ").append(CutToWidth(piece.label, room, style.utf8));
    line.append(blanks - piece.columns, ' ');
    blanks = piece.columns - DisplayWidth(label);
    line += Coloured(label, ColourOfPartition(*piece.number), style);
  }
  return line + "\n";
}

// More partitions than columns: what each column holds, '+' where that are several.
std::string CrowdedBar(const std::vector<Piece>& pieces, u64 sectors, std::size_t columns,
                       const TextStyle& style) {
  std::vector<std::size_t> held(columns);
  std::vector<std::size_t> numbers(columns);
  const auto columnOf = [&](u64 sector) {
    const double share = static_cast<double>(sector) / static_cast<double>(sectors);
    return std::min(columns - 1, static_cast<std::size_t>(share * static_cast<double>(columns)));
  };
  for (const Piece& piece : pieces) {
    if (!piece.number) continue;
    const u64 last = piece.first + (piece.sectors == 0 ? 0 : piece.sectors - 1);
    for (std::size_t column = columnOf(piece.first); column <= columnOf(last); ++column) {
      ++held[column];
      numbers[column] = *piece.number;
    }
  }
  std::string cells;
  for (std::size_t column = 0; column < columns; ++column) {
    cells += held[column] > 1    ? "+"
             : held[column] == 1 ? CellOf(numbers[column], style)
                                 : CellOf(std::nullopt, style);
  }
  return Framed(cells, style);
}

}  // namespace

std::vector<std::optional<std::size_t>> NumbersInBar(const DiskMap& map) {
  const auto wanted = [&](auto isWanted) {
    std::vector<std::optional<std::size_t>> numbers(map.extents.size());
    std::map<std::pair<u64, u64>, std::size_t> known;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const Extent& extent = map.extents[i];
      if (!isWanted(extent) || !HasPlace(extent) || extent.first >= map.disk.sectors) continue;
      numbers[i] = known.emplace(std::pair(extent.first, extent.last), known.size()).first->second;
    }
    return numbers;
  };
  if (std::any_of(map.extents.begin(), map.extents.end(), IsPartition)) return wanted(IsPartition);
  return wanted([](const Extent& extent) { return extent.kind == ExtentKind::kVolume && extent.depth == 0; });
}

char LetterOf(std::size_t number) {
  if (number < 26) return static_cast<char>('A' + number);
  return number < 52 ? static_cast<char>('a' + (number - 26)) : '*';
}

std::string DiskBar(const DiskMap& map, const TextStyle& style) {
  if (map.disk.sectors == 0 || style.width < 4) return {};
  std::vector<Piece> pieces = PiecesOf(map);
  const std::size_t columns = style.width - 2;
  const auto partitions = static_cast<std::size_t>(std::count_if(
      pieces.begin(), pieces.end(), [](const Piece& piece) { return piece.number.has_value(); }));
  if (partitions > columns) return CrowdedBar(pieces, map.disk.sectors, columns, style);
  ShareOut(pieces, map.disk.sectors, columns);
  std::string cells;
  for (const Piece& piece : pieces) {
    std::string stretch;
    for (std::size_t i = 0; i < piece.columns; ++i)
      stretch += CellOf(piece.number, style);
    cells += Coloured(stretch, piece.number ? ColourOfPartition(*piece.number) : Colour::kFaint, style);
  }
  return Framed(cells, style) + (partitions == 0 ? "" : Labels(pieces, style));
}

}  // namespace trovisk
