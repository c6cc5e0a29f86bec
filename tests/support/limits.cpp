#include "tests/support/limits.h"

#include <sys/resource.h>

#include <cstdlib>

namespace trovisk::test {
namespace {

constexpr rlim_t kSeconds = 20;

}  // namespace

Outcome WithinLimits(const std::function<Outcome()>& run) {
  // The program inherits the limit and counts from zero; this process needs what it has used on top.
  rusage own{};
  getrusage(RUSAGE_SELF, &own);
  rlimit before{};
  getrlimit(RLIMIT_CPU, &before);
  rlimit limit = before;
  limit.rlim_cur = static_cast<rlim_t>(own.ru_utime.tv_sec + own.ru_stime.tv_sec) + kSeconds;
  setrlimit(RLIMIT_CPU, &limit);
  Outcome outcome = run();
  setrlimit(RLIMIT_CPU, &before);

  EXPECT_LT(outcome.status, 256) << "the program was ended by signal " << outcome.status - 256;
  // An emulator's memory counts with that of the program that runs through it.
  if (kMemoryCounts && std::getenv("TROVISK_EMULATED") == nullptr) {
    EXPECT_LT(outcome.peakKiB, kMemoryKiB) << "KiB of memory";
  }
  return outcome;
}

Outcome RunOnWithinLimits(const Disk& disk, const std::vector<std::string>& arguments) {
  return WithinLimits([&] { return RunOn(disk, arguments); });
}

}  // namespace trovisk::test
