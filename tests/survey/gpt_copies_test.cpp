// The two copies of a GUID partition table: each check good, bad and missing, and whose partitions count.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "map/structures.h"
#include "map/survey.h"
#include "tests/disks/gpt.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

using Lines = std::vector<std::string>;

constexpr u64 kLast = 4095;
constexpr u64 kBackupArray = kLast - 32;

const std::vector<GptEntry>& Entries() {
  static const std::vector<GptEntry> entries = {{.first = 100, .last = 199}, {.first = 200, .last = 299}};
  return entries;
}

Disk Sound() {
  Disk disk;
  PutGpt(disk, Entries());
  return disk;
}

// A sound disk of which one header says something else, its checksum right.
Disk WithPrimary(const GptHeader& header) {
  Disk disk = Sound();
  PutGptHeader(disk, 1, header);
  return disk;
}

Disk WithBackup(const GptHeader& header) {
  Disk disk = Sound();
  PutGptHeader(disk, kLast, header);
  return disk;
}

constexpr std::string_view kOfEachCopy[] = {
    "header",        "header CRC-32", "revision", "header's own sector", "partition entry array CRC-32",
    "usable sectors"};

TEST(GptCopies, EveryCheckIsGoodOnASoundDisk) {
  const DiskMap map = SurveyOf(Sound());
  for (const std::string copy : {"primary", "backup"}) {
    for (const std::string_view check : kOfEachCopy)
      EXPECT_EQ(VerdictOf(map, ("GPT " + copy + " ").append(check)), "good") << copy << " " << check;
  }
  for (const std::string_view check :
       {"protective entry covers the disk", "GPT backup header stands in the last sector",
        "GPT primary header names the backup", "GPT backup header names the primary",
        "GPT copies agree on the disk GUID", "GPT copies agree on the first usable sector",
        "GPT copies agree on the last usable sector", "GPT copies agree on the number of entries",
        "GPT copies agree on the size of an entry", "GPT copies agree on the array's CRC-32",
        "GPT partitions lie in the usable sectors", "GPT partitions do not overlap"}) {
    EXPECT_EQ(VerdictOf(map, check), "good") << check;
  }
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1-4095 MBR entry 1 container", "100-199 GPT entry 1", "200-299 GPT entry 2"}));
}

TEST(GptCopies, SoDoesADiskWithLargeSectors) {
  Disk disk(4096, 4096);
  PutGpt(disk, Entries());
  EXPECT_EQ(WrongChecks(SurveyOf(disk)), Lines{});
}

TEST(GptCopies, TheNumbersOfAChecksumAreShown) {
  Disk disk = WithPrimary({.headerCrc = 0x1234ABCD});
  const DiskMap map = SurveyOf(disk);
  ASSERT_EQ(VerdictOf(map, "GPT primary header CRC-32", 1), "bad");
  EXPECT_EQ(CheckOf(map, "GPT primary header CRC-32")->found, "0x1234ABCD");
}

struct Lie {
  GptHeader header;
  std::string_view check;  // the one that tells
};

TEST(GptCopies, EveryFieldOfAHeaderIsChecked) {
  const Lie lies[] = {
      {{.revision = {0, 0, 2, 0}}, "GPT primary revision"},
      {{.headerSize = 91}, "GPT primary header size"},
      {{.headerSize = 513}, "GPT primary header size"},
      {{.headerSize = 0xFFFFFFFF}, "GPT primary header size"},
      {{.headerCrc = 1}, "GPT primary header CRC-32"},
      {{.ownLba = 2}, "GPT primary header's own sector"},
      {{.otherLba = 4094}, "GPT primary header names the backup"},
      {{.firstUsable = 33}, "GPT primary usable sectors"},
      {{.firstUsable = 35}, "GPT copies agree on the first usable sector"},
      {{.lastUsable = 4095}, "GPT primary usable sectors"},
      {{.lastUsable = 33}, "GPT primary usable sectors"},
      {{.lastUsable = 4061}, "GPT copies agree on the last usable sector"},
      {{.diskGuid = kLinuxSwapType}, "GPT copies agree on the disk GUID"},
      {{.entriesLba = 1}, "GPT primary usable sectors"},
      {{.entriesLba = 4090}, "GPT primary partition entry array's place"},
      {{.entriesLba = ~u64{0}}, "GPT primary partition entry array's place"},
      {{.entryCount = 64}, "GPT copies agree on the number of entries"},
      {{.entryCount = 0xFFFFFFFF}, "GPT primary partition entry array's place"},
      {{.entrySize = 64}, "GPT primary entry size"},
      {{.entrySize = 129}, "GPT primary entry size"},
      {{.entrySize = 0}, "GPT primary entry size"},
      {{.entrySize = 0x80000000}, "GPT primary partition entry array's place"},
      {{.entriesCrc = 1}, "GPT primary partition entry array CRC-32"},
  };
  for (const Lie& lie : lies) {
    const DiskMap map = SurveyOf(WithPrimary(lie.header));
    EXPECT_EQ(VerdictOf(map, lie.check), "bad") << lie.check;
    EXPECT_EQ(map.ExitStatus(), 2);
  }
}

TEST(GptCopies, TheBackupsFieldsAreCheckedToo) {
  const Lie lies[] = {
      {{.headerCrc = 1}, "GPT backup header CRC-32"},
      {{.ownLba = 4094}, "GPT backup header's own sector"},
      {{.otherLba = 2}, "GPT backup header names the primary"},
      {{.lastUsable = 4063}, "GPT backup usable sectors"},
      {{.entriesLba = 2}, "GPT backup usable sectors"},
      {{.entriesCrc = 1}, "GPT backup partition entry array CRC-32"},
  };
  for (const Lie& lie : lies)
    EXPECT_EQ(VerdictOf(SurveyOf(WithBackup(lie.header)), lie.check), "bad") << lie.check;
}

// An array that is not read has its size all the same.
TEST(GptCopies, PlacesAreSaidAsTheHeaderStatesThem) {
  DiskMap map = SurveyOf(WithPrimary({.entriesLba = 4090}));
  ASSERT_EQ(VerdictOf(map, "GPT primary usable sectors"), "bad");
  EXPECT_EQ(CheckOf(map, "GPT primary usable sectors")->found, "array 4090, 32 sectors; usable 34 to 4062");
  map = SurveyOf(WithPrimary({.lastUsable = 9000}));
  ASSERT_EQ(VerdictOf(map, "GPT primary usable sectors"), "bad");
  EXPECT_EQ(CheckOf(map, "GPT primary usable sectors")->found, "array 2, 32 sectors; usable 34 to 9000");
  EXPECT_EQ(CheckOf(map, "GPT primary usable sectors")->expected,
            "header, array and usable sectors one beside the other, before sector 4095");
}

TEST(GptCopies, AnUnreadableHeaderOrArrayIsMissing) {
  const std::pair<u64, std::string_view> places[] = {
      {1, "GPT primary header"},
      {kLast, "GPT backup header"},
      {2, "GPT primary partition entry array CRC-32"},
      {kBackupArray, "GPT backup partition entry array CRC-32"}};
  for (const auto& [sector, check] : places) {
    const DiskMap map =
        SurveyOf({.disk = Sound(),
                  .faults = {{.call = Call::kRead, .calls = kAnySector, .error = EIO, .sector = sector}}});
    EXPECT_EQ(VerdictOf(map, check, sector), "missing") << check;
    EXPECT_EQ(PartitionsOf(map).size(), 3u) << check;
  }
}

TEST(GptCopies, AZeroedBackupLeavesThePrimarysPartitions) {
  Disk disk = Sound();
  disk.At(kLast).Fill(0, 512, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT backup header", kLast), "missing");
  EXPECT_EQ(PartitionsOf(map), (Lines{"1-4095 MBR entry 1 container", "100-199 GPT primary entry 1",
                                      "200-299 GPT primary entry 2"}));
}

// Both sound, and each with other partitions: the map follows the primary one and shows the other.
TEST(GptCopies, TwoSoundCopiesThatContradictEachOtherAreBothShown) {
  Disk disk = Sound();
  PutGptEntries(disk, kBackupArray, {{.first = 100, .last = 150}, {.first = 200, .last = 299}});
  PutGptHeader(disk, kLast);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1-4095 MBR entry 1 container", "100-199 GPT primary entry 1 copy-differs",
                   "100-150 GPT backup entry 1 copy-differs other-copy", "200-299 GPT entry 2"}));
  EXPECT_EQ(VerdictOf(map, "GPT copies agree on the array's CRC-32"), "bad");
  EXPECT_EQ(VerdictOf(map, "GPT primary partition entry array CRC-32"), "good");
  EXPECT_EQ(VerdictOf(map, "GPT backup partition entry array CRC-32"), "good");
}

TEST(GptCopies, OfADamagedPrimaryArrayTheBackupIsFollowed) {
  Disk disk = Sound();
  disk.At(2).Le64(0x28, 150);  // the end of the first partition
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)),
            (Lines{"1-4095 MBR entry 1 container", "100-199 GPT backup entry 1 copy-differs",
                   "100-150 GPT primary entry 1 unsound copy-differs other-copy", "200-299 GPT entry 2"}));
}

TEST(GptCopies, AHeaderThatPointsAstrayDoesNotHideTheBackup) {
  for (const u64 astray : {u64{0}, u64{1}, u64{2000}, u64{kLast + 1}, ~u64{0}}) {
    const DiskMap map = SurveyOf(WithPrimary({.otherLba = astray}));
    EXPECT_EQ(VerdictOf(map, "GPT backup header", kLast), "good") << astray;
    EXPECT_EQ(VerdictOf(map, "GPT primary header names the backup"), "bad") << astray;
    EXPECT_EQ(PartitionsOf(map).size(), 3u) << astray;
  }
}

// As where an image was copied to a larger disk.
TEST(GptCopies, ABackupInFrontOfTheEndIsFoundWhereTheHeaderSays) {
  Disk disk = Sound();
  disk.Resize(5000);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT backup header CRC-32", kLast), "good");
  EXPECT_EQ(VerdictOf(map, "GPT backup header stands in the last sector"), "bad");
  EXPECT_EQ(VerdictOf(map, "protective entry covers the disk"), "bad");
  EXPECT_EQ(PartitionsOf(map).size(), 3u);
}

TEST(GptCopies, AnArrayOfLargerEntries) {
  Disk disk;
  PutProtectiveMbr(disk);
  const GptHeader header = {.firstUsable = 66, .lastUsable = 4030, .entryCount = 128, .entrySize = 256};
  PutGptEntries(disk, 2, Entries(), 256);
  PutGptEntries(disk, kLast - 64, Entries(), 256);
  PutGptHeader(disk, 1, header);
  PutGptHeader(disk, kLast, header);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT primary partition entry array CRC-32"), "good");
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1-4095 MBR entry 1 container", "100-199 GPT entry 1", "200-299 GPT entry 2"}));
}

// An entry that is larger than what is read at once, so that most pieces of the array hold no start of one.
TEST(GptCopies, AnArrayOfEntriesOfHalfAMegabyte) {
  Disk disk(4096);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.first = 3000, .last = 3001}, {.first = 3002, .last = 3003}}, 1 << 19);
  PutGptHeader(disk, 1, {.firstUsable = 2050, .lastUsable = 4000, .entryCount = 2, .entrySize = 1 << 19});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT primary partition entry array CRC-32"), "good");
  EXPECT_EQ(PartitionsOf(map), (Lines{"1-4095 MBR entry 1 container", "3000-3001 GPT primary entry 1",
                                      "3002-3003 GPT primary entry 2"}));
}

TEST(GptCopies, AnArrayWithoutEntries) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.entryCount = 0});
  PutGptHeader(disk, kLast, {.entryCount = 0});
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)), (Lines{"1-4095 MBR entry 1 container"}));
}

// A million used entries: all are counted, those that are shown are said.
TEST(GptCopies, ATableOfAMillionEntriesIsCut) {
  constexpr u64 kEntries = u64{1} << 20;
  constexpr u64 kArray = kEntries * 128 / 512;
  const Outcome outcome = InSeconds(120, [&] {
    Disk disk(3 * kArray);
    PutProtectiveMbr(disk);
    std::vector<GptEntry> some;
    for (u64 i = 0; i < 20000; ++i)
      some.push_back({.first = 2 * kArray + i, .last = 2 * kArray + i});
    PutGptEntries(disk, 2, some);
    PutGptHeader(disk, 1, {.entryCount = kEntries, .entriesCrc = 0});
    const DiskMap map = SurveyOf(disk);
    EXPECT_EQ(PartitionsOf(map).size(), 8192u + 1);
    EXPECT_EQ(map.cut, (Lines{"The contents of 4096 partitions were not looked at.",
                              "Of 20000 partitions of the primary GPT the first 8192 are shown."}));
    // MBR, header, the sectors of the used entries, those of the unused ones in a row, and the last of them.
    EXPECT_EQ(StructuresNow().size(), 2 + 20000 / 4 + 2 + 1);
    std::exit(::testing::Test::HasFailure() ? 1 : 0);
  });
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
}

// As many of a sector's bytes as it has are entries; what is shown of them is bounded whatever its size.
TEST(GptCopies, StructuresOfLargeSectorsAreCutSooner) {
  constexpr u64 kEntries = u64{1} << 17;
  constexpr u64 kArray = kEntries * 128 / 4096;
  Disk disk(2 * kArray, 4096);
  PutProtectiveMbr(disk);
  std::vector<GptEntry> entries(kEntries);
  for (u64 i = 0; i < kEntries; ++i)
    entries[i] = {.first = kArray + i, .last = kArray + i};
  PutGptEntries(disk, 2, entries);
  PutGptHeader(disk, 1, {.entryCount = kEntries});
  SurveyOf(disk);
  u64 fields = 0;
  u64 last = 0;
  const auto cutBehind = VisitStructures([&](const Structure& structure) {
    fields += structure.fields.size();
    last = structure.sector;
  });
  EXPECT_EQ(cutBehind, last);
  EXPECT_GE(fields, kMostFields);
  EXPECT_LT(fields, kMostFields + u64{32} * 8);
}

TEST(GptCopies, PartitionsOutsideTheUsableSectorsAndOverEachOther) {
  Disk disk;
  PutGpt(disk, {{.first = 33, .last = 99}, {.first = 90, .last = 199}, {.first = 4000, .last = 4063}});
  const DiskMap map = SurveyOf(disk);
  ASSERT_EQ(VerdictOf(map, "GPT partitions lie in the usable sectors", 1), "bad");
  EXPECT_EQ(CheckOf(map, "GPT partitions lie in the usable sectors", 1)->found,
            "entry 1: 33 to 99; entry 3: 4000 to 4063");
  ASSERT_EQ(VerdictOf(map, "GPT partitions do not overlap", 1), "bad");
  EXPECT_EQ(CheckOf(map, "GPT partitions do not overlap", 1)->found,
            "entry 2: 90 to 199 over entry 1: 33 to 99");
}

TEST(GptCopies, ExtentsThatWrapOrReachTheLargestSector) {
  Disk disk;
  PutGpt(disk, {{.first = 200, .last = 100},
                {.first = 300, .last = ~u64{0}},
                {.first = ~u64{0}, .last = ~u64{0}},
                {.first = 0, .last = ~u64{0}}});
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)),
            (Lines{"0-18446744073709551615 GPT entry 4 overlaps beyond-end", "1-4095 MBR entry 1 container",
                   "200-100 GPT entry 1 reversed", "300-18446744073709551615 GPT entry 2 overlaps beyond-end",
                   "18446744073709551615-18446744073709551615 GPT entry 3 overlaps beyond-end"}));
}

TEST(GptCopies, TwoPartitionsOfTheSameExtent) {
  Disk disk;
  PutGpt(disk, {{.first = 100, .last = 199}, {.first = 100, .last = 199}});
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)),
            (Lines{"1-4095 MBR entry 1 container", "100-199 GPT entry 1 overlaps",
                   "100-199 GPT entry 2 overlaps"}));
}

// A protective entry that hides a partition which systems without GPT see.
TEST(GptCopies, AHybridMbr) {
  Disk disk = Sound();
  PutBootRecordBytes(disk, {.entries = {{.type = 0xEE, .first = 1, .count = 99},
                                        {.type = 0x83, .first = 100, .count = 100},
                                        {.type = 0x07, .first = 1000, .count = 100}}});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "GPT, hybrid MBR");
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"1-99 MBR entry 1 container", "100-199 MBR entry 2 hybrid", "100-199 GPT entry 1 hybrid",
                   "200-299 GPT entry 2", "1000-1099 MBR entry 3 hybrid"}));
}

TEST(GptCopies, WithoutAProtectiveEntryTheTableIsNotInUse) {
  Disk disk = Sound();
  PutBootRecordBytes(disk, {.entries = {{.type = 0x83, .first = 1000, .count = 100}}});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "protective entry covers the disk"), "missing");
  EXPECT_EQ(PartitionsOf(map),
            (Lines{"100-199 GPT entry 1 unsound", "200-299 GPT entry 2 unsound", "1000-1099 MBR entry 1"}));
}

TEST(GptCopies, NamesAreSafeToShow) {
  Disk disk;
  PutGpt(disk, {{.first = 100, .last = 199, .name = u"\u001B[2J\u202Eabc\u200F\"</script>"},
                {.first = 200, .last = 299, .name = u"\xD800x\xDC00 \xD83D\xDE00"},
                {.first = 300, .last = 399, .name = u"a\u0000b"}});
  const DiskMap map = SurveyOf(disk);
  std::vector<std::string> names;
  for (const Extent& extent : map.extents) {
    if (extent.kind != ExtentKind::kPartition || extent.name.empty()) continue;
    names.push_back(extent.name);
    EXPECT_EQ(extent.nameReplaced, extent.name != "a") << extent.name;
  }
  EXPECT_EQ(names, (Lines{"?[2J?abc?\"</script>", "?x? \xF0\x9F\x98\x80", "a"}));
}

TEST(GptCopies, ADiskOfUnknownLengthHasTheBackupThatThePrimaryNames) {
  const DiskMap map = SurveyOf({.disk = Sound(), .faults = {{.call = Call::kLength, .error = EIO}}});
  EXPECT_EQ(map.disk.sectors, 0u);
  EXPECT_EQ(VerdictOf(map, "GPT backup header CRC-32", kLast), "good");
  EXPECT_EQ(VerdictOf(map, "GPT backup header stands in the last sector"), "none");
}

TEST(GptCopies, ADiskThatClaimsTheLargestLengthEnds) {
  const DiskMap map = SurveyOf({.disk = Sound(), .faults = {{.call = Call::kLength, .amount = ~u64{0}}}});
  EXPECT_EQ(map.disk.bytes, ~u64{0});
  EXPECT_EQ(VerdictOf(map, "GPT primary header CRC-32"), "good");
}

TEST(GptCopies, DisksOfAFewSectors) {
  for (u64 sectors = 1; sectors < 6; ++sectors) {
    Disk disk = Sound();
    disk.Resize(sectors);
    EXPECT_EQ(SurveyOf(disk).disk.sectors, sectors);
  }
}

}  // namespace
}  // namespace trovisk::test
