// Chains over millions of sectors: every run ends soon, in little memory.

#include <gtest/gtest.h>

#include <iostream>

#include "tests/disks/mbr.h"
#include "tests/disks/refs.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

// How much the peak of equal runs differs, by the pages that the system happens to map. A single byte for
// each of ten million sectors would be ten times as much.
constexpr long kNoiseKiB = 1024;

// Under the sanitizers a tenth of the length shows the same.
constexpr u64 kScale = kMemoryCounts ? 1 : 10;
constexpr u64 kMillion = 1000000 / kScale;

// Runs the program on a computed disk (support/generated_device.cpp).
Outcome RunOnChain(const std::string& kind, u64 count, const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {TROVISK_GENERATED_DISK_PROGRAM, kind + ":" + std::to_string(count)};
  words.insert(words.end(), arguments.begin(), arguments.end());
  Outcome outcome = WithinLimits([&] { return RunChild([&] { Execute(words); }); });
  std::cout << kind << ", " << count << " sectors: " << outcome.peakKiB << " KiB\n";
  EXPECT_EQ(outcome.status, 0);
  return outcome;
}

std::string Last(u64 sector) {
  return std::to_string(sector);
}

bool Ends(const Outcome& outcome, const std::string& text) {
  return outcome.out.ends_with(text);
}

TEST(Memory, ChainOfAMillionAdjacentExtendedRecords) {
  const Outcome outcome = RunOnChain("links", kMillion, {Last(kMillion)});
  EXPECT_TRUE(Ends(outcome, "Reading sector # " + Last(kMillion) + " [as a raw sector]\n... empty ...\n"))
      << outcome.out;
}

// Two registrations for each link, and no two neighbours alike.
TEST(Memory, ChainOfAMillionExtendedRecordsWithVolumesBetween) {
  const Outcome outcome = RunOnChain("links-apart", kMillion, {Last(2 * kMillion)});
  EXPECT_TRUE(Ends(outcome, "00 00 00 00 00 00 55 AA     ..............U.\n\n")) << outcome.out;
}

// The same memory for ten times the length.
TEST(Memory, EmptyRecordsOfADynamicDiskWithoutEnd) {
  long peak = 0;
  for (const u64 count : {kMillion, 10 * kMillion}) {
    const Outcome outcome = RunOnChain("vblk", count, {Last(count)});
    EXPECT_TRUE(Ends(outcome, "Reading sector # " + Last(count) + " [VBLK Sector]\n\n")) << outcome.out;
    if (peak != 0 && kMemoryCounts) {
      EXPECT_LT(outcome.peakKiB, peak + kNoiseKiB);
    }
    peak = outcome.peakKiB;
  }
}

TEST(Memory, ArrayOfGptEntriesWithoutEnd) {
  long peak = 0;
  for (const u64 count : {kMillion, 10 * kMillion}) {
    const Outcome outcome = RunOnChain("gpt", count, {Last(count)});
    EXPECT_NE(outcome.out.find("\tPartition Type        : [ Unused Entry ]\n"), std::string::npos)
        << outcome.out;
    if (peak != 0 && kMemoryCounts) {
      EXPECT_LT(outcome.peakKiB, peak + kNoiseKiB);
    }
    peak = outcome.peakKiB;
  }
}

TEST(Memory, StorageReplicaPartitionOf2To31And2To62Sectors) {
  for (const u64 count : {u64{1} << 31, u64{1} << 62}) {
    const std::string notThere = "**** No DPOD magic found ****\n";
    EXPECT_EQ(RunOnChain("replica", count, {"101"}).err, notThere + notThere);  // in either pass
    if (kScale == 1) {
      // Listed beyond the end of the disk, sector 1000, but 16777216 rows and no more; then the end alone.
      EXPECT_TRUE(Ends(RunOnChain("replica", count, {}),
                       "\n  16778215\tDPOD sector\n       ...\n" + Last(99 + count) + "\tDPOD sector\n"));
    }
  }
}

TEST(Memory, SuperblockWith2To32ReferencesLessOne) {
  Disk disk(1000);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 63, .count = 900}}});
  PutReFsBootRecord(disk, 63, {.sectorCount = 900, .sectorsPerCluster = 1});
  PutReFsSuperblock(disk, 93, {.referencesOffset = 0x80, .referenceCount = 0xFFFFFFFF});
  const Outcome outcome = RunOnWithinLimits(disk, {"93"});
  EXPECT_NE(outcome.out.find("Number Of Checkpoint Refs   : 4294967295\n"), std::string::npos);
  EXPECT_NE(outcome.out.find("Checkpoint Reference #48     : 0x"), std::string::npos);
  EXPECT_EQ(outcome.out.find("Checkpoint Reference #49 "), std::string::npos);
}

// A real file, read through the operating system: a million empty sectors at the speed of reading.
TEST(Memory, SparseImageIsWalkedAtTheSpeedOfReading) {
  Disk disk(kMillion + 1);
  PutBootRecord(disk, 0, {.entries = {{.type = 0xEE, .first = 1, .count = 0xFFFFFFFF}}});
  disk.At(1).Text(0, "EFI PART").Le64(0x20, 1).Le64(0x48, 2).Le32(0x50, 0xFFFFFFFF).Le32(0x54, 0x80000000);
  const Outcome outcome = RunOnWithinLimits(disk, {Last(kMillion)});
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace trovisk::test
