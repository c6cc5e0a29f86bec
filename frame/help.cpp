#include "frame/help.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "frame/disk/disk_list.h"
#include "frame/help_words.h"
#include "frame/report/output.h"
#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::string_view kUsage = R"(Usage: trovisk disk [first_sector [last_sector]]
       trovisk --help | --version

Reads the metadata of one disk, sector by sector, and shows the fields of its
structures from the master boot record on. It never writes to the disk.

Arguments:
)";

constexpr std::string_view kSectorArguments =
    R"(  first_sector  this sector alone; without it the whole disk is shown
  last_sector   every sector from the first to this one

Examples:
)";

constexpr std::string_view kExitStatus = R"(
Exit status:
  0  the run was completed, also where structures or sectors are damaged
  1  wrong arguments, a disk that does not open, a sector beyond its end, or a
     report that cannot be written

)";

// In a column of that width.
std::string Left(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

std::string Right(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

// A row for each disk, the columns as wide as the widest text in them. Nothing where no disks are listed.
std::string Table(const std::vector<ListedDisk>& disks) {
  if (disks.empty()) return {};
  using Row = std::array<std::string, 4>;
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
  std::string table = "\nThe disks of this machine:\n\n";
  for (const Row& row : rows) {
    std::string line = "  " + Right(row[0], widths[0]) + "  " + Left(row[1], widths[1]) + "  " +
                       Right(row[2], widths[2]) + "  " + row[3];
    line.erase(line.find_last_not_of(' ') + 1);
    table += line + "\n";
  }
  return table;
}

std::string Hints(ErrorCode error, const std::vector<ListedDisk>& disks) {
  std::string hints = "\n";
  if (const std::string meaning = MeaningOf(error); !meaning.empty()) {
    hints += "Error " + std::to_string(static_cast<u32>(error)) + ": " + meaning + ".\n";
  }
  if (IsAccessDenied(error)) hints += kHelpWords.accessDenied;
  return hints.append(kHelpWords.naming) + Table(disks);
}

}  // namespace

bool AnswerOption(int argc, char** argv) {
  const std::string_view option = argc == 2 ? argv[1] : "";
  if (option == "--help") {
    report << kUsage << kHelpWords.diskArgument << kSectorArguments << kHelpWords.examples << kExitStatus
           << kHelpWords.more;
  } else if (option == "--version") {
    report << "Trovisk " << TROVISK_VERSION << '\n';
  } else {
    return false;
  }
  report.Flush();
  return true;
}

void HintAtDisks(ErrorCode error) {
  if (IsTerminal(Output::kErrors)) errors << Hints(error, ListDisks());
}

void HintAtShortDisk(u64 bytes, u32 bytesPerSector) {
  if (bytes >= bytesPerSector || !IsTerminal(Output::kErrors)) return;
  if (bytes == 0) {
    errors << "The disk is empty: it has no bytes at all.\n";
  } else {
    errors << "The disk has " << bytes << " bytes, less than the " << bytesPerSector << " of one sector.\n";
  }
}

}  // namespace trovisk
