#include "map/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "frame/examination.h"
#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::string_view kUsage = R"(Usage: trovisk-map [options] DISK
       trovisk-map --compare OTHER [options] DISK
       trovisk-map --list
       trovisk-map --help | --version
)";

constexpr std::string_view kHelp = R"(
Shows the whole disk at a glance: what lies where, what belongs together, and
whether its structures are sound. It never writes to the disk.

Arguments:
  DISK           a disk as trovisk takes it: a number, a device, the path of an
                 image file, or PATH@N for sectors of N bytes

Options:
  --json         print the map as one JSON document
  --html FILE    write the map as a page for a browser: one file that needs no
                 other
  --sfdisk       print its partitions as a script for sfdisk
  --compare OTHER
                 print what is different on DISK; each of both is a disk or a
                 saved JSON document, OTHER the older one
  --list         print the disks of this machine
  -o, --output FILE
                 write FILE, whole or not at all, in place of standard output
  --all          the table with every row and every check
  --width N      the table, for N columns (20 to 1000)
  --color WHEN   auto: the table with colours on a terminal that has them, but
                 where NO_COLOR is set; always: everywhere; never: nowhere
  -h, --help     print this
  --version      print the version

Without --width and --color always the map is a table on a terminal, and lines
of columns separated by tabs in a file or a pipe.

Exit status:
  0  nothing wrong was found; with --compare: both are the same
  2  something on the disk is bad or missing
  1  the map could not be made; with --compare: they differ
  3  with --compare: they could not be compared
)";

constexpr std::string_view kTryHelp = "\"trovisk-map --help\" says how it is called.\n";

// What the command line has, before it is made sense of.
struct Given {
  std::string disk;
  std::string other;
  std::string output;
  std::string page;
  std::string colour = "auto";
  std::size_t width = 0;
  bool all = false;
  bool json = false;
  bool sfdisk = false;
  bool list = false;
};

void Declare(CLI::App& app, Given& given) {
  constexpr std::size_t kNarrowest = 20;
  constexpr std::size_t kWidest = 1000;
  app.allow_windows_style_options(false);
  app.set_help_flag("-h,--help");
  app.set_version_flag("--version", "trovisk-map " TROVISK_VERSION "\n");
  CLI::Option* disk = app.add_option("DISK", given.disk);
  CLI::Option* compare = app.add_option("--compare", given.other)->type_name("OTHER");
  CLI::Option* output = app.add_option("-o,--output", given.output)->type_name("FILE");
  CLI::Option* html = app.add_option("--html", given.page)->type_name("FILE");
  CLI::Option* json = app.add_flag("--json", given.json);
  CLI::Option* sfdisk = app.add_flag("--sfdisk", given.sfdisk);
  CLI::Option* list = app.add_flag("--list", given.list);
  app.add_flag("--all", given.all);
  app.add_option("--width", given.width)->type_name("N")->check(CLI::Range(kNarrowest, kWidest));
  app.add_option("--color", given.colour)
      ->type_name("WHEN")
      ->check(CLI::IsMember({"auto", "always", "never"}));
  for (CLI::Option* option : {disk, compare, output, html})
    option->check([](const std::string& text) { return text.empty() ? "It must not be empty" : ""; });
  compare->excludes(json, sfdisk, html);
  json->excludes(sfdisk, html);
  html->excludes(sfdisk, output);
  list->excludes(disk, compare, json, sfdisk, html);
}

MapOptions Understood(const Given& given) {
  MapOptions options;
  options.disk = given.disk;
  options.other = given.other;
  options.output = given.output;
  options.width = given.width;
  options.all = given.all;
  if (given.json) options.form = MapForm::kJson;
  if (!given.page.empty()) {
    options.form = MapForm::kPage;
    options.output = given.page;
  }
  if (given.sfdisk) options.form = MapForm::kSfdisk;
  if (given.list) options.form = MapForm::kList;
  if (!given.other.empty()) options.form = MapForm::kCompare;
  if (given.colour == "always") options.colour = ColourChoice::kAlways;
  if (given.colour == "never") options.colour = ColourChoice::kNever;
  return options;
}

}  // namespace

bool AsksForComparison(const std::vector<std::string>& arguments) {
  return std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
    return argument == "--compare" || argument.starts_with("--compare=");
  });
}

std::optional<MapOptions> TakeOptions(std::vector<std::string> arguments, int& status) {
  CLI::App app;
  Given given;
  Declare(app, given);
  try {
    std::reverse(arguments.begin(), arguments.end());  // as it wants them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    report << kUsage << kHelp;
    status = 0;
    return std::nullopt;
  } catch (const CLI::CallForVersion& answer) {
    report << answer.what();
    status = 0;
    return std::nullopt;
  } catch (const CLI::Error& error) {
    errors << "trovisk-map: " + SafeUtf8(error.what()) + ".\n";
    errors << kTryHelp;
    return std::nullopt;
  }
  if (given.disk.empty() && !given.list) {
    errors << kUsage << kTryHelp;
    return std::nullopt;
  }
  return Understood(given);
}

}  // namespace trovisk
