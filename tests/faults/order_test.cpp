// Runs that follow one another in one process: none sees what another has left behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "frame/decoders.h"
#include "frame/report/report.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/refs.h"
#include "tests/disks/samples.h"
#include "tests/fuzz/seeds.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"
#include "tests/support/terminal.h"

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
    cases.push_back({seed.name, seed.memory, seed.command.Arguments()});
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

// Decoders that stand alone see the values of a run's start, whatever the run before has found: they
// register, or leave alone, what these values lead to.
TEST(Order, DecodersWithoutTheirPredecessorsStartFromNothing) {
  Disk disk(5000);
  PutLdmDatabase(disk, {.privhead = 6, .configStart = 200});
  PutReFsBootRecord(disk, 1000, {.sectorCount = 500, .sectorsPerCluster = 1});
  PutReFsSuperblock(disk, 1030, {.references = {40}});
  PutGptHeader(disk, 1, {});
  MemoryDisk whole{disk};
  whole.registered = {{1, DecodeGptHeader, L"header"},
                      {2, DecodeGptEntries, L"entries"},
                      {6, DecodePrivhead, L"private header"},
                      {1000, DecodeReFsBootRecord, L"boot record"}};
  MemoryDisk alone{disk};
  alone.registered = {{2, DecodeGptEntries, L"entries"},
                      {202, DecodeTocBlock, L"table"},
                      {1030, DecodeReFsSuperblock, L"superblock"}};
  MemoryDisk records{disk};
  records.registered = {{218, DecodeVblk, L"records"}, {1700, DecodeKlog, L"log"}};
  PutKlog(records.disk, 1700, {});
  for (const MemoryDisk& memory : {alone, records}) {
    Case each{"alone", memory, {"mem"}};
    each.alone = RunOnMemory(memory, each.arguments);
    EXPECT_NE(RunInProcess(whole, {"mem"}).out.find("VMDB Sector"), std::string::npos);
    ExpectAsAlone(each);
  }
}

// A run can be caught as a whole: where the report goes is its caller's affair.
TEST(Order, RunIsCaughtInAString) {
  const MemoryDisk memory{.disk = MbrSample(),
                          .terminal = true};  // caught text is made safe as on a terminal
  const MemoryOutcome direct = RunInProcess(memory, {"mem"});
  std::string caught;
  report.DirectTo(&caught);
  const MemoryOutcome empty = RunInProcess(memory, {"mem"});
  report.DirectTo(nullptr);
  EXPECT_EQ(empty.out, "");
  EXPECT_TRUE(SameText(WithoutRawBytes(WithoutDate(caught)), WithoutRawBytes(direct.out)));
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
