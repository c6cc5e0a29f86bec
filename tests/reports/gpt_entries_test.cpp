// Reports of GPT partition entries, and what they register.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

std::string Nuls(std::size_t count) {
  return std::string(count, '\0');
}

std::string Repeat(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i)
    repeated += text;
  return repeated;
}

void Replace(std::string& text, const std::string& what, const std::string& with) {
  const std::size_t at = text.find(what);
  ASSERT_NE(at, std::string::npos) << what;
  text.replace(at, what.size(), with);
}

std::size_t CountOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
    ++count;
  return count;
}

// A disk with one partition, in the first slot.
Disk DiskWith(const GptEntry& entry, u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutGpt(disk, {entry});
  return disk;
}

// What a line of the first slot's report says behind its label, which ends in ": ".
std::string FirstEntrys(const std::string& label, const Disk& disk) {
  const std::string report = ReportOf(disk, 2);
  const std::size_t at = report.find("\t" + label);
  if (at == std::string::npos) return "no such line in " + report;
  const std::size_t value = report.find(": ", at) + 2;
  return report.substr(value, report.find('\n', value) - value);
}

// The rows of the table of contents from one sector to another, leaving out what the decoders of other
// structures may add elsewhere.
std::string TocBetween(const Disk& disk, u64 first, u64 last) {
  const std::string toc = TocOf(disk);
  std::string rows;
  for (std::size_t at = 0; at < toc.size();) {
    const std::size_t end = toc.find('\n', at) + 1;
    const u64 sector = std::stoull(toc.substr(at));
    if (first <= sector && sector <= last) rows += toc.substr(at, end - at);
    at = end;
  }
  return rows;
}

// The four slots of a sector: two partitions, an unused one and one whose every bit is set. No number in
// capitals was printed before, so the GUIDs are in small letters. A name shows all of its 36 units.
TEST(GptEntries, SectorWhole) {
  Disk disk;
  PutGpt(disk, {{.type = kUnlistedType,
                 .first = 2048,
                 .last = 8191,
                 .attributes = 0x8000000000000001,
                 .name = u"root"},
                {.type = kUnusedType},
                {.unique = kUnusedType}});
  disk.At(2).Fill(128, 128, 0).Fill(384, 128, 0xFF);
  std::string expected = Expected("gpt_entries.txt", disk);
  Replace(expected, "<32 NUL>", Nuls(32));
  Replace(expected, "<36 units FFFF>", Repeat("\xEF\xBF\xBF", 36));
  EXPECT_TRUE(SameText(ReportOf(disk, 2), expected));
}

// The header in front of the entries prints its checksum in capitals; every GUID behind it follows.
TEST(GptEntries, GuidsInCapitalsBehindAPrintedHeader) {
  Disk disk = DiskWith({.type = kUnlistedType});
  const Outcome outcome = RunOn(disk, {"1", "2"});
  EXPECT_EQ(CountOf(outcome.out, "\tPartition Type GUID   : { 0FC63DAF-8483-4772-8E79-3D69D8477DE4 }\n"), 1);
  EXPECT_EQ(CountOf(outcome.out, "\tPartition Unique GUID : { 0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0 }\n"), 1);
  const Outcome alone = RunOn(disk, {"2", "3"});
  EXPECT_EQ(CountOf(alone.out, "\tPartition Type GUID   : { 0fc63daf-8483-4772-8e79-3d69d8477de4 }\n"), 1);
  EXPECT_EQ(CountOf(alone.out, "\tPartition Unique GUID : { 0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0 }\n"), 1);
}

constexpr char kUnusedLines[] =
    "\tPartition Type GUID   : { 00000000-0000-0000-0000-000000000000 }\n"
    "\tPartition Type        : [ Unused Entry ]\n\n";

TEST(GptEntries, UnusedEntriesHaveTwoLinesEach) {
  Disk disk;
  PutGpt(disk);
  EXPECT_TRUE(SameText(ReportOf(disk, 33),
                       "Reading sector # 33 [GUID Partition Table End]\n\n" + Repeat(kUnusedLines, 4)));
}

// The type alone makes an entry unused, whatever else is in it.
TEST(GptEntries, EntryWithoutTypeIsUnusedWhateverItHolds) {
  Disk disk =
      DiskWith({.type = kUnusedType, .first = 100, .last = 200, .attributes = ~u64{0}, .name = u"left over"});
  EXPECT_TRUE(SameText(ReportOf(disk, 2),
                       "Reading sector # 2 [GUID Partition Table Start]\n\n" + Repeat(kUnusedLines, 4)));
  EXPECT_EQ(TocBetween(disk, 34, 4062), "");
}

TEST(GptEntries, SlotsPerSector) {
  const struct {
    u32 sectorSize;
    std::size_t slots;
  } kCases[] = {{512, 4}, {4096, 32}, {640, 5}, {639, 4}, {256, 2}, {255, 1}, {128, 1}, {127, 0}, {100, 0}};
  for (const auto& [sectorSize, slots] : kCases) {
    Disk disk(1024, sectorSize);
    PutProtectiveMbr(disk);
    PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 20});
    // In the smallest sectors the header lies where boot code would, which both passes say.
    const std::string unknown = sectorSize < 440 ? "\tUnknown Boot Loader Code\n" : "";
    EXPECT_TRUE(SameText(
        ReportOf(disk, 20, unknown),
        unknown + "Reading sector # 20 [GUID Partition Table Start]\n\n" + Repeat(kUnusedLines, slots)));
  }
}

// All 32 slots of a sector of 4096 bytes are read, and sizes count such sectors.
TEST(GptEntries, LastSlotOfA4096ByteSector) {
  Disk disk(4096, 4096);
  std::vector<GptEntry> entries(32, GptEntry{.type = kUnusedType});
  entries[31] = {.first = 256, .last = 767, .attributes = 4, .name = u"last slot"};
  PutGpt(disk, entries);
  disk.At(2).Fill(0, std::size_t{31} * 128, 0);
  EXPECT_TRUE(SameText(ReportOf(disk, 2),
                       "Reading sector # 2 [GUID Partition Table Start]\n\n" + Repeat(kUnusedLines, 31) +
                           "\tPartition Type GUID   : { 0657fd6d-a4ab-43c4-84e5-0933c84b4f4f }\n"
                           "\tPartition Type        : [ Linux : Swap Partition ]\n"
                           "\tPartition Unique GUID : { 0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0 }\n"
                           "\tStarting LBA          : 256\n"
                           "\tEnding LBA            : 767\n"
                           "\tPartition Size        : 2 (MiB)\n"
                           "\tAttributes            : \n"
                           "\tPartition Name        : [last slot" +
                           Nuls(27) + " ]\n\n"));
}

// Sectors too small for a slot hold no entry, but lead on all the same.
TEST(GptEntries, SectorsBelow128BytesLeadToTheNext) {
  for (const u32 sectorSize : {100U, 127U}) {
    Disk disk(1024, sectorSize);
    PutProtectiveMbr(disk);
    PutGptEntries(disk, 20, {{.type = kBasicDataType, .first = 200, .last = 300}});
    // 16384 bytes are 163 sectors of 100 bytes, 129 of 127.
    PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 20});
    const u64 last = sectorSize == 100 ? 182 : 148;
    EXPECT_TRUE(SameText(TocOf(disk), TocRow(0, "Master Boot Record") + TocRow(1, "Primary GPT Header") +
                                          TocRow(20, "GUID Partition Table Start") +
                                          TocRows(21, last - 1, "GUID Partition Table") +
                                          TocRow(last, "GUID Partition Table End")));
  }
}

// Slots of 128 bytes, whatever the header says: an entry of 256 bytes is read as two.
TEST(GptEntries, LargerEntriesAreReadAsSeveralSlots) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.name = u"one"}, {.name = u"two"}}, 256);
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 64, .entrySize = 256});
  const std::string report = ReportOf(disk, 2);
  const std::size_t one = report.find("[one");
  const std::size_t unused = report.find("Unused Entry", one);
  EXPECT_NE(report.find("[two", unused), std::string::npos) << report;
  EXPECT_EQ(CountOf(report, "Unused Entry"), 2);
}

// More slots than the header counts are shown: its count decides in which sector the array ends only.
TEST(GptEntries, SlotsBeyondTheEntryCountAreShown) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.name = u"one"}, {.name = u"two"}});
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 1});
  EXPECT_NE(ReportOf(disk, 2).find("[two"), std::string::npos);
}

TEST(GptEntries, Attributes) {
  const struct {
    u64 bits;
    const char* text;
  } kCases[] = {
      {0, "None"},
      {u64{1} << 63, "NO_DRIVE_LETTER "},
      {u64{1} << 62, "HIDDEN "},
      {u64{1} << 61, "SHADOW_COPY "},
      {u64{1} << 60, "READ_ONLY "},
      {u64{1} << 59, "STORAGE_DB "},
      {1, "PLATFORM_REQUIRED "},
      {u64{1} << 63 | 1, "NO_DRIVE_LETTER PLATFORM_REQUIRED "},
      {u64{1} << 59 | 1, "PLATFORM_REQUIRED STORAGE_DB "},
      {u64{1} << 62 | u64{1} << 60, "HIDDEN READ_ONLY "},
      {2, ""},
      {u64{1} << 58, ""},
      {0x07FFFFFFFFFFFFFE, ""},
      {0xF800000000000001, "NO_DRIVE_LETTER HIDDEN SHADOW_COPY READ_ONLY PLATFORM_REQUIRED STORAGE_DB "},
  };
  for (const auto& [bits, text] : kCases)
    EXPECT_EQ(FirstEntrys("Attributes", DiskWith({.attributes = bits})), text) << bits;
}

// Bytes in whole MiB, rounded down, in 64 bits that wrap.
TEST(GptEntries, PartitionSize) {
  const struct {
    u64 first;
    u64 last;
    const char* of512;
    const char* of4096;
  } kCases[] = {
      {34, 34, "0", "0"},
      {2048, 4095, "1", "8"},
      {2048, 4094, "0", "7"},
      {2048, 2303, "0", "1"},
      {0, 0xFFFFFFFF, "2097152", "16777216"},
      {100, 99, "0", "0"},
      {0, 18446744073709551615U, "0", "0"},          // 2^64 sectors
      {0, 9223372036854775807, "0", "0"},            // 2^63 sectors
      {1, 18014398509481984, "8796093022208", "0"},  // 2^54 sectors
  };
  for (const auto& [first, last, of512, of4096] : kCases) {
    const GptEntry entry{.first = first, .last = last};
    EXPECT_EQ(FirstEntrys("Starting LBA", DiskWith(entry)), std::to_string(first));
    EXPECT_EQ(FirstEntrys("Ending LBA", DiskWith(entry)), std::to_string(last));
    EXPECT_EQ(FirstEntrys("Partition Size", DiskWith(entry)), std::string(of512) + " (MiB)");
    EXPECT_EQ(FirstEntrys("Partition Size", DiskWith(entry, 4096)), std::string(of4096) + " (MiB)");
  }
}

// -49 sectors are 2^64 - 25088 bytes: one MiB short of 2^44 MiB.
TEST(GptEntries, EndBeforeStartWrapsTheSize) {
  const Disk disk = DiskWith({.first = 100, .last = 50});
  EXPECT_EQ(FirstEntrys("Partition Size", disk), "17592186044415 (MiB)");
}

TEST(GptEntries, NameThatBeginsWithNulIsNotShown) {
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = u""})), "[ ]");
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = std::u16string(u"\0behind it", 10)})), "[ ]");
}

// The field is shown to its end: not cut at a NUL, and without one if it is full.
TEST(GptEntries, NameShowsAll36Units) {
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = u"a"})), "[a" + Nuls(35) + " ]");
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = std::u16string(u"old\0name", 8)})),
            "[old" + Nuls(1) + "name" + Nuls(28) + " ]");
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"})),
            "[ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 ]");
}

TEST(GptEntries, NameOutsideAscii) {
  // Two, three and four bytes of UTF-8; 5 units of which the last two are a pair.
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = u"\u00DF\u0416\u65E5\U0001F4BE"})),
            "[\xC3\x9F\xD0\x96\xE6\x97\xA5\xF0\x9F\x92\xBE" + Nuls(31) + " ]");
}

// Half a pair, in the middle, reversed and at the field's end, where what follows belongs to another slot.
TEST(GptEntries, NameWithUnpairedSurrogates) {
  std::u16string name(36, u'x');
  name[0] = 0xD83D;
  name[2] = 0xDCBE;
  name[3] = 0xD83D;
  name[35] = 0xD83D;
  Disk disk;
  PutGpt(disk, {{.name = name}, {}});
  disk.At(2).Le16(128, 0xDCBE);
  EXPECT_EQ(FirstEntrys("Partition Name", disk), "[?x??" + std::string(31, 'x') + "? ]");
}

// A terminal is not to obey a partition's name.
TEST(GptEntries, NameWithControlCharacters) {
  const std::u16string name = {0x1B, u'[', u'2', u'J', 0x07, 0x0A, 0x7F, 0x80, 0x9B, 0x9F, 0xA0, 0x20, 0x7E};
  EXPECT_EQ(FirstEntrys("Partition Name", DiskWith({.name = name})),
            "[?[2J??????\xC2\xA0 ~" + Nuls(23) + " ]");
}

// One partition of each kind whose structures are read, in slots of two sectors.
TEST(GptEntries, EachKindRegistersItsSector) {
  Disk disk;
  PutGpt(disk, {{.type = kLdmMetadataType, .first = 100, .last = 199},
                {.type = kEfiSystemType, .first = 200, .last = 299},
                {.type = kStorageSpacesType, .first = 300, .last = 399},
                {.type = kStorageReplicaType, .first = 400, .last = 404},
                {.type = kBasicDataType, .first = 500, .last = 599},
                {.type = kRecoveryType, .first = 600, .last = 699},
                {.type = kUnlistedType, .first = 700, .last = 799},
                {.type = kLinuxSwapType, .first = 800, .last = 899}});
  const std::string toc = TocOf(disk);
  const std::string expected[] = {
      TocRow(199, "PRIVHEAD sector"),     TocRow(200, "EFI partition boot sector"),
      TocRow(300, "SPACEDB sector"),      TocRow(400, "DPOM sector") + TocRows(401, 403, "DPOD sector"),
      TocRow(500, "Generic Boot Sector"), TocRow(600, "Generic Boot Sector"),
  };
  for (const std::string& rows : expected)
    EXPECT_NE(toc.find(rows), std::string::npos) << rows << toc;
  for (const u64 none : {100U, 299U, 399U, 404U, 599U, 699U, 700U, 799U, 800U, 899U})
    EXPECT_EQ(TocBetween(disk, none, none), "") << none;
}

// An LDM metadata partition is known by its last sector.
TEST(GptEntries, LdmMetadataRegistersItsLastSector) {
  const Disk disk = DiskWith({.type = kLdmMetadataType, .first = 100, .last = 50});
  EXPECT_EQ(TocBetween(disk, 34, 4000), TocRow(50, "PRIVHEAD sector"));
}

// All 16 bytes of the type count.
TEST(GptEntries, TypeThatDiffersInOneByteIsAnother) {
  for (const std::size_t byte : {0U, 7U, 15U}) {
    Guid type = kBasicDataType;
    type.bytes[byte] ^= 1;
    const Disk disk = DiskWith({.type = type, .first = 500, .last = 599});
    EXPECT_EQ(FirstEntrys("Partition Type  ", disk), "[ unknown ]");
    EXPECT_EQ(TocBetween(disk, 34, 4062), "");
  }
}

// The first sector, and those behind it without the last.
TEST(GptEntries, StorageReplicaOfEveryLength) {
  const struct {
    u64 last;
    std::string rows;
  } kCases[] = {
      {503, TocRow(500, "DPOM sector") + TocRows(501, 502, "DPOD sector")},
      {502, TocRow(500, "DPOM sector") + TocRow(501, "DPOD sector")},
      {501, TocRow(500, "DPOM sector")},
      {500, TocRow(500, "DPOM sector")},
      {499, TocRow(500, "DPOM sector")},
      {0, TocRow(500, "DPOM sector")},
  };
  for (const auto& [last, rows] : kCases) {
    const Disk disk = DiskWith({.type = kStorageReplicaType, .first = 500, .last = last});
    EXPECT_EQ(TocBetween(disk, 34, 4062), rows) << last;
  }
}

// Sectors that are registered already are left out of the middle of it: here another partition's first one.
TEST(GptEntries, StorageReplicaAroundAnotherPartition) {
  Disk disk;
  PutGpt(disk, {{.type = kBasicDataType, .first = 502, .last = 599},
                {.type = kStorageReplicaType, .first = 500, .last = 505}});
  EXPECT_EQ(TocBetween(disk, 500, 600), TocRow(500, "DPOM sector") + TocRow(501, "DPOD sector") +
                                            TocRow(502, "Generic Boot Sector") +
                                            TocRows(503, 504, "DPOD sector"));
}

// Registered as one stretch: no time and no memory for any of its sectors.
TEST(GptEntries, StorageReplicaOf2To63Sectors) {
  const Disk disk = DiskWith({.type = kStorageReplicaType, .first = 500, .last = 9223372036854776307U});
  const Outcome outcome = RunOnWithinLimits(disk, {"2"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("\tEnding LBA            : 9223372036854776307\n"), std::string::npos);
  const Outcome inside = RunOnWithinLimits(disk, {"500"});
  EXPECT_NE(inside.out.find("\nReading sector # 500 [DPOM sector]\n"), std::string::npos) << inside.out;
}

// From one end of all sector numbers to the other, in every slot of the array.
TEST(GptEntries, EverySlotClaimsTheWholeDisk) {
  Disk disk;
  std::vector<GptEntry> entries;
  for (u64 i = 0; i < 128; ++i)
    entries.push_back({.type = kStorageReplicaType, .first = 34 + i, .last = ~u64{0} - i});
  PutGpt(disk, entries);
  const Outcome outcome = RunOnWithinLimits(disk, {"33"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(CountOf(outcome.out, "Microsoft Storage Replication Db"), 4);
}

// The sector behind its first one is sector 0: numbers wrap.
TEST(GptEntries, StorageReplicaThatStartsInTheLastSectorThereIs) {
  const Disk disk = DiskWith({.type = kStorageReplicaType, .first = ~u64{0}, .last = 36});
  EXPECT_EQ(TocBetween(disk, 0, 40),
            TocRow(0, "Master Boot Record") + TocRow(1, "Primary GPT Header") +
                TocRow(2, "GUID Partition Table Start") + TocRows(3, 32, "DPOD sector") +
                TocRow(33, "GUID Partition Table End") + TocRows(34, 35, "DPOD sector"));
}

// Beyond the end of the disk: registered as found.
TEST(GptEntries, PartitionsBeyondTheDisk) {
  Disk disk;
  PutGpt(disk, {{.type = kBasicDataType, .first = 1000000, .last = 2000000},
                {.type = kRecoveryType, .first = ~u64{0}, .last = ~u64{0}}});
  const std::string toc = TocOf(disk);
  EXPECT_TRUE(toc.ends_with(TocRow(1000000, "Generic Boot Sector") + TocRow(~u64{0}, "Generic Boot Sector")))
      << toc;
}

// A partition that begins inside the array takes its sector, which then leads to no successor.
TEST(GptEntries, PartitionInsideTheArrayBreaksIt) {
  const Disk disk = DiskWith({.type = kLdmMetadataType, .first = 34, .last = 20});
  EXPECT_EQ(TocBetween(disk, 2, 40),
            TocRow(2, "GUID Partition Table Start") + TocRows(3, 19, "GUID Partition Table") +
                TocRow(20, "PRIVHEAD sector") + TocRow(33, "GUID Partition Table End"));
}

// Partitions over what is registered already change nothing.
TEST(GptEntries, PartitionsOverTheTableItself) {
  Disk disk;
  PutGpt(disk, {{.type = kBasicDataType, .first = 0, .last = 99},
                {.type = kRecoveryType, .first = 1, .last = 99},
                {.type = kEfiSystemType, .first = 2, .last = 99},
                {.type = kStorageSpacesType, .first = 33, .last = 99},
                {.type = kBasicDataType, .first = 4095, .last = 99}});
  EXPECT_EQ(TocBetween(disk, 0, 4095),
            TocRow(0, "Master Boot Record") + TocRow(1, "Primary GPT Header") +
                TocRow(2, "GUID Partition Table Start") + TocRows(3, 32, "GUID Partition Table") +
                TocRow(33, "GUID Partition Table End") + TocRow(4063, "GUID Partition Table Start") +
                TocRow(4094, "GUID Partition Table End") + TocRow(4095, "Backup GPT Header"));
}

// The sectors of the backup's array between its first and its last are known to nobody: it lies in front of
// the header that names it. Its first sector leads on in a printing pass only if the array ends beyond it.
TEST(GptEntries, BackupArrayIsPrintedAtBothEnds) {
  Disk disk = DiskWith({.name = u"backed up"});
  const std::string report = ReportOf(disk, 4063);
  EXPECT_TRUE(
      report.starts_with("Reading sector # 4063 [GUID Partition Table Start]\n\n"
                         "\tPartition Type GUID   : { 0657fd6d-a4ab-43c4-84e5-0933c84b4f4f }\n"))
      << report;
  EXPECT_EQ(TocBetween(disk, 4064, 4093), "");
}

// A sector of the array that cannot be read ends the pass; its header line stands all the same.
TEST(GptEntries, UnreadableSector) {
  Disk disk(64);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 63, .entryCount = 8});
  const Outcome outcome = RunOn(disk, {"-1", "-1"});
  const std::string failure = ReadBehindTheEnd(512) + "Error reading sector\n";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, failure + failure);
  EXPECT_NE(outcome.out.find("\nReading sector # 64 [GUID Partition Table End]\n\n\n\tTable Of Contents\n"),
            std::string::npos)
      << outcome.out;
}

}  // namespace
}  // namespace trovisk::test
