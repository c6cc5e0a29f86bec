// The fuzzer's inputs: a small disk, the faults of its device and a command line, in a form that mutations
// keep in one piece.
//
// A header of kInputHeader bytes, then records, each a stretch of bytes that stands in one sector; all else
// is zero. Numbers are little-endian. Every sequence of bytes is an input: what is missing at its end is
// zero, and every number is taken modulo what it may be.
//
//   0  u8   sector size, an index
//   1  u8   run mode: whole disk, single sector, range, single sector with a negative last one; plus 4: the
//           report is shown on a terminal
//   2  u16  first sector of the run
//   4  u16  last sector of the run
//   6  u16  sectors of the disk
//   8  u8   fault, an index
//   9  u8   calls that the fault concerns, less 1
//  10  u16  the first of them
//
//   0  u16  sector
//   2  u16  offset in the sector
//   4  u16  bytes that follow

#ifndef TROVISK_TESTS_FUZZ_INPUT_H
#define TROVISK_TESTS_FUZZ_INPUT_H

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tests/fuzz/fuzz_device.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {

inline constexpr std::size_t kInputHeader = 12;
inline constexpr std::size_t kRecordHeader = 6;

enum class Mode { kWholeDisk, kSingleSector, kRange, kSingleWithNegativeLast };
inline constexpr unsigned kModes = 4;

// What a run is asked for. The sectors are those of its mode.
struct Command {
  Mode mode = Mode::kWholeDisk;
  u64 first = 0;
  u64 last = 0;

  std::vector<std::string> Arguments() const;
};

// An input as it is run: a view of its bytes.
struct Input {
  FuzzDisk disk;
  Command command;
};

// input: receives what the bytes say; of what it holds the room is used again.
void ParseInput(Bytes bytes, Input& input);

// The bytes that parse to this disk and command. The disk is at most kMostSectors long and has a sector size
// of the list; of the faults there is at most one, of the list.
std::vector<u8> WriteInput(const MemoryDisk& memory, const Command& command);

// A disk of the fuzzer is small, so that every run is short: whatever it holds is walked to its end.
inline constexpr u64 kMostSectors = 200;

// A record of an input: where it begins, and how many bytes follow its header.
struct InputRecord {
  std::size_t data = 0;  // the first byte behind its header
  std::size_t size = 0;  // as far as the input has them
};

// The record at or behind a position; none where the input ends before it.
inline std::optional<InputRecord> RecordAt(Bytes bytes, std::size_t position) {
  position += kRecordHeader;
  if (position > bytes.size()) return std::nullopt;
  return InputRecord{position, std::min<std::size_t>(Le16At(bytes, position - 2), bytes.size() - position)};
}

}  // namespace trovisk::test

#endif
