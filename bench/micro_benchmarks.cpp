// Micro-benchmarks of the functions that the speed of a run depends on.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "frame/decoders.h"
#include "frame/report/listing.h"
#include "frame/report/verbs.h"
#include "frame/toc.h"
#include "refimages/sha256.h"

namespace trovisk {

namespace {

std::vector<u8> RandomBytes(std::size_t count) {
  std::mt19937 random(47);
  std::vector<u8> bytes(count);
  for (u8& byte : bytes)
    byte = static_cast<u8>(random());
  return bytes;
}

// While it lives, the report goes into memory that is thrown away again and again.
class Discarded {
 public:
  Discarded() { report.DirectTo(&text_); }
  ~Discarded() { report.DirectTo(nullptr); }
  Discarded(const Discarded&) = delete;
  Discarded& operator=(const Discarded&) = delete;

  void Forget() {
    constexpr std::size_t kMost = 65536;
    if (text_.size() > kMost) text_.clear();
  }

 private:
  std::string text_;
};

void DumpRow(benchmark::State& state) {
  const std::vector<u8> bytes = RandomBytes(static_cast<std::size_t>(state.range(0)) * 16);
  Discarded discarded;
  for ([[maybe_unused]] const auto iteration : state) {
    PrintDumpRows(bytes, bytes.size() / 16);
    discarded.Forget();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(DumpRow)->Arg(1)->Arg(32)->Arg(256);  // a sector of 512 bytes, of 4096

void SectorHeader(benchmark::State& state) {
  Discarded discarded;
  u64 sector = 123456789;
  for ([[maybe_unused]] const auto iteration : state) {
    PrintSectorHeader(L"Raw Sector", ++sector);
    discarded.Forget();
  }
}
BENCHMARK(SectorHeader);

void Guid(benchmark::State& state) {
  const std::vector<u8> bytes = RandomBytes(16);
  Discarded discarded;
  for ([[maybe_unused]] const auto iteration : state) {
    PrintGuid(FixedBytes<16>(bytes));
    discarded.Forget();
  }
}
BENCHMARK(Guid);

// Registers so many sectors, none beside another, in ascending or in random order.
void Register(benchmark::State& state, bool ascending) {
  std::vector<u64> sectors(static_cast<std::size_t>(state.range(0)));
  for (std::size_t i = 0; i < sectors.size(); ++i)
    sectors[i] = 2 * i;
  if (!ascending) std::shuffle(sectors.begin(), sectors.end(), std::mt19937_64(47));
  for ([[maybe_unused]] const auto iteration : state) {
    SectorToc toc;
    for (const u64 sector : sectors)
      toc.Add(sector, sector, DumpRawSector, L"MFT");
    benchmark::DoNotOptimize(toc.At(0));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(Register, ascending, true)->RangeMultiplier(256)->Range(16, 1 << 20);
BENCHMARK_CAPTURE(Register, random, false)->RangeMultiplier(256)->Range(16, 1 << 20);

void LookUp(benchmark::State& state) {
  const auto count = static_cast<u64>(state.range(0));
  SectorToc toc;
  for (u64 sector = 0; sector < count; ++sector)
    toc.Add(2 * sector, 2 * sector, DumpRawSector, L"MFT");
  std::mt19937_64 random(47);
  for ([[maybe_unused]] const auto iteration : state)
    benchmark::DoNotOptimize(toc.FirstAtOrAfter(random() % (2 * count)));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LookUp)->RangeMultiplier(256)->Range(16, 1 << 20);

void Digest(benchmark::State& state) {
  const std::vector<u8> bytes = RandomBytes(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] const auto iteration : state)
    benchmark::DoNotOptimize(Sha256(bytes));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Digest)->Arg(139)->Arg(355)->Arg(4096);  // the shortest and the longest stretches of boot code

}  // namespace
}  // namespace trovisk
