#include "tests/fuzz/input.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>

namespace trovisk::test {
namespace {

// The usual sizes, sizes that no disk has, and none at all.
constexpr u32 kSectorSizes[] = {512, 4096, 1024, 2048, 520, 128, 1, 0};

constexpr Fault kFaults[] = {
    {.calls = 0},  // none
    {.call = Call::kRead, .error = EIO},
    {.call = Call::kRead, .amount = 100},
    {.call = Call::kSeek, .error = EINVAL},
    {.call = Call::kSeek, .amount = 512},
    {.call = Call::kLength, .error = EIO},
    {.call = Call::kOpen, .error = ENOENT},
    {.call = Call::kSectorSize, .error = ENOTTY},
    {.call = Call::kSectorSize, .amount = 0},
};

bool SameKind(const Fault& a, const Fault& b) {
  return a.call == b.call && a.error == b.error && a.amount == b.amount;
}

template <typename Value, std::size_t Count, typename Same>
std::size_t IndexIn(const Value (&list)[Count], Same same) {
  const auto found = std::find_if(std::begin(list), std::end(list), same);
  if (found == std::end(list)) std::abort();
  return static_cast<std::size_t>(found - std::begin(list));
}

void PutLe16(std::vector<u8>& bytes, u64 value) {
  bytes.push_back(static_cast<u8>(value));
  bytes.push_back(static_cast<u8>(value >> 8));
}

}  // namespace

std::vector<std::string> Command::Arguments() const {
  switch (mode) {
    case Mode::kSingleSector:
      return {"mem", std::to_string(first)};
    case Mode::kRange:
      return {"mem", std::to_string(first), std::to_string(last)};
    case Mode::kSingleWithNegativeLast:
      return {"mem", std::to_string(first), "-1"};
    case Mode::kWholeDisk:
      break;
  }
  return {"mem"};
}

void ParseInput(Bytes bytes, Input& input) {
  FuzzDisk& disk = input.disk;
  disk.sectors = Le16At(bytes, 6) % (kMostSectors + 1);
  disk.sectorSize = kSectorSizes[U8At(bytes, 0) % std::size(kSectorSizes)];
  disk.terminal = U8At(bytes, 1) / kModes % 2 != 0;
  // One beyond the last is refused.
  input.command = {.mode = static_cast<Mode>(U8At(bytes, 1) % kModes),
                   .first = Le16At(bytes, 2) % (kMostSectors + 1),
                   .last = Le16At(bytes, 4) % (kMostSectors + 1)};
  disk.fault = kFaults[U8At(bytes, 8) % std::size(kFaults)];
  if (disk.fault.calls != 0) {
    disk.fault.calls = u64{U8At(bytes, 9)} + 1;
    disk.fault.nth = u64{Le16At(bytes, 10)} + 1;
  }
  disk.stretches.clear();
  for (auto record = RecordAt(bytes, kInputHeader); record;
       record = RecordAt(bytes, record->data + record->size)) {
    const u64 sector = Le16At(bytes, record->data - 6) % kMostSectors;
    const u64 offset = Le16At(bytes, record->data - 4);
    if (offset >= disk.sectorSize) continue;
    const std::size_t size = std::min<std::size_t>(record->size, disk.sectorSize - offset);
    disk.stretches.push_back({sector * disk.sectorSize + offset, SliceAt(bytes, record->data, size)});
  }
}

std::vector<u8> WriteInput(const MemoryDisk& memory, const Command& command) {
  const Disk& disk = memory.disk;
  std::vector<u8> bytes;
  bytes.push_back(
      static_cast<u8>(IndexIn(kSectorSizes, [&](u32 size) { return size == disk.SectorSize(); })));
  bytes.push_back(static_cast<u8>(static_cast<unsigned>(command.mode) + (memory.terminal ? kModes : 0)));
  PutLe16(bytes, command.first);
  PutLe16(bytes, command.last);
  PutLe16(bytes, disk.Sectors());
  Fault fault = {.calls = 1};
  std::size_t kind = 0;
  if (!memory.faults.empty()) {
    fault = memory.faults.front();
    kind = IndexIn(kFaults, [&](const Fault& each) { return each.calls != 0 && SameKind(each, fault); });
  }
  bytes.push_back(static_cast<u8>(kind));
  bytes.push_back(static_cast<u8>(fault.calls - 1));
  PutLe16(bytes, fault.nth - 1);
  for (const auto& [number, sector] : disk.Touched()) {
    const Bytes all = sector.View();
    const auto notZero = [](u8 byte) { return byte != 0; };
    const auto from = std::find_if(all.begin(), all.end(), notZero);
    const auto to = std::find_if(all.rbegin(), all.rend(), notZero).base();
    if (from >= to) continue;
    PutLe16(bytes, number);
    PutLe16(bytes, static_cast<u64>(from - all.begin()));
    PutLe16(bytes, static_cast<u64>(to - from));
    bytes.insert(bytes.end(), from, to);
  }
  return bytes;
}

}  // namespace trovisk::test
