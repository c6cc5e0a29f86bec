// The survey in place of the report: its map, and every form in which that is shown.

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "map/arrange.h"
#include "map/html_page.h"
#include "map/json_map.h"
#include "map/sfdisk.h"
#include "map/survey.h"
#include "map/text_map.h"
#include "tests/fuzz/fuzz_run.h"
#include "tests/fuzz/input.h"
#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

// What one structure takes of a document, its text and its bytes with it, and more than one has of fields.
constexpr std::size_t kPerSector = std::size_t{256} * 1024;
constexpr std::size_t kBeyondTheDisk = std::size_t{4} * 1024 * 1024;

void Require(bool condition, const std::string& promise) {
  if (condition) return;
  std::fprintf(stderr, "broken promise: %s\n", promise.c_str());
  std::abort();
}

void RequireSafe(const std::string& text, const char* form) {
  Require(ControlCharacter(text) == kNone, std::string("no control character in ") + form);
}

void ShowTable(const DiskMap& map, std::size_t width) {
  RequireSafe(MapAsText(map, {.forPerson = true, .width = width, .all = width != 80}), "the table");
}

void ShowDocument(const DiskMap& map, std::size_t most) {
  std::string document;
  WriteMapAsJson(map, VisitStructures, [&](std::string_view piece) { document += piece; });
  Require(document.size() <= most, "the document is bounded by the disk");
  Require(nlohmann::json::accept(document), "the document is JSON");
}

void ShowPage(const DiskMap& map, std::size_t most) {
  std::size_t page = 0;
  WriteMapAsPage(map, VisitStructures, [&](std::string_view piece) { page += piece.size(); });
  Require(page <= 8 * most, "the page is bounded by the disk");
}

// A form costs many times what the survey does, so an input shows one of them, or none, as its bytes have it.
constexpr unsigned kForms = 1024;
unsigned FormOf(Bytes bytes) {
  u32 hash = 2166136261;
  for (const u8 byte : bytes)
    hash = (hash ^ byte) * 16777619;
  return (hash >> 8) % kForms;
}

void Show(const DiskMap& map, std::size_t most, Bytes bytes, Effort effort) {
  const bool all = effort == Effort::kEverything;
  const unsigned form = FormOf(bytes);
  if (all || form % 16 == 1) RequireSafe(MapAsText(map, {}), "the records");
  if (all || form % 16 == 2) RequireSafe(MapAsSfdisk(map), "the script");
  if (all || form % 64 == 3) ShowTable(map, 20);
  if (all || form % 64 == 4) ShowTable(map, 80);
  if (all || form % 64 == 5) ShowTable(map, 1000);
  if (all || form % 256 == 6) ShowDocument(map, most);
  if (all || form == 7) ShowPage(map, most);
}

}  // namespace

void FuzzRun(Bytes bytes, Effort effort) {
  static Input input;
  ParseInput(bytes, input);
  Insert(input.disk);
  const auto map = SurveyDisk("mem");
  if (!map) return;
  const std::string complaint = ComplaintAbout(map->extents, map->disk.sectors);
  Require(complaint.empty(), "the extents are in order: " + complaint);
  Require(map->ExitStatus() == 0 || map->ExitStatus() == 2, "the status is 0 or 2");
  Show(*map, (input.disk.sectors + 16) * kPerSector + kBeyondTheDisk, bytes, effort);
  CloseSurvey();
}

}  // namespace trovisk::test
