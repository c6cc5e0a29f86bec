// Surveys of disks in memory, and what tests ask of a map.

#ifndef TROVISK_TESTS_SURVEY_SURVEYED_H
#define TROVISK_TESTS_SURVEY_SURVEYED_H

#include <functional>
#include <string>
#include <vector>

#include "map/model.h"
#include "tests/support/child.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {

// The map of the disk; an empty one, and a failed test, where it does not open.
DiskMap SurveyOf(const MemoryDisk& disk);
inline DiskMap SurveyOf(const Disk& disk) {
  return SurveyOf(MemoryDisk{disk});
}

// The structures of the disk that was surveyed last.
std::vector<Structure> StructuresNow();

// Of the first check of that name, at the sector unless it is kAnySector: "good", "bad", "missing",
// "not checked"; "none" where there is no such check.
std::string VerdictOf(const DiskMap& map, std::string_view name, u64 sector = kAnySector);
// The check itself, or null.
const Check* CheckOf(const DiskMap& map, std::string_view name, u64 sector = kAnySector);

// Every check that is bad or missing: "name: verdict".
std::vector<std::string> WrongChecks(const DiskMap& map);

// The partitions and logical ones, in the map's order: "first-last source flag flag".
std::vector<std::string> PartitionsOf(const DiskMap& map);
// The extents of one kind.
std::vector<std::string> ExtentsOf(const DiskMap& map, ExtentKind kind);

// The decoders' names of the structures, by sector: "1 gpt_header", "2 gpt_entries (invalid)".
std::vector<std::string> Named(const std::vector<Structure>& structures);

// Runs body in a child process, which is ended by a signal where it takes so many seconds of processor time.
Outcome InSeconds(unsigned seconds, const std::function<void()>& body);

}  // namespace trovisk::test

#endif
