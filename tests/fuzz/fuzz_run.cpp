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
u64 LongestReport(const FuzzDisk& disk) {
  constexpr u64 kPerSector = u64{16} * 1024;
  constexpr u64 kBeyondTheDisk = u64{1024} * 1024;
  return (disk.sectors + 16) * (kPerSector + u64{10} * disk.sectorSize) + kBeyondTheDisk;
}

}  // namespace

void FuzzRun(Bytes bytes, Effort /*effort*/) {
  static Input input;
  ParseInput(bytes, input);
  const int status = RunOn(input.disk, input.command.Arguments());
  Require(status == 0 || status == 1, "the status is 0 or 1");
  const Printed& printed = PrintedSinceInsertion();
  Require(printed.reportBytes <= LongestReport(input.disk), "the report is bounded by the disk");
  Require(ControlCharacter(printed.errors) == kNone, "no control character in error lines");
  if (!input.disk.terminal) return;
  Require(ControlCharacter(WithoutRawBytes(printed.shown)) == kNone, "no control character on a terminal");
}

}  // namespace trovisk::test
