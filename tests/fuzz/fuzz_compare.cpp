// Runs over the same disk that must agree. Every disk is sound here: it has sectors, and no call of it fails.
//
// The report's settings stick (docs/architecture.md), so that what was shown before a structure decides
// whether its digits are capitals: texts of different runs are compared without regard to that. All reports
// are made as for a terminal, so that no text of the disk can pass for a line of the report.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "map/survey.h"
#include "tests/fuzz/fuzz_run.h"
#include "tests/fuzz/image_file.h"
#include "tests/fuzz/input.h"
#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

struct Told {
  int status = -1;
  std::string report;
  std::string errors;
};

Told Tell(const FuzzDisk& disk, const std::vector<std::string>& arguments) {
  const int status = RunOn(disk, arguments);
  return {status, PrintedSinceInsertion().shown, PrintedSinceInsertion().errors};
}

void RequireSame(const std::string& one, const std::string& other, const char* promise) {
  if (one == other) return;
  const auto different = std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first;
  const auto at = static_cast<std::size_t>(different - one.begin());
  const std::size_t from = at - std::min<std::size_t>(at, 200);
  std::fprintf(stderr, "broken promise: %s\n--- one:\n%s\n--- other:\n%s\n", promise,
               one.substr(from, 400).c_str(), other.substr(from, 400).c_str());
  std::abort();
}

void RequireSame(const Told& one, const Told& other, const char* promise) {
  RequireSame(one.report, other.report, promise);
  RequireSame(one.errors, other.errors, promise);
  RequireSame(std::to_string(one.status), std::to_string(other.status), promise);
}

std::string WithSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char each) {
    return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
  });
  return text;
}

// What a run has printed behind the line that says what it reads.
std::string BehindReadingLine(const std::string& report) {
  const std::size_t at = report.find("\nLoading TOC ...\n");
  return at == report.npos ? std::string() : report.substr(at);
}

// A sector's part of a report: its header line, and what follows it up to the next sector's.
struct Block {
  u64 sector = 0;
  std::string title;
  std::string text;  // with the header line
};

// The header line's sector and title; none where the line is another, or the header of a dump within a part:
// it may show its number in hexadecimal.
std::optional<Block> HeaderIn(const std::string& line) {
  for (const std::string_view start : {"Reading sector # ", "Reading FAT sector # "}) {
    if (!line.starts_with(start)) continue;
    const std::size_t from = line.find('[') + 1;
    const std::string title = line.substr(from, line.rfind(']') - from);
    if (title == ToNarrow(kAsRawSector)) return std::nullopt;
    return Block{std::strtoull(line.c_str() + start.size(), nullptr, 10), title, {}};
  }
  return std::nullopt;
}

// Whether numbers behind this part of a report are in hexadecimal, until a dump has rows: where a
// checkpoint's own sector is empty. What runs show differently in between decides how long.
bool LeavesHexadecimal(const std::string& text) {
  return text.find("\nReFS CHKP\n") != text.npos && text.find("\n0x000  ") == text.npos;
}

// The parts of a report, as far as they can be compared.
std::vector<Block> BlocksOf(const Told& told) {
  constexpr std::string_view kStart = "\nReading ";
  std::vector<Block> blocks;
  const std::string all = BehindReadingLine(told.report);
  const std::string_view body = std::string_view(all).substr(0, all.rfind("\n\tTable Of Contents\n"));
  for (std::size_t at = body.find(kStart); at != body.npos;) {
    const std::size_t next = body.find(kStart, at + 1);
    const std::string_view text = body.substr(at + 1, next - at);
    if (auto header = HeaderIn(std::string(text.substr(0, text.find('\n'))))) {
      if (!blocks.empty() && LeavesHexadecimal(blocks.back().text)) break;
      blocks.push_back(std::move(*header));
    }
    if (!blocks.empty()) blocks.back().text += text;
    at = next;
  }
  return blocks;
}

constexpr std::string_view kUnregistered = "Raw Sector";

// The blocks of the sectors from first on, those of unregistered ones only where they are wanted.
std::string Joined(const std::vector<Block>& blocks, u64 first, bool unregistered) {
  std::string text;
  for (const Block& block : blocks) {
    if (block.sector >= first && (unregistered || block.title != kUnregistered)) text += block.text;
  }
  return WithSmallLetters(text);
}

std::vector<std::string> Sectors(u64 first, u64 last) {
  return {"mem", std::to_string(first), std::to_string(last)};
}

// A run over all sectors shows what a run over the disk shows, and between it the sectors that nothing
// claims. What a range shows does not depend on where it begins. A sector is a range of one.
void CompareRanges(const FuzzDisk& disk, const Told& whole, const Command& command) {
  const Told all = Tell(disk, Sectors(0, disk.sectors - 1));
  RequireSame(Joined(BlocksOf(whole), 0, true), Joined(BlocksOf(all), 0, false),
              "whole disk and all sectors");
  RequireSame(whole.errors, all.errors, "error lines of the whole disk and of all sectors");

  const u64 first = std::min(command.first, command.last) % disk.sectors;
  const u64 last = std::max(command.first, command.last) % disk.sectors;
  if (first > last) return;
  const Told range = Tell(disk, Sectors(first, last));
  const Told longer = Tell(disk, Sectors(0, last));
  RequireSame(Joined(BlocksOf(longer), first, true), Joined(BlocksOf(range), first, true),
              "a range and the end of a longer one");

  const Told single = Tell(disk, {"mem", std::to_string(last)});
  const Told one = Tell(disk, Sectors(last, last));
  RequireSame(BehindReadingLine(single.report), BehindReadingLine(one.report), "a sector and a range of one");
  RequireSame(single.errors, one.errors, "error lines of a sector and of a range of one");
}

ErrorCode OpenInMemory(const FuzzDisk& disk, Device& device) {
  const auto read = [](void* state, u64 offset, u8* buffer, std::size_t count,
                       std::size_t& got) -> ErrorCode {
    got = static_cast<const FuzzDisk*>(state)->Read(offset, buffer, count);
    return 0;
  };
  const auto close = [](void* /*state*/) {};
  const ImageSource source{const_cast<FuzzDisk*>(&disk), disk.Length(), read, close};
  device.image = std::make_unique<Image>(source, disk.sectorSize);
  return 0;
}

// A device is asked for each sector, an image for many at once; an image in a file goes through the system.
void CompareImages(FuzzDisk disk, const Told& device, const std::vector<std::string>& arguments) {
  disk.openImage = OpenInMemory;
  RequireSame(device, Tell(disk, arguments), "without and with read-ahead");
  disk.openImage = OpenImageFile;
  RequireSame(device, Tell(disk, arguments), "device and image file");
}

// The text of a structure in the survey is what the report prints for its sector under the same title.
void CompareSurvey(const FuzzDisk& disk, const Told& whole) {
  std::map<u64, std::pair<std::string, std::string>> reported;  // by sector: title and text
  for (const Block& block : BlocksOf(whole))
    reported.try_emplace(block.sector, block.title, "").first->second.second += block.text;
  bool comparable = true;
  Insert(disk);
  if (!SurveyDisk("mem")) return;
  VisitStructures([&](const Structure& structure) {
    if (!comparable) return;
    comparable = !LeavesHexadecimal(structure.text);
    const auto found = reported.find(structure.sector);
    if (!structure.valid || found == reported.end() || found->second.first != structure.title) return;
    RequireSame(WithSmallLetters(WithoutRawBytes(found->second.second)),
                WithSmallLetters(WithoutRawBytes(structure.text)), "report and survey");
  });
  CloseSurvey();
}

}  // namespace

void FuzzRun(Bytes bytes, Effort /*effort*/) {
  static Input input;
  ParseInput(bytes, input);
  FuzzDisk& disk = input.disk;
  // The dump of a sector that has not even one row does not put the settings back.
  if (disk.sectors == 0 || disk.sectorSize < 16) return;
  disk.fault = {.calls = 0};
  disk.terminal = true;
  const Told whole = Tell(disk, {"mem"});
  CompareRanges(disk, whole, input.command);
  const std::vector<std::string> arguments = input.command.Arguments();
  CompareImages(disk, Tell(disk, arguments), arguments);
  CompareSurvey(disk, whole);
}

}  // namespace trovisk::test
