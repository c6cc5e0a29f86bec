#include "map/text_map.h"

namespace trovisk {

std::string MapAsText(const DiskMap& map, const TextStyle& /*style*/) {
  std::string text;
  for (const Extent& extent : map.extents) {
    text.append(std::to_string(extent.first)).append("\t").append(std::to_string(extent.last)).append("\t");
    text.append(NameOfKind(extent.kind)).append("\t").append(extent.type).append("\t");
    text.append(extent.typeName).append("\t").append(extent.name).append("\t").append(extent.source);
    for (const std::string_view flag : NamesOfFlags(extent.flags))
      text.append("\t").append(flag);
    text.append("\n");
  }
  for (const Check& check : map.checks) {
    text.append(std::to_string(check.sector)).append("\t").append(check.name).append("\t");
    text.append(NameOfVerdict(check.verdict)).append("\t").append(check.found).append("\t");
    text.append(check.expected).append("\n");
  }
  return text;
}

}  // namespace trovisk
