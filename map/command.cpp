#include "map/command.h"

#include <functional>

#include "frame/report/report.h"
#include "map/arguments.h"
#include "map/compare.h"
#include "map/disk_table.h"
#include "map/html_page.h"
#include "map/json_map.h"
#include "map/options.h"
#include "map/output_file.h"
#include "map/sfdisk.h"
#include "map/survey.h"
#include "map/terminal.h"
#include "map/text_map.h"

namespace trovisk {
namespace {

using Sink = std::function<void(std::string_view)>;

// A table where a person reads it, as far as one can tell.
TextStyle StyleFor(const MapOptions& options) {
  constexpr std::size_t kUsual = 80;
  const std::size_t terminal = options.output.empty() ? TerminalWidth() : 0;
  TextStyle style;
  style.forPerson = terminal != 0 || options.width != 0 || options.colour == ColourChoice::kAlways;
  style.width = options.width != 0 ? options.width : terminal != 0 ? terminal : kUsual;
  style.utf8 = ShowsUtf8();
  style.all = options.all;
  const bool wanted = options.colour == ColourChoice::kAuto && terminal != 0 && WantsColours();
  const bool possible = terminal != 0 && options.colour != ColourChoice::kNever && EnableColours();
  style.colours = options.colour == ColourChoice::kAlways || (wanted && possible);
  return style;
}

// Hands out what the command line asks for, piece by piece.
void PrintMap(const DiskMap& map, const MapOptions& options, const Sink& sink) {
  if (options.form == MapForm::kJson) {
    WriteMapAsJson(map, VisitStructures, sink);
  } else if (options.form == MapForm::kSfdisk) {
    sink(MapAsSfdisk(map));
  } else if (options.form == MapForm::kPage) {
    WriteMapAsPage(map, VisitStructures, sink);
  } else {
    sink(MapAsText(map, StyleFor(options)));
  }
}

// Prints to standard output, or into the file, which is written whole or not at all. print says whether what
// it printed is whole. Whether all of it worked.
bool PrintTo(const MapOptions& options, const std::function<bool(const Sink&)>& print) {
  if (options.output.empty()) {
    const bool whole = print([](std::string_view text) { report << text; });
    report.Flush();
    return whole;
  }
  std::vector<std::string> read = {options.disk};
  if (!options.other.empty()) read.push_back(options.other);
  OutputFile file;
  bool good = file.Open(options.output, read);
  if (good && !print([&](std::string_view text) { good = good && file.Write(text); })) return false;
  good = good && file.Commit();
  if (!good) errors << "trovisk-map: " + file.Complaint();
  return good;
}

int ShowDisks(const MapOptions& options) {
  const bool forPerson = StyleFor(options).forPerson;
  const bool printed = PrintTo(options, [&](const Sink& sink) {
    sink(DisksAsText(ListDisks(), forPerson));
    return true;
  });
  return printed ? 0 : 1;
}

int ShowMap(const MapOptions& options) {
  const auto map = SurveyDisk(options.disk.c_str());
  if (!map) return 1;
  const bool printed = PrintTo(options, [&](const Sink& sink) {
    PrintMap(*map, options, sink);
    return true;
  });
  CloseSurvey();
  return printed ? map->ExitStatus() : 1;
}

int ShowDifferences(const MapOptions& options) {
  int status = kMapsNotCompared;
  std::string complaint;
  const bool printed = PrintTo(options, [&](const Sink& sink) {
    status = CompareMaps(options.other, options.disk, sink, complaint);
    return status != kMapsNotCompared;
  });
  if (!complaint.empty()) errors << "trovisk-map: " + complaint + "\n";
  return printed ? status : kMapsNotCompared;
}

int Perform(const MapOptions& options) {
  if (options.form == MapForm::kList) return ShowDisks(options);
  if (options.form == MapForm::kCompare) return ShowDifferences(options);
  return ShowMap(options);
}

}  // namespace

int RunMap(int argc, char** argv) {
  report.Start();
  errors.Start();
  std::vector<std::string> arguments = ArgumentsInUtf8(argc, argv);
  int status = AsksForComparison(arguments) ? kMapsNotCompared : 1;
  report.FailWith(status);
  const auto options = TakeOptions(std::move(arguments), status);
  if (options) status = Perform(*options);
  report.Flush();
  return status;
}

}  // namespace trovisk
