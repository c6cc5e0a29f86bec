// The disk of a run of the fuzzer, linked in place of the operating system's side: a run costs no system call
// and no allocation of a disk's size.

#ifndef TROVISK_TESTS_FUZZ_FUZZ_DEVICE_H
#define TROVISK_TESTS_FUZZ_FUZZ_DEVICE_H

#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"
#include "frame/disk/device.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {

// Bytes that stand on the disk, at a byte position. They are the input's, not copied.
struct Stretch {
  u64 position = 0;
  Bytes bytes;
};

// A disk of zeros and what stands on it; of stretches that overlap the last one counts.
struct FuzzDisk {
  u64 sectors = 0;
  u32 sectorSize = 512;
  bool terminal = false;       // the report is shown on one
  bool kept = false;           // the report is kept, wherever it is shown
  Fault fault = {.calls = 0};  // none
  // Opens an image that stands for the disk, null: the disk is a device.
  ErrorCode (*openImage)(const FuzzDisk& disk, Device& device) = nullptr;
  std::vector<Stretch> stretches = {};

  u64 Length() const { return sectors * sectorSize; }
  // The bytes at a position up to the disk's end, at most count: how many there are.
  u64 Read(u64 position, u8* buffer, u64 count) const;
};

// What a run has printed. The report's text is kept where somebody looks at it.
struct Printed {
  u64 reportBytes = 0;
  std::string shown;  // on a terminal, or kept
  std::string errors;
};

// The disk that the device functions work on, which has to stay, and what was printed since.
void Insert(const FuzzDisk& disk);
const Printed& PrintedSinceInsertion();

// Inserts the disk and runs the program in this process, for its status.
int RunOn(const FuzzDisk& disk, std::vector<std::string> arguments);

}  // namespace trovisk::test

#endif
