#include "tests/fuzz/fuzz_device.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "frame/disk/disk_list.h"
#include "frame/disk/image_files.h"
#include "frame/report/output.h"
#include "frame/run.h"

namespace trovisk::test {
namespace {

const FuzzDisk* inserted = nullptr;
std::array<u64, kCallKinds> calls;
Printed printed;

// Counts the call, and gives the fault that it meets.
const Fault* Meet(Call call) {
  const Fault& fault = inserted->fault;
  const u64 number = ++calls[static_cast<std::size_t>(call)];
  const bool met = fault.call == call && number >= fault.nth && number - fault.nth < fault.calls;
  return met ? &fault : nullptr;
}

}  // namespace

u64 FuzzDisk::Read(u64 position, u8* buffer, u64 count) const {
  if (position >= Length()) return 0;
  count = std::min(count, Length() - position);
  std::fill_n(buffer, count, u8{0});
  for (const Stretch& stretch : stretches) {
    const u64 from = std::max(stretch.position, position);
    const u64 to = std::min(stretch.position + stretch.bytes.size(), position + count);
    if (from >= to) continue;
    std::memcpy(buffer + (from - position), stretch.bytes.data() + (from - stretch.position), to - from);
  }
  return count;
}

void Insert(const FuzzDisk& disk) {
  inserted = &disk;
  calls.fill(0);
  printed.reportBytes = 0;
  printed.shown.clear();
  printed.errors.clear();
}

const Printed& PrintedSinceInsertion() {
  return printed;
}

int RunOn(const FuzzDisk& disk, std::vector<std::string> arguments) {
  Insert(disk);
  std::string name = "trovisk";
  std::vector<char*> argv = {name.data()};
  for (std::string& argument : arguments)
    argv.push_back(argument.data());
  argv.push_back(nullptr);
  return Run(static_cast<int>(argv.size() - 1), argv.data());
}

}  // namespace trovisk::test

namespace trovisk {

using test::Call;
using test::Fault;
using test::inserted;
using test::Meet;

ErrorCode OpenDevice(Device& device, WideText /*path*/, const char* /*argument*/) {
  device = Device{};
  if (const Fault* fault = Meet(Call::kOpen)) return fault->error;
  if (inserted->openImage != nullptr) return inserted->openImage(*inserted, device);
  device.handle = 1;
  return 0;
}

bool IsOpen(const Device& device) {
  return device.handle >= 0 || device.image != nullptr;
}

ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector) {
  const Fault* const fault = Meet(Call::kSectorSize);
  if (fault != nullptr && fault->error != 0) return fault->error;
  bytesPerSector = device.image != nullptr ? device.image->SectorSize() : inserted->sectorSize;
  if (fault != nullptr) bytesPerSector = static_cast<u32>(fault->amount);
  return 0;
}

ErrorCode QueryLength(const Device& device, u64& bytes) {
  const Fault* const fault = Meet(Call::kLength);
  if (fault != nullptr && fault->error != 0) return fault->error;
  bytes = device.image != nullptr ? device.image->Length() : inserted->Length();
  return 0;
}

ErrorCode SeekDevice(Device& device, u64 offset, u64& landed) {
  const Fault* const fault = Meet(Call::kSeek);
  if (fault != nullptr && fault->error != 0) return fault->error;
  if (fault == nullptr && offset >> 63 != 0) return EINVAL;
  device.position = landed = fault != nullptr ? fault->amount : offset;
  return 0;
}

Bytes TakeReadAhead(Device& device, u32 count) {
  return device.image != nullptr ? TakeOfImage(device, count) : Bytes();
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  const Fault* const fault = Meet(Call::kRead);
  if (fault != nullptr && fault->error != 0) return fault->error;
  if (device.image != nullptr) return ReadImage(device, buffer, count, got);
  const u64 wanted = fault != nullptr ? std::min<u64>(count, fault->amount) : count;
  got = static_cast<u32>(inserted->Read(device.position, buffer, wanted));
  device.position += got;
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  device = Device{};
  return 0;
}

std::vector<ListedDisk> ListDisks() {
  return {};
}

ErrorCode WriteOutput(Output output, const char* text, std::size_t count) {
  if (output == Output::kErrors) {
    test::printed.errors.append(text, count);
    return 0;
  }
  test::printed.reportBytes += count;
  if (inserted->terminal || inserted->kept) test::printed.shown.append(text, count);
  return 0;
}

bool IsClosedPipe(ErrorCode error) {
  return error == EPIPE;
}

bool IsTerminal(Output output) {
  return output == Output::kReport && inserted->terminal;
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
