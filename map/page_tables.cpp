#include "map/page_tables.h"

#include <algorithm>
#include <span>

#include "map/page_text.h"
#include "map/text_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostExtents = 500;
constexpr std::size_t kMostChecks = 500;
constexpr std::size_t kMostStructureLines = 4000;

std::size_t CountOf(const DiskMap& map, Verdict verdict) {
  return static_cast<std::size_t>(std::count_if(
      map.checks.begin(), map.checks.end(), [&](const Check& check) { return check.verdict == verdict; }));
}

std::string CheckRow(const Check& check) {
  const std::string_view verdict = NameOfVerdict(check.verdict);
  std::string name(verdict);
  std::replace(name.begin(), name.end(), ' ', '-');
  return "<tr class=\"" + name + "\">" +
         HtmlCell("<span class=\"verdict " + name + "\">" + std::string(verdict) + "</span>") +
         "<th scope=\"row\">" + HtmlText(check.name) + "</th>" + HtmlCell(HtmlPlace(check.sector), "number") +
         HtmlCell(HtmlText(check.found), "found") + HtmlCell(HtmlText(check.expected), "expected") +
         "</tr>\n";
}

// Those of one verdict, or of either of two.
std::string CheckTable(const DiskMap& map, Verdict one, Verdict other) {
  std::string html = "<table class=\"checks\">\n" +
                     HtmlHead({{"Verdict"}, {"Check"}, {"Sector", true}, {"Found"}, {"Expected"}}) +
                     "<tbody>\n";
  std::size_t count = 0;
  for (const Check& check : map.checks) {
    if (check.verdict != one && check.verdict != other) continue;
    if (++count <= kMostChecks) html += CheckRow(check);
  }
  html += "</tbody></table>\n";
  return count > kMostChecks ? html + HtmlCutLine(count - kMostChecks) : html;
}

std::string FoldedChecks(const DiskMap& map, Verdict verdict, std::string_view what) {
  const std::size_t count = CountOf(map, verdict);
  if (count == 0) return {};
  return "<details><summary>" + Counted(count, "check") + " " + std::string(what) + "</summary>\n" +
         CheckTable(map, verdict, verdict) + "</details>\n";
}

std::string SizeOf(const Extent& extent, u32 sectorSize) {
  if ((extent.flags & kFlagReversed) != 0 || extent.last < extent.first) return "&ndash;";
  if ((extent.flags & kFlagEmpty) != 0) return "0 bytes";
  const u64 sectors = extent.last - extent.first + 1;
  return sectors == 0 ? "2^64 sectors" : SizeOfSectors(sectors, sectorSize);
}

std::string TitleOf(const Extent& extent) {
  if (extent.kind == ExtentKind::kGap) return "Claimed by nothing";
  const std::string& type = extent.typeName.empty() ? extent.type : extent.typeName;
  if (extent.name.empty() || extent.name == type) return HtmlText(type);
  return HtmlText(extent.name + " (" + type + ")");
}

std::string ExtentRow(const Extent& extent, u32 sectorSize) {
  std::string flags;
  for (const std::string_view flag : NamesOfFlags(extent.flags))
    flags.append("<span class=\"badge\">").append(flag).append("</span>");
  const u64 depth = std::min<u64>(extent.depth, 6);
  return "<tr><th scope=\"row\" class=\"what depth-" + std::to_string(depth) + "\">" + TitleOf(extent) +
         "</th>" + HtmlCell(NameOfKind(extent.kind), "kind") + HtmlCell(HtmlPlace(extent.first), "number") +
         HtmlCell(HtmlNumber(extent.last), "number") + HtmlCell(SizeOf(extent, sectorSize), "number size") +
         HtmlCell(HtmlText(extent.source), "source") + HtmlCell(flags, "flags") + "</tr>\n";
}

std::string VerdictWhereNothingIsWrong(const DiskMap& map) {
  if (!HasTableOrVolume(map)) return "<p class=\"verdict-pill\">No table, no volume found</p>";
  const u64 unknown = UnrecognisedVolumes(map);
  if (unknown == 0) return "<p class=\"verdict-pill good\">Nothing wrong found</p>";
  return "<p class=\"verdict-pill\"><a href=\"#checks\">Nothing wrong, " + Counted(unknown, "volume") +
         " not recognised</a></p>";
}

}  // namespace

std::string VerdictOfPage(const DiskMap& map) {
  if (map.ExitStatus() == 0) return VerdictWhereNothingIsWrong(map);
  const std::size_t bad = CountOf(map, Verdict::kBad);
  const std::size_t missing = CountOf(map, Verdict::kMissing);
  std::string said;
  if (bad != 0) said = Counted(bad, "check") + " bad";
  if (missing != 0) said += (said.empty() ? "" : ", ") + Counted(missing, "thing") + " missing";
  if (said.empty()) said = "Extents do not fit";
  return "<p class=\"verdict-pill bad\"><a href=\"#checks\">" + said + "</a></p>";
}

std::string FactsOfPage(const DiskMap& map) {
  const DiskFacts& disk = map.disk;
  std::string structures = std::to_string(map.structures);
  if (map.invalidStructures != 0) structures += ", " + std::to_string(map.invalidStructures) + " invalid";
  const bool known = disk.sectors != 0;
  std::string html =
      HtmlFacts({{"Size", known ? SizeOfSectors(disk.sectors, disk.sectorSize) : "unknown"},
                 {"Sectors", known ? HtmlNumber(disk.sectors) : "unknown"},
                 {"Sector size", std::to_string(disk.sectorSize) + " bytes"},
                 {"Partitioned by", HtmlText(disk.scheme)},
                 {disk.id.starts_with("0x") ? "Disk signature" : "Disk GUID", HtmlText(disk.id)},
                 {"Structures", structures}});
  for (const std::string& sentence : map.cut)
    html += "<p class=\"alarm-note\">" + HtmlText(sentence) + "</p>\n";
  return html;
}

std::string ChecksOfPage(const DiskMap& map) {
  const std::size_t wrong = CountOf(map, Verdict::kBad) + CountOf(map, Verdict::kMissing);
  std::string html;
  if (wrong != 0) {
    html = CheckTable(map, Verdict::kBad, Verdict::kMissing);
  } else if (!HasTableOrVolume(map) && CountOf(map, Verdict::kGood) == 0) {
    html = "<p>Nothing could be checked: neither a table nor a volume was found.</p>\n";
  } else {
    html = "<p class=\"all-good\">None of the checks found anything wrong.</p>\n";
  }
  return html + FoldedChecks(map, Verdict::kGood, "good") +
         FoldedChecks(map, Verdict::kNotChecked, "not made");
}

std::string ExtentsOfPage(const DiskMap& map) {
  std::string html =
      "<table class=\"extents\">\n" +
      HtmlHead({{"What"}, {"Kind"}, {"First", true}, {"Last", true}, {"Size", true}, {"Source"}, {"Flags"}}) +
      "<tbody>\n";
  for (std::size_t i = 0; i < std::min(map.extents.size(), kMostExtents); ++i)
    html += ExtentRow(map.extents[i], map.disk.sectorSize);
  html += "</tbody></table>\n";
  return map.extents.size() > kMostExtents ? html + HtmlCutLine(map.extents.size() - kMostExtents) : html;
}

std::string StructuresOfPage(const std::vector<StructureLine>& structures) {
  std::string html =
      "<table class=\"structure-lines\">\n" + HtmlHead({{"Sector", true}, {"Structure"}, {""}}) + "<tbody>\n";
  for (const StructureLine& line :
       std::span(structures).first(std::min(structures.size(), kMostStructureLines))) {
    html += "<tr id=\"sector-" + std::to_string(line.sector) + "\">" +
            HtmlCell(HtmlNumber(line.sector), "number") + "<th scope=\"row\">" + HtmlText(line.title) +
            "</th>" +
            HtmlCell(std::string(line.valid ? "" : "invalid ") +
                     (line.count > 1 ? std::to_string(line.count) + " alike" : "")) +
            "</tr>\n";
  }
  html += "</tbody></table>\n";
  return structures.size() > kMostStructureLines ? html + HtmlCutLine(structures.size() - kMostStructureLines)
                                                 : html;
}

}  // namespace trovisk
