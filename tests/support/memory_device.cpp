#include "tests/support/memory_device.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>

#include "frame/disk/device.h"
#include "frame/disk/disk_list.h"
#include "frame/global.h"
#include "frame/report/output.h"
#include "frame/run.h"
#include "tests/support/child.h"

namespace trovisk::test {
namespace {

MemoryDisk inserted;
bool keepsOutput = false;  // in the two texts below; else it goes to the standard streams
std::string reported;
std::string complained;
std::vector<ReadCall> reads;
std::vector<ReadCall> seeks;
std::map<u64, u64> seeksTo;  // how many, by sector

// In memory that is shared with child processes, so that the parent sees the calls of a run.
struct SharedCalls {
  u64 counts[kCallKinds];
  u64 logged;
  char order[u64{1} << 20];
};

SharedCalls& Calls() {
  static SharedCalls* const calls = [] {
    void* memory =
        mmap(nullptr, sizeof(SharedCalls), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    return static_cast<SharedCalls*>(memory);
  }();
  return *calls;
}

// Notes the call, and gives the fault that it meets. sector: where a read begins or a seek goes.
const Fault* Meet(Call call, u64 sector = kAnySector) {
  SharedCalls& calls = Calls();
  const auto kind = static_cast<std::size_t>(call);
  const u64 inAll = ++calls.counts[kind];
  const u64 toSector = call == Call::kSeek ? ++seeksTo[sector] : inAll;
  if (calls.logged < sizeof calls.order) calls.order[calls.logged++] = "OGLSRCW"[kind];
  for (const Fault& fault : inserted.faults) {
    const u64 number = fault.sector == kAnySector ? inAll : toSector;
    if (fault.call != call || number < fault.nth || number - fault.nth >= fault.calls) continue;
    if (fault.sector == kAnySector || fault.sector == sector) return &fault;
  }
  return nullptr;
}

u64 Length() {
  return inserted.disk.Sectors() * inserted.disk.SectorSize();
}

// The bytes at a position, up to the disk's end; zeros where no sector was touched.
u32 Fill(u8* buffer, u64 position, u64 count) {
  if (position >= Length()) return 0;
  count = std::min(count, Length() - position);
  std::fill_n(buffer, count, u8{0});
  const u64 size = inserted.disk.SectorSize();
  const auto& touched = inserted.disk.Touched();
  for (auto at = touched.lower_bound(position / size); at != touched.end(); ++at) {
    const u64 start = at->first * size;
    if (start >= position + count) break;
    const u64 from = std::max(start, position);
    const u64 to = std::min(start + size, position + count);
    std::memcpy(buffer + (from - position), at->second.View().data() + (from - start), to - from);
  }
  return static_cast<u32>(count);
}

std::vector<char*> Argv(std::vector<std::string>& arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments)
    argv.push_back(argument.data());
  argv.push_back(nullptr);
  return argv;
}

int RunProgramOn(const MemoryDisk& disk, const std::vector<std::string>& arguments) {
  InsertDisk(disk);
  std::vector<std::string> words = {"trovisk"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv = Argv(words);
  return Run(static_cast<int>(words.size()), argv.data());
}

}  // namespace

void InsertDisk(const MemoryDisk& disk) {
  inserted = disk;
  SharedCalls& calls = Calls();
  std::fill(std::begin(calls.counts), std::end(calls.counts), 0);
  calls.logged = 0;
  seeksTo.clear();
}

CallRecord CallsSinceInsertion() {
  const SharedCalls& calls = Calls();
  CallRecord record;
  std::copy(std::begin(calls.counts), std::end(calls.counts), std::begin(record.counts));
  record.order.assign(calls.order, calls.logged);
  return record;
}

MemoryOutcome RunOnMemory(const MemoryDisk& disk, const std::vector<std::string>& arguments) {
  Calls();  // shared from before the child is born
  const Outcome outcome = RunChild([&] { std::exit(RunProgramOn(disk, arguments)); });
  return {WithoutDate(outcome.out), outcome.err, outcome.status, CallsSinceInsertion(), {}};
}

MemoryOutcome RunInProcess(const MemoryDisk& disk, const std::vector<std::string>& arguments) {
  reported.clear();
  complained.clear();
  reads.clear();
  seeks.clear();
  keepsOutput = true;
  MemoryOutcome outcome;
  outcome.status = RunProgramOn(disk, arguments);
  keepsOutput = false;
  outcome.out = WithoutDate(reported);
  outcome.err = complained;
  outcome.reads = reads;
  outcome.seeks = seeks;
  for (auto* made : {&outcome.reads, &outcome.seeks}) {
    for (ReadCall& call : *made)  // the date stands in front of all of them
      call.reported -= reported.size() - outcome.out.size();
  }
  outcome.calls = CallsSinceInsertion();
  return outcome;
}

}  // namespace trovisk::test

namespace trovisk {

using test::Call;
using test::Fault;
using test::Meet;

ErrorCode OpenDevice(Device& device, WideText /*path*/, const char* /*argument*/) {
  device = Device{};
  if (const Fault* fault = Meet(Call::kOpen)) return fault->error;
  device.handle = 1;
  for (const test::Registered& entry : test::inserted.registered)
    AddTocEntry(disk, entry.sector, entry.decoder, entry.description);
  return 0;
}

bool IsOpen(const Device& device) {
  return device.handle >= 0;
}

ErrorCode QuerySectorSize(Device& /*device*/, u32& bytesPerSector) {
  const Fault* const fault = Meet(Call::kSectorSize);
  if (fault != nullptr && fault->error != 0) return fault->error;
  bytesPerSector = fault != nullptr ? static_cast<u32>(fault->amount) : test::inserted.disk.SectorSize();
  return 0;
}

ErrorCode QueryLength(const Device& /*device*/, u64& bytes) {
  const Fault* const fault = Meet(Call::kLength);
  if (fault != nullptr && fault->error != 0) return fault->error;
  bytes = fault != nullptr ? fault->amount : test::Length();
  return 0;
}

ErrorCode SeekDevice(Device& device, u64 offset, u64& landed) {
  const u32 size = test::inserted.disk.SectorSize();
  const Fault* const fault = Meet(Call::kSeek, size == 0 ? 0 : offset / size);
  if (test::keepsOutput) test::seeks.push_back({offset, test::reported.size()});
  if (fault != nullptr && fault->error != 0) return fault->error;
  if (fault == nullptr && offset >> 63 != 0) return EINVAL;
  device.position = landed = fault != nullptr ? fault->amount : offset;
  return 0;
}

Bytes TakeReadAhead(Device& /*device*/, u32 /*count*/) {
  return {};
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  const u32 size = test::inserted.disk.SectorSize();
  const Fault* const fault = Meet(Call::kRead, size == 0 ? 0 : device.position / size);
  if (test::keepsOutput) test::reads.push_back({device.position, test::reported.size()});
  if (fault != nullptr && fault->error != 0) return fault->error;
  const u64 wanted = fault != nullptr ? std::min<u64>(count, fault->amount) : count;
  got = test::Fill(buffer, device.position, wanted);
  device.position += got;
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  const Fault* const fault = Meet(Call::kClose);
  device = Device{};
  return fault != nullptr ? fault->error : 0;
}

std::vector<ListedDisk> ListDisks() {
  return test::inserted.listed;
}

ErrorCode WriteOutput(Output output, const char* text, std::size_t count) {
  const bool toReport = output == Output::kReport;
  const Fault* const fault = toReport ? Meet(Call::kWriteReport) : nullptr;
  if (fault != nullptr) return fault->error;
  if (test::keepsOutput) {
    (toReport ? test::reported : test::complained).append(text, count);
    return 0;
  }
  while (count > 0) {
    const ssize_t written = write(toReport ? STDOUT_FILENO : STDERR_FILENO, text, count);
    if (written < 0) return static_cast<ErrorCode>(errno);
    text += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

bool IsClosedPipe(ErrorCode error) {
  return error == EPIPE;
}

bool IsTerminal(Output output) {
  return output == Output::kReport ? test::inserted.terminal : test::inserted.errorsOnTerminal;
}

std::size_t ErrorLineWidth() {
  return 80;
}

void RewriteErrorLine(std::string_view /*text*/) {}

void PrepareOutput() {}

void EndByInterruption(int /*signal*/) {
  std::abort();  // no signal is noted here
}

}  // namespace trovisk
