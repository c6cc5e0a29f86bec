// The fuzzer's entry points.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <random>

#include "tests/fuzz/fuzz_run.h"
#include "tests/fuzz/input.h"

namespace trovisk::test {
namespace {

// As long as a record is that a mutation changes by itself.
constexpr std::size_t kMostChanged = 1024;

// One of the records, each as likely as the others.
std::optional<InputRecord> ChooseRecord(Bytes bytes, std::minstd_rand& random) {
  std::optional<InputRecord> chosen;
  unsigned count = 0;
  for (auto record = RecordAt(bytes, kInputHeader); record;
       record = RecordAt(bytes, record->data + record->size)) {
    if (random() % ++count == 0) chosen = record;
  }
  return chosen;
}

}  // namespace
}  // namespace trovisk::test

using trovisk::u8;

extern "C" std::size_t LLVMFuzzerMutate(u8* data, std::size_t size, std::size_t maxSize);

// Memory that is freed is kept unusable for a while, but not for longer than the processor's caches hold it;
// one line of where it came from, for the input tells the rest.
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=1:quarantine_size_mb=1:thread_local_quarantine_size_kb=64";
}

// A local time costs no look at the system's time zone where the environment has one.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  setenv("TZ", "UTC0", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  trovisk::test::FuzzRun({data, size}, trovisk::test::Effort::kQuick);
  return 0;
}

// Most mutations change the bytes of one record and say so in its header, so that the rest of the disk stays
// what it was; the others change the input anywhere.
extern "C" std::size_t LLVMFuzzerCustomMutator(u8* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  constexpr std::size_t kMost = trovisk::test::kMostChanged;
  std::minstd_rand random(seed);
  const auto record = trovisk::test::ChooseRecord({data, size}, random);
  const std::size_t most = record ? std::min(kMost, maxSize - (size - record->size)) : 0;
  if (most == 0 || record->size > most || random() % 4 == 0) return LLVMFuzzerMutate(data, size, maxSize);
  std::array<u8, kMost> bytes;
  std::copy_n(data + record->data, record->size, bytes.data());
  const std::size_t changed = LLVMFuzzerMutate(bytes.data(), record->size, most);
  u8* const behind = data + record->data + record->size;
  std::memmove(data + record->data + changed, behind, static_cast<std::size_t>(data + size - behind));
  std::copy_n(bytes.data(), changed, data + record->data);
  data[record->data - 2] = static_cast<u8>(changed);
  data[record->data - 1] = static_cast<u8>(changed >> 8);
  return size - record->size + changed;
}
