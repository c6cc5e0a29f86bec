#include "map/disk_table.h"

#include <algorithm>
#include <array>

namespace trovisk {
namespace {

using Row = std::array<std::string, 4>;

// Numbers to the right, texts to the left.
std::string Padded(const Row& row, const std::array<std::size_t, 4>& widths) {
  std::string line;
  for (std::size_t column = 0; column < row.size(); ++column) {
    const std::string blanks(widths[column] - row[column].size(), ' ');
    const bool right = column == 0 || column == 2;
    line.append(column == 0 ? "" : "  ").append(right ? blanks + row[column] : row[column] + blanks);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

std::string TableForPerson(const std::vector<ListedDisk>& disks) {
  if (disks.empty()) return "The system lists no disks.\n";
  std::vector<Row> rows = {{"number", "device", "size", "model"}};
  for (const ListedDisk& each : disks) {
    rows.push_back(
        {std::to_string(each.number), each.device, each.bytes == 0 ? "" : SizeText(each.bytes), each.model});
  }
  std::array<std::size_t, 4> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column)
      widths[column] = std::max(widths[column], row[column].size());
  }
  std::string table;
  for (const Row& row : rows)
    table += Padded(row, widths);
  return table;
}

}  // namespace

std::string DisksAsText(const std::vector<ListedDisk>& disks, bool forPerson) {
  if (forPerson) return TableForPerson(disks);
  std::string lines = "#disk\tnumber\tdevice\tbytes\tmodel\n";
  for (const ListedDisk& each : disks) {
    lines.append("disk\t").append(std::to_string(each.number)).append("\t").append(each.device).append("\t");
    lines.append(each.bytes == 0 ? "-" : std::to_string(each.bytes)).append("\t");
    lines.append(each.model.empty() ? "-" : each.model).append("\n");
  }
  return lines;
}

}  // namespace trovisk
