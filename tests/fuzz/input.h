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

#include <string>
#include <vector>

#include "tests/support/memory_device.h"

namespace trovisk::test {

inline constexpr std::size_t kInputHeader = 12;
inline constexpr std::size_t kRecordHeader = 6;

enum class Mode { kWholeDisk, kSingleSector, kRange, kSingleWithNegativeLast };
inline constexpr unsigned kModes = 4;

struct Input {
  MemoryDisk memory;
  Mode mode = Mode::kWholeDisk;
  u64 first = 0;
  u64 last = 0;

  std::vector<std::string> Arguments() const;
};

Input ParseInput(Bytes bytes);

// The bytes that parse to this input. The disk is at most kMostSectors long and has a sector size of the
// list; of the faults there is at most one, of the list.
std::vector<u8> WriteInput(const Input& input);

// A disk of the fuzzer is small, so that every run is short: whatever it holds is walked to its end.
inline constexpr u64 kMostSectors = 2048;

// Where the records of an input begin, and how many bytes each says that follow.
struct InputRecord {
  std::size_t data = 0;  // the first byte behind its header
  std::size_t size = 0;  // as far as the input has them
};
std::vector<InputRecord> RecordsOf(Bytes bytes);

}  // namespace trovisk::test

#endif
