#include "map/html_page.h"

#include "map/base64.h"
#include "map/page_data.h"
#include "map/page_files.h"
#include "map/page_tables.h"
#include "map/page_text.h"
#include "refimages/sha256.h"

namespace trovisk {
namespace {

std::string HashOf(std::string_view text) {
  const std::vector<u8> bytes(text.begin(), text.end());
  return "'sha256-" + Base64(Sha256(bytes)) + "'";
}

// Nothing is loaded, nothing is sent, and of all styles and scripts only the page's own two count.
std::string Policy() {
  return "default-src 'none'; style-src " + HashOf(kPageStyle) + "; script-src " + HashOf(kPageScript) +
         "; base-uri 'none'; form-action 'none'";
}

// The page draws the raw dump at the end of a report from the bytes.
std::string_view WithoutDump(const Structure& structure) {
  const std::string_view text = structure.text;
  const std::string sector = "Reading sector # " + std::to_string(structure.sector) + " [";
  if (structure.structure == "raw_sector") return text.substr(0, text.find('\n'));
  return text.substr(0, text.rfind(sector + "as a raw sector]"));
}

// Gives the sector behind which structures are left out.
std::optional<u64> WriteData(const DiskMap& map, const StructureVisitor& structures,
                             std::vector<StructureLine>& lines,
                             const std::function<void(std::string_view)>& write) {
  PageData data(write);
  std::optional<u64> cutBehind;
  const auto visitAndNote = [&](const std::function<void(const Structure&)>& visit) {
    cutBehind = structures([&](const Structure& structure) {
      lines.push_back({structure.sector, structure.count, structure.title, structure.valid});
      Structure shown = structure;
      shown.text = WithoutDump(structure);
      while (shown.bytes.size() > 1 && shown.bytes.back() == 0)
        shown.bytes.pop_back();
      visit(shown);
    });
    return cutBehind;
  };
  WriteMapAsJson(map, visitAndNote, [&](std::string_view piece) { data.Add(piece); });
  data.Finish();
  return cutBehind;
}

std::string_view NameOfDisk(std::string_view path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos || slash + 1 == path.size() ? path : path.substr(slash + 1);
}

}  // namespace

void WriteMapAsPage(const DiskMap& map, const StructureVisitor& structures,
                    const std::function<void(std::string_view)>& write) {
  std::vector<StructureLine> lines;
  std::optional<u64> cutBehind;
  const auto part = [&](std::string_view name) {
    if (name == "policy") write(Policy());
    if (name == "title") write(HtmlText(NameOfDisk(map.disk.path)) + " – map of the disk");
    if (name == "name") write(HtmlText(map.disk.path));
    if (name == "verdict") write(VerdictOfPage(map));
    if (name == "facts") write(FactsOfPage(map));
    if (name == "bar") write(BarOfPage(map));
    if (name == "checks") write(ChecksOfPage(map));
    if (name == "joined") write(JoinedOfPage(map));
    if (name == "extents") write(ExtentsOfPage(map));
    if (name == "data") cutBehind = WriteData(map, structures, lines, write);
    if (name == "left-out" && cutBehind) {
      write("<p class=\"alarm-note\">Structures behind sector " + HtmlNumber(*cutBehind) +
            " are not among these.</p>");
    }
    if (name == "structures") write(StructuresOfPage(lines));
    if (name == "version") write(TROVISK_VERSION);
    if (name == "style") write(kPageStyle);
    if (name == "script") write(kPageScript);
  };
  std::string_view rest = kPageTemplate;
  for (std::size_t open; (open = rest.find("{{")) != std::string_view::npos;) {
    write(rest.substr(0, open));
    const std::size_t close = rest.find("}}", open);
    part(rest.substr(open + 2, close - open - 2));
    rest.remove_prefix(close + 2);
  }
  write(rest);
}

}  // namespace trovisk
