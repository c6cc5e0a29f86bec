#include "map/extent_rows.h"

#include <algorithm>
#include <optional>

#include "map/disk_bar.h"

namespace trovisk {
namespace {

// What a person reads at once; rows at most in any case; and how few are not worth folding.
constexpr std::size_t kReadAtOnce = 100;
constexpr std::size_t kMostRows = 1000;
constexpr std::size_t kRowsAtTheEnd = 100;
constexpr std::size_t kWorthFolding = 4;

std::string Joined(const std::vector<std::string_view>& names) {
  std::string text;
  for (const std::string_view name : names)
    text.append(text.empty() ? "" : ", ").append(name);
  return text;
}

// The type as the disk has it where it is short, and what it means.
std::string TypeText(const Extent& extent) {
  if (extent.typeName.empty()) return extent.type;
  return extent.type.starts_with("0x") ? extent.type + " " + extent.typeName : extent.typeName;
}

std::string SizeOfExtent(const Extent& extent, u32 sectorSize) {
  const u64 sectors = SectorsOf(extent);
  if (sectors == 0 && (extent.flags & kFlagEmpty) == 0) return "?";
  return SizeOfSectors(sectors, sectorSize);
}

std::string Indented(u64 depth, std::string_view text) {
  constexpr u64 kDeepest = 4;
  return std::string(static_cast<std::size_t>(std::min(depth, kDeepest)), ' ').append(text);
}

ExtentRow RowOf(const Extent& extent, std::optional<std::size_t> number, u32 sectorSize) {
  ExtentRow row{{number ? std::string(1, LetterOf(*number)) : "", std::to_string(extent.first),
                 std::to_string(extent.last), SizeOfExtent(extent, sectorSize),
                 Indented(extent.depth, NameOfKind(extent.kind)), TypeText(extent), extent.name,
                 extent.source, Joined(NamesOfFlags(extent.flags))}};
  if (number) row.colour = ColourOfPartition(*number);
  if (extent.kind == ExtentKind::kGap) row.colour = Colour::kFaint;
  row.wrong = IsWrong(extent);
  return row;
}

bool MayFold(const Extent& extent) {
  return (extent.kind == ExtentKind::kArea || extent.kind == ExtentKind::kStructure) && extent.flags == 0;
}

// The end of the run of extents that are alike from one on.
std::size_t EndOfRun(const std::vector<Extent>& extents, std::size_t begin) {
  std::size_t end = begin + 1;
  if (!MayFold(extents[begin])) return end;
  while (end < extents.size() && MayFold(extents[end]) && extents[end].kind == extents[begin].kind &&
         extents[end].depth == extents[begin].depth) {
    ++end;
  }
  return end;
}

ExtentRow RowOfRun(const std::vector<Extent>& extents, std::size_t begin, std::size_t end) {
  const Extent& first = extents[begin];
  u64 last = first.last;
  for (std::size_t i = begin; i < end; ++i)
    last = std::max(last, extents[i].last);
  ExtentRow row;
  row.cells[kFirst] = std::to_string(first.first);
  row.cells[kLast] = std::to_string(last);
  row.cells[kKind] = Indented(first.depth, NameOfKind(first.kind));
  row.cells[kType] = Counted(end - begin, NameOfKind(first.kind));
  row.cells[kName] = "--all shows them";
  return row;
}

}  // namespace

u64 SectorsOf(const Extent& extent) {
  if ((extent.flags & (kFlagEmpty | kFlagReversed)) != 0 || extent.last < extent.first) return 0;
  return extent.last - extent.first + 1;
}

std::vector<ExtentRow> RowsOfExtents(const DiskMap& map, const TextStyle& style) {
  const auto numbers = NumbersInBar(map);
  const bool fold = !style.all && map.extents.size() > kReadAtOnce;
  std::vector<ExtentRow> rows;
  std::vector<ExtentRow> lastRows;  // of those that have no room, turning round
  std::size_t leftOut = 0;
  for (std::size_t i = 0; i < map.extents.size();) {
    const std::size_t end = fold ? EndOfRun(map.extents, i) : i + 1;
    const bool folded = end - i >= kWorthFolding;
    ExtentRow row =
        folded ? RowOfRun(map.extents, i, end) : RowOf(map.extents[i], numbers[i], map.disk.sectorSize);
    i = folded ? end : i + 1;
    if (style.all || rows.size() < kMostRows - kRowsAtTheEnd) {
      rows.push_back(std::move(row));
    } else if (lastRows.size() < kRowsAtTheEnd) {
      lastRows.push_back(std::move(row));
    } else {
      lastRows[leftOut++ % kRowsAtTheEnd] = std::move(row);
    }
  }
  if (leftOut != 0) {
    ExtentRow row;
    row.cells[kKind] = std::string("...");
    row.cells[kType] = std::to_string(leftOut) + " more";
    row.cells[kName] = "--all shows them";
    rows.push_back(std::move(row));
  }
  std::rotate(lastRows.begin(), lastRows.begin() + static_cast<std::ptrdiff_t>(leftOut % kRowsAtTheEnd),
              lastRows.end());
  std::move(lastRows.begin(), lastRows.end(), std::back_inserter(rows));
  return rows;
}

}  // namespace trovisk
