// The walk: what ends nothing, and what is found all the same.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/disks/samples.h"
#include "tests/disks/spaces.h"
#include "tests/support/child.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

using Lines = std::vector<std::string>;

// A disk of 4096 sectors with two partitions.
Disk TwoPartitions() {
  Disk disk;
  PutGpt(disk, {{.first = 100, .last = 199, .name = u"one"}, {.first = 200, .last = 299, .name = u"two"}});
  return disk;
}

void Zero(Disk& disk, u64 sector) {
  disk.At(sector).Fill(0, disk.SectorSize(), 0);
}

Fault UnreadableSector(u64 sector) {
  return {.call = Call::kRead, .calls = kAnySector, .error = EIO, .sector = sector};
}

TEST(Walk, ASoundDiskHasNothingWrong) {
  const DiskMap map = SurveyOf(TwoPartitions());
  EXPECT_EQ(WrongChecks(map), Lines{});
  EXPECT_EQ(map.invalidStructures, 0u);
  EXPECT_EQ(map.ExitStatus(), 0);
}

TEST(Walk, TheSampleDisksHaveNothingWrong) {
  for (const Disk& disk : {GptSample(), MbrSample(), DynamicSample()}) {
    const DiskMap map = SurveyOf(disk);
    EXPECT_EQ(WrongChecks(map), Lines{});
    EXPECT_EQ(map.invalidStructures, 0u);
    EXPECT_EQ(map.ExitStatus(), 0);
  }
}

// The list of a storage pool's records ends with the first sector that has none; an unreadable one is no end.
TEST(Walk, TheSectorBehindAListIsNoInvalidStructure) {
  SurveyOf(GptSample());
  Lines names = Named(StructuresNow());
  EXPECT_NE(std::find(names.begin(), names.end(), "118794 spaces_sdbb"), names.end());
  SurveyOf({.disk = GptSample(), .faults = {UnreadableSector(118794)}});
  names = Named(StructuresNow());
  EXPECT_NE(std::find(names.begin(), names.end(), "118794 spaces_sdbb (invalid)"), names.end());
}

TEST(Walk, AZeroedPrimaryHeaderLeavesTheBackupsPartitions) {
  Disk disk = TwoPartitions();
  Zero(disk, 1);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map), (Lines{"1-4095 MBR entry 1 container", "100-199 GPT backup entry 1",
                                      "200-299 GPT backup entry 2"}));
  EXPECT_EQ(VerdictOf(map, "GPT primary header"), "missing");
  EXPECT_EQ(VerdictOf(map, "GPT backup header CRC-32"), "good");
  EXPECT_EQ(map.ExitStatus(), 2);
}

// A device that says that its sectors have no bytes has none that could be looked at.
TEST(Walk, SectorsOfNoBytesHoldNothing) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0F, .first = 1}, {.type = 0x05, .first = 1}}});
  const DiskMap map = SurveyOf({.disk = disk, .faults = {{.call = Call::kSectorSize, .amount = 0}}});
  EXPECT_EQ(CallsSinceInsertion().Of(Call::kRead), 0u);
  EXPECT_EQ(map.structures, 1u);
  EXPECT_EQ(map.invalidStructures, 1u);
}

// On a disk whose length nobody knows a database may claim any: it ends where nothing can be read.
TEST(Walk, DatabaseOnADiskOfUnknownLengthEndsWithIt) {
  Disk disk(200);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 140, .count = 50}}});
  PutLdmDatabase(disk, {.configStart = 64, .logicalSize = 60});
  for (const u64 copy : {u64{66}, u64{124}})
    PutTocBlock(disk, copy, {.config = {.name = "config", .start = 8, .size = 100'000}});
  const DiskMap map = SurveyOf({.disk = disk, .faults = {{.call = Call::kLength, .error = EIO}}});
  EXPECT_EQ(VerdictOf(map, "VBLK signatures"), "bad");
  EXPECT_GT(CallsSinceInsertion().Of(Call::kRead), 100u);
  EXPECT_LT(CallsSinceInsertion().Of(Call::kRead), 1000u);
}

TEST(Walk, AnUnreadableStructureEndsNothing) {
  for (const u64 sector : {0U, 1U, 2U, 4063U, 4095U}) {
    SCOPED_TRACE(sector);
    const DiskMap map = SurveyOf({.disk = TwoPartitions(), .faults = {UnreadableSector(sector)}});
    std::size_t found = 0;
    for (const Extent& extent : map.extents)
      found += extent.name == "one" || extent.name == "two" ? 1U : 0U;
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(map.ExitStatus(), 2);
  }
}

// An image that was cut short is one finding, however much of it is lost.
TEST(Walk, StructuresBeyondTheEndAreSaidOnce) {
  Disk disk(1000);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2,
                {{.type = kStorageSpacesType, .first = 2000, .last = 2999},
                 {.type = kStorageReplicaType, .first = 1500, .last = 1999}});
  PutGptHeader(disk, 1, {.otherLba = 4095, .lastUsable = 4062});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "structure is valid"), "none");
  const Check* const check = CheckOf(map, "structures lie on the disk", 1500);
  ASSERT_NE(check, nullptr);
  EXPECT_EQ(check->verdict, Verdict::kMissing);
  EXPECT_EQ(check->found, "3 beyond its end, from sector 1500 on (DPOM sector)");
}

TEST(Walk, AnInvalidStructureEndsNothing) {
  Disk disk;
  PutGpt(disk, {{.type = kStorageSpacesType, .first = 100, .last = 199},
                {.type = kStorageReplicaType, .first = 200, .last = 299}});
  PutDpom(disk, 200, {.dataSize = 4096});
  SurveyOf(disk);  // no SPACEDB in sector 100
  const Lines names = Named(StructuresNow());
  EXPECT_NE(std::find(names.begin(), names.end(), "100 spaces_spacedb (invalid)"), names.end());
  EXPECT_NE(std::find(names.begin(), names.end(), "200 replica_dpom"), names.end());
}

TEST(Walk, EverySectorOfBothArraysIsAStructure) {
  SurveyOf(TwoPartitions());
  const std::vector<Structure> structures = StructuresNow();
  u64 sectors = 0;
  for (const Structure& structure : structures)
    sectors += structure.structure == "gpt_entries" ? structure.count : 0;
  EXPECT_EQ(sectors, 64u);
}

// Every header names the one before it as its backup: each is found by the one behind it alone.
TEST(Walk, AChainThatLeadsBackwardsTakesNoLongerThanOneThatLeadsForwards) {
  constexpr u64 kHeaders = 20000;
  Disk disk(64 + 2 * kHeaders);
  PutProtectiveMbr(disk);
  const u64 last = disk.Sectors() - 1;
  for (u64 i = 0; i < kHeaders; ++i) {
    const u64 sector = last - 2 * i;
    PutGptHeader(disk, sector, {.otherLba = sector - 2, .entriesLba = 2, .entryCount = 4});
  }
  const Outcome outcome = InSeconds(20, [&] { std::exit(SurveyOf(disk).structures > kHeaders ? 0 : 1); });
  EXPECT_EQ(outcome.status, 0);
}

// The chain as the report reads it, each link counted from its own record, has the second logical partition,
// behind which it leads beyond the disk; the usual one has the third.
Disk TwoReadings() {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 1000, .count = 3000}}});
  PutBootRecord(
      disk, 1000,
      {.entries = {{.type = 0x83, .first = 1, .count = 9}, {.type = 0x05, .first = 500, .count = 10}}});
  PutBootRecord(
      disk, 1500,
      {.entries = {{.type = 0x83, .first = 2, .count = 8}, {.type = 0x05, .first = 1000, .count = 10}}});
  PutBootRecord(disk, 2000, {.entries = {{.type = 0x83, .first = 3, .count = 7}}});
  PutBootRecord(
      disk, 2500,
      {.entries = {{.type = 0x83, .first = 4, .count = 6}, {.type = 0x05, .first = 90000, .count = 10}}});
  return disk;
}

TEST(Walk, TheReportsReadingOfAnExtendedChainStandsBesideTheUsualOne) {
  EXPECT_EQ(PartitionsOf(SurveyOf(TwoReadings())),
            (Lines{"1000-3999 MBR entry 1 container", "1001-1009 EBR at sector 1000",
                   "1502-1509 EBR at sector 1500", "2003-2009 EBR at sector 2000",
                   "2504-2509 EBR at sector 2500 other-reading"}));
}

TEST(Walk, NothingIsPrintedMeanwhile) {
  const Outcome outcome = RunChild([&] {
    SurveyOf({.disk = TwoReadings(), .faults = {UnreadableSector(2500), UnreadableSector(1500)}});
    StructuresNow();
    std::exit(0);
  });
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
}

TEST(Walk, AStructureThatAnotherCheckJudgesIsNotJudgedTwice) {
  Disk disk = TwoPartitions();
  Zero(disk, 4095);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT backup header", 4095), "missing");
  EXPECT_EQ(VerdictOf(map, "structure is valid", 4095), "none");
}

}  // namespace
}  // namespace trovisk::test
