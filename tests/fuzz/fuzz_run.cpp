#include "tests/fuzz/fuzz_run.h"

#include <cstdio>
#include <cstdlib>

#include "tests/fuzz/input.h"
#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

void Require(bool condition, const char* promise) {
  if (condition) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

// A generous bound that no report can pass unless something is counted by a number on the disk: a listing of
// every sector and its report, twice, a row of the table of contents for each, and what lies beyond the disk.
std::size_t LongestReport(const Disk& disk) {
  constexpr std::size_t kPerSector = std::size_t{16} * 1024;
  constexpr std::size_t kBeyondTheDisk = std::size_t{1024} * 1024;
  return (disk.Sectors() + 16) * (kPerSector + u64{10} * disk.SectorSize()) + kBeyondTheDisk;
}

}  // namespace

void FuzzRun(Bytes bytes) {
  const Input input = ParseInput(bytes);
  const MemoryOutcome outcome = RunInProcess(input.memory, input.Arguments());
  Require(outcome.status == 0 || outcome.status == 1, "the status is 0 or 1");
  Require(outcome.out.size() <= LongestReport(input.memory.disk), "the report is bounded by the disk");
  if (!input.memory.terminal) return;
  Require(ControlCharacter(WithoutRawBytes(outcome.out)) == kNone, "no control character on a terminal");
}

}  // namespace trovisk::test
