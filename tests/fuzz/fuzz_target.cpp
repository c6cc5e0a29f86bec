// The fuzzer's entry points.

#include <algorithm>
#include <cstring>
#include <random>

#include "tests/fuzz/fuzz_run.h"
#include "tests/fuzz/input.h"

using trovisk::Bytes;
using trovisk::u8;

extern "C" std::size_t LLVMFuzzerMutate(u8* data, std::size_t size, std::size_t maxSize);

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  trovisk::test::FuzzRun({data, size});
  return 0;
}

// Most mutations change the bytes of one record and say so in its header, so that the rest of the disk stays
// what it was; the others change the input anywhere.
extern "C" std::size_t LLVMFuzzerCustomMutator(u8* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  std::minstd_rand random(seed);
  const auto records = trovisk::test::RecordsOf(Bytes(data, size));
  if (records.empty() || random() % 4 == 0) return LLVMFuzzerMutate(data, size, maxSize);
  const trovisk::test::InputRecord record = records[random() % records.size()];
  const std::size_t rest = size - record.data - record.size;
  const std::size_t most = std::min<std::size_t>(4096, maxSize - (size - record.size));
  std::vector<u8> bytes(data + record.data, data + record.data + record.size);
  bytes.resize(std::max(most, record.size));
  const std::size_t changed = LLVMFuzzerMutate(bytes.data(), record.size, std::min(most, bytes.size()));
  std::memmove(data + record.data + changed, data + record.data + record.size, rest);
  std::memcpy(data + record.data, bytes.data(), changed);
  data[record.data - 2] = static_cast<u8>(changed);
  data[record.data - 1] = static_cast<u8>(changed >> 8);
  return record.data + changed + rest;
}
