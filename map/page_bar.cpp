// The bar of a page that stands there without the page's script.

#include <algorithm>
#include <cstdio>

#include "map/page_tables.h"
#include "map/page_text.h"
#include "map/text_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostPieces = 400;
constexpr double kLabelled = 4;  // percent of the bar that a label needs

std::string Percent(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f%%", value);
  return text;
}

bool StandsInBar(const Extent& extent, u64 sectors) {
  if (extent.kind == ExtentKind::kVolume || extent.kind == ExtentKind::kArea) return false;
  if ((extent.flags & (kFlagContainer | kFlagReversed | kFlagEmpty)) != 0) return false;
  return extent.first < sectors && extent.last >= extent.first;
}

std::string Piece(const Extent& extent, u64 sectors, u32 sectorSize) {
  const auto percent = [&](u64 sector) {
    return 100.0 * static_cast<double>(sector) / static_cast<double>(sectors);
  };
  const u64 end = std::min(extent.last, sectors - 1) + 1;
  const double x = percent(extent.first);
  const double width = std::max(percent(end) - x, 0.05);
  const std::string& name = extent.name.empty() ? extent.typeName : extent.name;
  const std::string said = HtmlText(extent.kind == ExtentKind::kGap ? "Claimed by nothing" : name);
  std::string html = "<g><title>" + said + ", first " + std::to_string(extent.first) + ", last " +
                     std::to_string(extent.last) + ", " + SizeOfSectors(end - extent.first, sectorSize) +
                     "</title><rect x=\"" + Percent(x) + "\" y=\"0\" width=\"" + Percent(width) +
                     "\" height=\"40\" class=\"still-" + std::string(NameOfKind(extent.kind)) + "\"/>";
  if (width >= kLabelled && extent.kind != ExtentKind::kGap) {
    html += "<svg x=\"" + Percent(x) + "\" width=\"" + Percent(width) +
            "\" height=\"40\"><text x=\"6\" y=\"25\">" + said + "</text></svg>";
  }
  return html + "</g>\n";
}

}  // namespace

std::string BarOfPage(const DiskMap& map) {
  if (map.disk.sectors == 0) return {};
  std::string html =
      "<svg class=\"still\" width=\"100%\" height=\"40\" role=\"img\" aria-label=\"The disk to scale\">\n";
  std::size_t pieces = 0;
  for (const Extent& extent : map.extents) {
    if (StandsInBar(extent, map.disk.sectors) && ++pieces <= kMostPieces)
      html += Piece(extent, map.disk.sectors, map.disk.sectorSize);
  }
  return html + "</svg>\n";
}

}  // namespace trovisk
