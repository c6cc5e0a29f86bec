// Runs that follow one another in one process: none sees what another has left behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/disks/samples.h"
#include "tests/fuzz/seeds.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

struct Case {
  std::string name;
  MemoryDisk memory;
  std::vector<std::string> arguments;
  MemoryOutcome alone = {};
};

Case SampleCase(const std::string& name, const Disk& disk) {
  return {name, {disk}, {"mem"}};
}

// Each with what a process of its own prints. Those are born before this process has made a run.
std::vector<Case> Samples() {
  std::vector<Case> cases;
  for (const u32 size : {512U, 4096U}) {
    const std::string suffix = " of " + std::to_string(size);
    cases.push_back(SampleCase("GPT" + suffix, GptSample(size)));
    cases.push_back(SampleCase("MBR" + suffix, MbrSample(size)));
    cases.push_back(SampleCase("dynamic" + suffix, DynamicSample(size)));
  }
  for (Case& each : cases)
    each.alone = RunOnMemory(each.memory, each.arguments);
  return cases;
}

std::vector<Case> FuzzerSeeds() {
  std::vector<Case> cases;
  for (const Seed& seed : Seeds())
    cases.push_back({seed.name, seed.input.memory, seed.input.Arguments()});
  // A report that cannot be written ends the process.
  std::erase_if(cases, [](const Case& each) {
    const auto& faults = each.memory.faults;
    return std::any_of(faults.begin(), faults.end(),
                       [](const Fault& fault) { return fault.call == Call::kWriteReport; });
  });
  for (Case& each : cases)
    each.alone = RunOnMemory(each.memory, each.arguments);
  return cases;
}

void ExpectAsAlone(const Case& each) {
  const MemoryOutcome outcome = RunInProcess(each.memory, each.arguments);
  EXPECT_TRUE(SameText(outcome.out, each.alone.out));
  EXPECT_EQ(outcome.err, each.alone.err);
  EXPECT_EQ(outcome.status, each.alone.status);
  EXPECT_EQ(outcome.calls.order, each.alone.calls.order);
}

TEST(Order, EverySampleDiskAfterEveryOther) {
  const std::vector<Case> samples = Samples();
  for (const Case& before : samples) {
    for (const Case& after : samples) {
      SCOPED_TRACE(after.name + " after " + before.name);
      RunInProcess(before.memory, before.arguments);
      ExpectAsAlone(after);
    }
  }
}

// Among them disks that leave the report in hexadecimal, and runs that end early.
TEST(Order, SeedsOfTheFuzzerInAnyOrder) {
  std::vector<Case> seeds = FuzzerSeeds();
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    std::shuffle(seeds.begin(), seeds.end(), random);
    const Case* before = &seeds.back();
    for (const Case& each : seeds) {
      SCOPED_TRACE(each.name + " after " + before->name);
      ExpectAsAlone(each);
      if (HasFailure()) return;
      before = &each;
    }
  }
}

}  // namespace
}  // namespace trovisk::test
