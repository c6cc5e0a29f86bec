#include "map/text_map.h"

#include "map/disk_bar.h"
#include "map/text_layout.h"

namespace trovisk {
namespace {

// The disk in one line, as far as it is known.
std::string DiskLine(const DiskMap& map, const TextStyle& style) {
  const DiskFacts& disk = map.disk;
  std::string facts = ", sectors of " + Counted(disk.sectorSize, "byte");
  if (disk.sectors != 0) {
    facts = ", " + SizeOfSectors(disk.sectors, disk.sectorSize) + " in " + Counted(disk.sectors, "sector") +
            " of " + Counted(disk.sectorSize, "byte");
  }
  const std::string scheme =
      disk.scheme.empty() || disk.scheme == "none" ? "no partition table" : disk.scheme;
  return Wrap("", 2, disk.path + facts + ", " + scheme, style.width);
}

// Behind an empty line, where there is something.
std::string Paragraph(const std::string& text) {
  return text.empty() ? "" : "\n" + text;
}

std::string MapForPerson(const DiskMap& map, const TextStyle& style) {
  std::string text = DiskLine(map, style);
  text += Paragraph(DiskBar(map, style));
  text += Paragraph(TableOfExtents(map, style));
  text += Paragraph(ChecksForPerson(map, style));
  text += Paragraph(JoinedViews(map, style));
  std::string cut;
  for (const std::string& sentence : map.cut)
    cut += Wrap("", 2, sentence, style.width);
  text += Paragraph(cut);
  const bool wrong = map.ExitStatus() != 0;
  const std::string verdict = Wrap("", 0, VerdictInWords(map), style.width);
  return text + Paragraph(Coloured(verdict, wrong ? Colour::kWrong : Colour::kGood, style));
}

}  // namespace

std::string MapAsText(const DiskMap& map, const TextStyle& style) {
  return style.forPerson ? MapForPerson(map, style) : MapAsRecords(map);
}

}  // namespace trovisk
