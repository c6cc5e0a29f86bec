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

std::vector<std::string> Input::Arguments() const {
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

std::vector<InputRecord> RecordsOf(Bytes bytes) {
  std::vector<InputRecord> records;
  std::size_t at = kInputHeader;
  while (at + kRecordHeader <= bytes.size()) {
    at += kRecordHeader;
    const std::size_t size = std::min<std::size_t>(Le16At(bytes, at - 2), bytes.size() - at);
    records.push_back({at, size});
    at += size;
  }
  return records;
}

Input ParseInput(Bytes bytes) {
  Input input;
  const u64 sectors = Le16At(bytes, 6) % (kMostSectors + 1);
  input.memory.disk = Disk(sectors, kSectorSizes[U8At(bytes, 0) % std::size(kSectorSizes)]);
  input.mode = static_cast<Mode>(U8At(bytes, 1) % kModes);
  input.memory.terminal = U8At(bytes, 1) / kModes % 2 != 0;
  // One beyond the last is refused.
  input.first = Le16At(bytes, 2) % (kMostSectors + 1);
  input.last = Le16At(bytes, 4) % (kMostSectors + 1);
  Fault fault = kFaults[U8At(bytes, 8) % std::size(kFaults)];
  if (fault.calls != 0) {
    fault.calls = u64{U8At(bytes, 9)} + 1;
    fault.nth = u64{Le16At(bytes, 10)} + 1;
    input.memory.faults.push_back(fault);
  }
  for (const InputRecord& record : RecordsOf(bytes)) {
    const u64 sector = Le16At(bytes, record.data - 6) % kMostSectors;
    const std::size_t offset = Le16At(bytes, record.data - 4);
    Sector& there = input.memory.disk.At(sector);
    const Bytes data = SliceAt(bytes, record.data, record.size);
    if (offset < there.View().size()) there.Bytes(offset, SliceAt(data, 0, there.View().size() - offset));
  }
  return input;
}

std::vector<u8> WriteInput(const Input& input) {
  const Disk& disk = input.memory.disk;
  std::vector<u8> bytes;
  bytes.push_back(
      static_cast<u8>(IndexIn(kSectorSizes, [&](u32 size) { return size == disk.SectorSize(); })));
  bytes.push_back(static_cast<u8>(static_cast<unsigned>(input.mode) + (input.memory.terminal ? kModes : 0)));
  PutLe16(bytes, input.first);
  PutLe16(bytes, input.last);
  PutLe16(bytes, disk.Sectors());
  Fault fault = {.calls = 1};
  std::size_t kind = 0;
  if (!input.memory.faults.empty()) {
    fault = input.memory.faults.front();
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
