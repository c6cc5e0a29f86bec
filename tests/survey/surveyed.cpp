#include "tests/survey/surveyed.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "map/survey.h"

namespace trovisk::test {
namespace {

std::string TextOf(const Extent& extent) {
  std::string text = std::to_string(extent.first) + "-" + std::to_string(extent.last) + " " + extent.source;
  for (const std::string_view flag : NamesOfFlags(extent.flags))
    text.append(" ").append(flag);
  return text;
}

}  // namespace

DiskMap SurveyOf(const MemoryDisk& disk) {
  InsertDisk(disk);
  auto map = SurveyDisk("mem");
  EXPECT_TRUE(map.has_value());
  return map ? std::move(*map) : DiskMap();
}

std::vector<Structure> StructuresNow() {
  std::vector<Structure> structures;
  VisitStructures([&](const Structure& structure) { structures.push_back(structure); });
  return structures;
}

const Check* CheckOf(const DiskMap& map, std::string_view name, u64 sector) {
  for (const Check& check : map.checks) {
    if (check.name == name && (sector == kAnySector || check.sector == sector)) return &check;
  }
  return nullptr;
}

std::string VerdictOf(const DiskMap& map, std::string_view name, u64 sector) {
  const Check* const check = CheckOf(map, name, sector);
  return check == nullptr ? "none" : std::string(NameOfVerdict(check->verdict));
}

std::vector<std::string> WrongChecks(const DiskMap& map) {
  std::vector<std::string> wrong;
  for (const Check& check : map.checks) {
    if (check.verdict == Verdict::kBad || check.verdict == Verdict::kMissing)
      wrong.push_back(check.name + ": " + std::string(NameOfVerdict(check.verdict)));
  }
  return wrong;
}

std::vector<std::string> PartitionsOf(const DiskMap& map) {
  std::vector<std::string> texts;
  for (const Extent& extent : map.extents) {
    if (extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kLogical)
      texts.push_back(TextOf(extent));
  }
  return texts;
}

std::vector<std::string> ExtentsOf(const DiskMap& map, ExtentKind kind) {
  std::vector<std::string> texts;
  for (const Extent& extent : map.extents) {
    if (extent.kind == kind) texts.push_back(TextOf(extent));
  }
  return texts;
}

std::vector<std::string> Named(const std::vector<Structure>& structures) {
  std::vector<std::string> names;
  for (const Structure& structure : structures)
    names.push_back(std::to_string(structure.sector) + " " + structure.structure +
                    (structure.valid ? "" : " (invalid)"));
  return names;
}

Outcome InSeconds(unsigned seconds, const std::function<void()>& body) {
  return RunChild([&] {
    const rlimit limit{seconds, seconds};
    setrlimit(RLIMIT_CPU, &limit);
    body();
  });
}

}  // namespace trovisk::test
