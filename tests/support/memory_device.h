// A disk in memory, linked in place of the operating system's side: any of its calls can be made to fail.
//
// One program has one such disk. A run on it is either a process of its own (RunOnMemory) or takes place here
// (RunInProcess: fast, for the fuzzer).

#ifndef TROVISK_TESTS_SUPPORT_MEMORY_DEVICE_H
#define TROVISK_TESTS_SUPPORT_MEMORY_DEVICE_H

#include <string>
#include <vector>

#include "frame/disk/disk_list.h"
#include "frame/error_code.h"
#include "frame/toc.h"
#include "tests/disks/disk.h"

namespace trovisk::test {

enum class Call : u64 { kOpen, kSectorSize, kLength, kSeek, kRead, kClose, kWriteReport };
inline constexpr std::size_t kCallKinds = 7;

// Stands for every sector in a fault.
inline constexpr u64 kAnySector = ~u64{0};

// What happens instead at some of the calls of one kind.
struct Fault {
  Call call = Call::kRead;
  u64 nth = 1;          // the first call concerned, counted from 1; kSeek: among those to the sector, if any
  u64 calls = 1;        // how many from there on
  ErrorCode error = 0;  // the call fails with this; where it is 0, it succeeds and says:
  u64 amount = 0;  // kSeek: where it landed; kRead: at most so many bytes; kSectorSize, kLength: the value
  u64 sector = kAnySector;  // kRead: reads that begin in this sector alone; kSeek: seeks to it
};

// A sector that is registered before the run begins.
struct Registered {
  u64 sector = 0;
  SectorDecoder decoder = nullptr;
  std::wstring description;
};

struct MemoryDisk {
  Disk disk = Disk();
  std::vector<Fault> faults = {};
  std::vector<Registered> registered = {};
  bool terminal = false;                // whether the report is shown on one
  bool errorsOnTerminal = false;        // whether the error lines are
  std::vector<ListedDisk> listed = {};  // the disks of the machine
};

// How often each kind of call was made, and all calls in order: a letter each, of "OGLSRCW" (open, geometry,
// length, seek, read, close, write), as far as there is room.
struct CallRecord {
  u64 counts[kCallKinds] = {};
  std::string order;

  u64 Of(Call call) const { return counts[static_cast<std::size_t>(call)]; }
};

// A read or a seek of a run in this process: its place, in bytes, and how long the report was by then (at
// a seek: what of it had left the program, which is all of it on a terminal).
struct ReadCall {
  u64 offset = 0;
  u64 reported = 0;
};

struct MemoryOutcome {
  std::string out;  // the build date reads "<date>"
  std::string err;
  int status = -1;  // as in support/program.h
  CallRecord calls;
  std::vector<ReadCall> reads;       // of RunInProcess alone
  std::vector<ReadCall> seeks = {};  // likewise
};

// The disk that the device functions work on, and the calls made since. For tests that call Global directly.
void InsertDisk(const MemoryDisk& disk);
CallRecord CallsSinceInsertion();

// Runs the program in a child process; arguments: disk argument, first sector, last sector, as needed.
MemoryOutcome RunOnMemory(const MemoryDisk& disk, const std::vector<std::string>& arguments = {"mem"});

// Runs the program in this process. A failing kWriteReport ends the process, as it does in the program.
MemoryOutcome RunInProcess(const MemoryDisk& disk, const std::vector<std::string>& arguments = {"mem"});

}  // namespace trovisk::test

#endif
