// The map as text. Expected texts are written by hand.

#include "map/text_map.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "map/disk_bar.h"
#include "map/display_width.h"
#include "map/text_layout.h"

namespace trovisk::test {
namespace {

// 100 sectors: a table, two partitions with a volume in the second one, and what is left.
DiskMap SmallMap() {
  DiskMap map;
  map.disk = {.path = "disk.img",
              .sectorSize = 512,
              .sectors = 100,
              .bytes = 51200,
              .scheme = "MBR",
              .id = "0x1234ABCD"};
  map.extents = {
      {.kind = ExtentKind::kStructure, .typeName = "master boot record", .source = "sector 0"},
      {.first = 1, .last = 9, .kind = ExtentKind::kGap},
      {.first = 10,
       .last = 29,
       .kind = ExtentKind::kPartition,
       .flags = kFlagActive,
       .type = "0x0C",
       .typeName = "FAT32",
       .source = "MBR entry 1",
       .number = 1},
      {.first = 30,
       .last = 89,
       .kind = ExtentKind::kPartition,
       .type = "0x07",
       .typeName = "NTFS",
       .source = "MBR entry 2",
       .number = 2},
      {.first = 30,
       .last = 89,
       .kind = ExtentKind::kVolume,
       .typeName = "NTFS",
       .name = "Data",
       .source = "NTFS boot sector",
       .depth = 1},
      {.first = 90, .last = 99, .kind = ExtentKind::kGap},
  };
  map.checks = {{.name = "end mark", .verdict = Verdict::kGood, .found = "0xAA55", .expected = "0xAA55"}};
  return map;
}

TextStyle Person(std::size_t width) {
  return {.forPerson = true, .width = width, .colours = false, .utf8 = false};
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end - at));
    at = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

std::size_t WidestLine(const std::string& text) {
  std::size_t widest = 0;
  for (const std::string& line : LinesOf(text))
    widest = std::max(widest, DisplayWidth(line));
  return widest;
}

std::string Repeated(std::string_view text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i)
    all += text;
  return all;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(TextMap, AtEightyColumnsLeavesTheSourceOut) {
  EXPECT_EQ(MapAsText(SmallMap(), Person(80)), R"(disk.img, 50.0 KiB in 100 sectors of 512 bytes, MBR

[........AAAAAAAAAAAAAAABBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBBB........]
         A FAT32        B NTFS

  first  last      size  kind       type                name  flags
      0     0     512 B  structure  master boot record
      1     9   4.5 KiB  gap
A    10    29  10.0 KiB  partition  0x0C FAT32                active
B    30    89  30.0 KiB  partition  0x07 NTFS
     30    89  30.0 KiB   volume    NTFS                Data
     90    99   5.0 KiB  gap

Checks: 1 good.

Nothing wrong was found.
)");
}

TEST(TextMap, AtFortyColumnsPutsTextsBelowTheNumbers) {
  EXPECT_EQ(MapAsText(SmallMap(), Person(40)), R"(disk.img, 50.0 KiB in 100 sectors of 512
  bytes, MBR

[....AAAAAAABBBBBBBBBBBBBBBBBBBBBBB....]
     A      B NTFS

  first  last      size
      0     0     512 B
    structure, master boot record,
    sector 0
      1     9   4.5 KiB
    gap
A    10    29  10.0 KiB
    partition, 0x0C FAT32, MBR entry 1
    (active)
B    30    89  30.0 KiB
    partition, 0x07 NTFS, MBR entry 2
     30    89  30.0 KiB
     volume, NTFS, Data, NTFS boot
     sector
     90    99   5.0 KiB
    gap

Checks: 1 good.

Nothing wrong was found.
)");
}

// Eighty-six columns would do for all: five less are what the source can spare. It goes on where there are no
// flags.
TEST(TextMap, CutsTheSourceFirst) {
  DiskMap flagged = SmallMap();
  flagged.extents[4].flags = kFlagActive;
  EXPECT_TRUE(
      Has(TableOfExtents(flagged, Person(81)), "    NTFS                Data  NTFS boo...  active\n"));
  const std::string table = TableOfExtents(SmallMap(), Person(81));
  EXPECT_TRUE(Has(table, "    NTFS                Data  NTFS boot sector\n")) << table;
  EXPECT_TRUE(Has(table, "                MBR entry 1  active\n"));
  EXPECT_FALSE(Has(TableOfExtents(SmallMap(), Person(80)), "source"));
}

// Sixty-eight columns would do without the source, sixty-six with a type that is a little shorter.
TEST(TextMap, PutsFlagsBelowTheirRowBeforeTextsBecomeShort) {
  const std::string narrow = TableOfExtents(SmallMap(), Person(66));
  EXPECT_TRUE(Has(narrow, "  kind       type              name  flags\n")) << narrow;
  EXPECT_TRUE(Has(narrow, "  structure  master boot record\n")) << narrow;
  DiskMap named = SmallMap();
  named.extents[0].name = "x";
  EXPECT_TRUE(Has(TableOfExtents(named, Person(66)), "  structure  master boot r...  x\n"));
  EXPECT_EQ(TableOfExtents(SmallMap(), Person(65)),
            R"(  first  last      size  kind       type                name
      0     0     512 B  structure  master boot record
      1     9   4.5 KiB  gap
A    10    29  10.0 KiB  partition  0x0C FAT32
    active
B    30    89  30.0 KiB  partition  0x07 NTFS
     30    89  30.0 KiB   volume    NTFS                Data
     90    99   5.0 KiB  gap
)");
}

TEST(TextMap, AtTwoHundredColumnsCutsNothing) {
  TextStyle style = Person(200);
  style.utf8 = true;
  EXPECT_EQ(MapAsText(SmallMap(), style),
            "disk.img, 50.0 KiB in 100 sectors of 512 bytes, MBR\n\n\u2595" + Repeated("\u00B7", 20) +
                Repeated("\u2588", 39) + Repeated("\u2592", 119) + Repeated("\u00B7", 20) + "\u258F\n" +
                std::string(21, ' ') + "A FAT32" + std::string(32, ' ') + R"(B NTFS

  first  last      size  kind       type                name  source            flags
      0     0     512 B  structure  master boot record        sector 0
      1     9   4.5 KiB  gap
A    10    29  10.0 KiB  partition  0x0C FAT32                MBR entry 1       active
B    30    89  30.0 KiB  partition  0x07 NTFS                 MBR entry 2
     30    89  30.0 KiB   volume    NTFS                Data  NTFS boot sector
     90    99   5.0 KiB  gap

Checks: 1 good.

Nothing wrong was found.
)");
}

TEST(TextMap, NumbersOfTheLargestDiskAreNeverCut) {
  DiskMap map;
  map.disk = {.path = "d", .sectorSize = 512, .sectors = ~u64{0} / 512, .scheme = "GPT"};
  map.extents = {{.first = 36028797018963900,
                  .last = 36028797018963966,
                  .kind = ExtentKind::kPartition,
                  .flags = kFlagOverlaps | kFlagBeyondEnd | kFlagCopyDiffers,
                  .typeName = "Basic data partition",
                  .name = "A name that is long",
                  .source = "GPT entry 128"}};
  for (const std::size_t width : {20U, 40U, 60U, 80U, 100U}) {
    const std::string text = MapAsText(map, Person(width));
    EXPECT_TRUE(Has(text, "36028797018963900  36028797018963966  33.5 KiB")) << text;
    EXPECT_TRUE(Has(text, "overlaps")) << text;
  }
  EXPECT_LE(WidestLine(MapAsText(map, Person(60))), 60U);
}

// Four characters of two columns, one of which has an accent of none: no line is wider than the terminal, and
// the columns behind the names stand below one another.
TEST(TextMap, WideCharactersTakeTwoColumns) {
  DiskMap map = SmallMap();
  map.extents[4].name = "\u65E5\u672C\u8A9E";
  map.extents[3].name = "e\u0301t\u00E9";
  TextStyle style = Person(200);
  style.utf8 = true;
  const std::string table = TableOfExtents(map, style);
  EXPECT_TRUE(Has(table, "0x07 NTFS           e\u0301t\u00E9     MBR entry 2\n")) << table;
  EXPECT_TRUE(Has(table, "NTFS                \u65E5\u672C\u8A9E  NTFS boot sector\n")) << table;
}

TEST(TextMap, LongNamesEndInAnEllipsisBetweenTwoCharacters) {
  EXPECT_EQ(CutToWidth("\u65E5\u672C\u8A9E", 6, true), "\u65E5\u672C\u8A9E");
  EXPECT_EQ(CutToWidth("\u65E5\u672C\u8A9E", 5, true), "\u65E5\u672C\u2026");
  EXPECT_EQ(CutToWidth("\u65E5\u672C\u8A9E", 4, true), "\u65E5\u2026");
  EXPECT_EQ(CutToWidth("abcdef", 5, false), "ab...");
  EXPECT_EQ(CutToWidth("abcdef", 2, false), "..");
  EXPECT_EQ(CutToWidth("abcdef", 0, true), "");
  EXPECT_EQ(CutToWidth("e\u0301e\u0301e\u0301", 2, true), "e\u0301\u2026");

  DiskMap map = SmallMap();
  map.extents[4].name = Repeated("\u65E5", 500);
  for (const std::size_t width : {40U, 80U, 200U}) {
    TextStyle style = Person(width);
    style.utf8 = true;
    EXPECT_LE(WidestLine(MapAsText(map, style)), width);
  }
}

TEST(TextMap, BytesThatAreNoUtf8TakeAColumnEach) {
  EXPECT_EQ(DisplayWidth("\xFF\xC3(\xE6\x97"), 5U);
  EXPECT_EQ(DisplayWidth("\xF4\x90\x80\x80"), 4U);  // beyond the last character
  EXPECT_EQ(DisplayWidth("\xC0\x80"), 2U);          // longer than it has to be
}

TEST(TextMap, ColoursAreOnlyAroundWhatIsThereWithoutThem) {
  DiskMap map = SmallMap();
  map.checks.push_back(
      {.sector = 9, .name = "copy", .verdict = Verdict::kBad, .found = "1", .expected = "2"});
  TextStyle style = Person(80);
  const std::string plain = MapAsText(map, style);
  style.colours = true;
  std::string coloured = MapAsText(map, style);
  EXPECT_TRUE(Has(coloured, "\x1b[1;31mbad\x1b[0m  sector 9: copy\n")) << coloured;
  for (std::size_t at = coloured.find('\x1b'); at != std::string::npos; at = coloured.find('\x1b'))
    coloured.erase(at, coloured.find('m', at) + 1 - at);
  EXPECT_EQ(coloured, plain);
}

TEST(TextMap, WhatIsWrongComesBeforeWhatIsGoodOrNotChecked) {
  DiskMap map = SmallMap();
  map.checks = {
      {.sector = 1, .name = "first", .verdict = Verdict::kGood, .found = "1", .expected = "1"},
      {.sector = 2, .name = "second", .verdict = Verdict::kNotChecked, .expected = "no partition says"},
      {.sector = 3, .name = "third", .verdict = Verdict::kMissing, .expected = "EFI PART"},
      {.sector = 4, .name = "fourth", .verdict = Verdict::kBad, .found = "0x1", .expected = "0x2"},
  };
  EXPECT_EQ(ChecksForPerson(map, Person(80)), R"(Checks: 1 bad, 1 missing, 1 not checked, 1 good.
  missing  sector 3: third
    expected EFI PART
  bad  sector 4: fourth
    found 0x1, expected 0x2
  not checked  sector 2: second
    no partition says
)");
  TextStyle all = Person(80);
  all.all = true;
  EXPECT_TRUE(Has(ChecksForPerson(map, all), "  good  sector 1: first\n"));
  EXPECT_EQ(VerdictInWords(map), "Something is wrong: 2 checks are bad or missing.");
  map.extents[1].flags = kFlagOverlaps;
  EXPECT_EQ(VerdictInWords(map), "Something is wrong: 2 checks are bad or missing, 1 extent is flagged.");
  map.checks.clear();
  EXPECT_EQ(VerdictInWords(map), "Something is wrong: 1 extent is flagged.");
}

TEST(DiskBar, GivesTheSmallestPartitionAColumn) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = u64{1} << 35};
  map.extents = {
      {.first = 40, .last = 40, .kind = ExtentKind::kPartition, .name = "one"},
      {.first = 41, .last = (u64{1} << 35) - 1, .kind = ExtentKind::kPartition, .name = "two"},
  };
  EXPECT_EQ(DiskBar(map, Person(22)), "[ABBBBBBBBBBBBBBBBBBB]\n AB two\n");
}

TEST(DiskBar, ANameWithoutWidthNeedsRoomAllTheSame) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = u64{1} << 35};
  map.extents = {
      {.first = 40, .last = 40, .kind = ExtentKind::kPartition, .name = "\u0300"},
      {.first = 41, .last = (u64{1} << 35) - 1, .kind = ExtentKind::kPartition, .name = "two"},
  };
  EXPECT_EQ(DiskBar(map, Person(22)), "[ABBBBBBBBBBBBBBBBBBB]\n AB two\n");
}

TEST(DiskBar, ShowsPartitionsOfTheSameSectorsOnce) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = 20};
  map.extents = {
      {.first = 0, .last = 19, .kind = ExtentKind::kPartition, .flags = kFlagContainer},
      {.first = 5, .last = 9, .kind = ExtentKind::kPartition, .flags = kFlagHybrid},
      {.first = 5, .last = 9, .kind = ExtentKind::kPartition, .flags = kFlagHybrid},
      {.first = 8, .last = 14, .kind = ExtentKind::kLogical, .flags = kFlagOverlaps},
      {.first = 12, .last = 3, .kind = ExtentKind::kPartition, .flags = kFlagReversed},
      {.first = 40, .last = 60, .kind = ExtentKind::kPartition, .flags = kFlagBeyondEnd},
  };
  EXPECT_EQ(DiskBar(map, Person(22)), "[.....AAAAABBBBB.....]\n      A    B\n");
  using Numbers = std::vector<std::optional<std::size_t>>;
  EXPECT_EQ(NumbersInBar(map), (Numbers{{}, 0, 0, 1, {}, {}}));
}

TEST(DiskBar, MarksColumnsThatSeveralPartitionsShare) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = 80};
  for (u64 i = 0; i < 15; ++i)
    map.extents.push_back({.first = 4 * i, .last = 4 * i + 3, .kind = ExtentKind::kPartition});
  // Ten columns of eight sectors: two partitions each, one in the eighth, none behind it.
  EXPECT_EQ(DiskBar(map, Person(12)), "[+++++++O..]\n");
}

TEST(DiskBar, ShowsAVolumeOnTheBareDisk) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = 10};
  map.extents = {{.first = 0, .last = 9, .kind = ExtentKind::kVolume, .typeName = "exFAT"},
                 {.first = 0, .last = 1, .kind = ExtentKind::kArea, .typeName = "boot region", .depth = 1}};
  EXPECT_EQ(DiskBar(map, Person(12)), "[AAAAAAAAAA]\n A exFAT\n");
}

TEST(DiskBar, IsNotThereWhereTheDiskHasNoLength) {
  DiskMap map = SmallMap();
  map.disk.sectors = 0;
  EXPECT_EQ(DiskBar(map, Person(80)), "");
  EXPECT_TRUE(MapAsText(map, Person(80)).starts_with("disk.img, sectors of 512 bytes, MBR\n\nfirst"));
}

TEST(TextMap, FoldsAreasOfALongMapButNotThoseThatAreWrong) {
  DiskMap map;
  map.disk = {.sectorSize = 512, .sectors = 1000};
  for (u64 i = 0; i < 120; ++i) {
    map.extents.push_back({.first = 2 * i, .last = 2 * i, .kind = ExtentKind::kArea, .typeName = "log"});
    if (i == 60) map.extents.back().flags = kFlagDamaged;
  }
  EXPECT_EQ(TableOfExtents(map, Person(80)), R"(first  last   size  kind  type      name              flags
    0   118         area  60 areas  --all shows them
  120   120  512 B  area  log                         damaged
  122   238         area  59 areas  --all shows them
)");
  TextStyle all = Person(80);
  all.all = true;
  EXPECT_EQ(LinesOf(TableOfExtents(map, all)).size(), 121U);
}

TEST(TextMap, IsBoundedForAPersonWhateverTheDiskHolds) {
  DiskMap map;
  map.disk = {.path = "d", .sectorSize = 512, .sectors = 1U << 20};
  for (u64 i = 0; i < 1U << 16; ++i) {
    map.extents.push_back({.first = 2 * i, .last = 2 * i, .kind = ExtentKind::kPartition});
    map.checks.push_back({.sector = i, .name = "c", .verdict = Verdict::kBad});
  }
  const std::string text = MapAsText(map, Person(80));
  EXPECT_LT(LinesOf(text).size(), 1300U);
  EXPECT_TRUE(Has(text, "64536 more  --all shows them\n")) << text.substr(0, 2000);
  EXPECT_TRUE(Has(text, "\n  65336 more; --all shows them.\n"));
  EXPECT_TRUE(Has(text, "131070  131070"));  // the last one
  EXPECT_EQ(LinesOf(MapAsText(map, {})).size(), 2 * (std::size_t{1} << 16) + 7);
}

DynamicDisk TwoDisks() {
  DynamicDisk dynamic;
  dynamic.groupName = "Group";
  dynamic.groupGuid = "11111111-2222-3333-4444-555555555555";
  dynamic.disks = {{.name = "Disk1", .thisDisk = true}, {.name = "Disk2", .device = "/dev/old"}};
  DynamicComponent component{.name = "Volume1-01", .type = "striped", .state = "active", .stripeSize = 128};
  component.columns = 2;
  component.partitions = {{.name = "Disk1-01",
                           .disk = "Disk1",
                           .onThisDisk = true,
                           .start = 0,
                           .absoluteStart = 63,
                           .size = 2048},
                          {.name = "Disk2-01", .disk = "Disk2", .start = 10, .size = 2048, .column = 1}};
  dynamic.volumes = {{.name = "Volume1",
                      .type = "striped",
                      .state = "ACTIVE",
                      .size = 4096,
                      .hint = "E:",
                      .components = {component}}};
  dynamic.orphans = {{.name = "Disk1-02", .onThisDisk = true, .absoluteStart = 5000, .size = 1}};
  dynamic.remarks = {"A remark."};
  return dynamic;
}

TEST(TextMap, AVolumeOfADynamicDiskIsALineWithItsPartsBelow) {
  DiskMap map = SmallMap();
  map.dynamicDisk = TwoDisks();
  EXPECT_EQ(JoinedViews(map, Person(80)),
            R"(Dynamic disk of the group Group, {11111111-2222-3333-4444-555555555555}
  disk Disk1, this one
  disk Disk2, last known as /dev/old
  Volume1, striped, 2.0 MiB, ACTIVE, E:
    Volume1-01, striped, 2 columns, stripes of 64.0 KiB, active
      column 0: Disk1-01, 1.0 MiB, on Disk1 (this disk, from sector 63)
      column 1: Disk2-01, 1.0 MiB, on Disk2 from sector 10 of its data
  without a volume: Disk1-02, 512 B, on an unknown disk (this disk, from sector
    5000)
  A remark.
)");
}

TEST(TextMap, AStoragePoolIsALineWithItsObjectsBelow) {
  DiskMap map = SmallMap();
  map.storageSpaces = StorageSpaces{};
  map.storageSpaces->sector = 2048;
  map.storageSpaces->poolName = "Pool";
  map.storageSpaces->diskGuid = "aa";
  map.storageSpaces->objects = {{.id = 7, .kind = "space", .name = "Films", .guid = "bb", .parts = 1}};
  EXPECT_EQ(JoinedViews(map, Person(80)), R"(Storage pool Pool, its database in sector 2048
  disk {aa}, this one
  space 7: Films, {bb}, 1 record
)");
}

TEST(TextMap, InAPipeIsOneRecordALine) {
  DiskMap map = SmallMap();
  map.disk.path = "a\tb\n.img";
  map.structures = 3;
  map.extents.resize(3);
  map.extents[1].flags = kFlagReversed | kFlagOverlaps;
  map.checks.push_back({.sector = 99, .name = "copy", .verdict = Verdict::kNotChecked});
  map.cut = {"Much was left out."};
  EXPECT_EQ(MapAsText(map, {}),
            "#disk\tpath\tsector_size\tsectors\tbytes\tscheme\tid\tstructures\tinvalid\n"
            "disk\ta?b?.img\t512\t100\t51200\tMBR\t0x1234ABCD\t3\t0\n"
            "#extent\tfirst\tlast\tsectors\tkind\ttype\ttype_name\tname\tsource\tflags\tdepth\tnumber\tid\t"
            "attributes\n"
            "extent\t0\t0\t1\tstructure\t-\tmaster boot record\t-\tsector 0\t-\t0\t-\t-\t0\n"
            "extent\t1\t9\t-\tgap\t-\t-\t-\t-\toverlaps,reversed\t0\t-\t-\t0\n"
            "extent\t10\t29\t20\tpartition\t0x0C\tFAT32\t-\tMBR entry 1\tactive\t0\t1\t-\t0\n"
            "#check\tsector\tverdict\tcheck\tfound\texpected\n"
            "check\t0\tgood\tend mark\t0xAA55\t0xAA55\n"
            "check\t99\tnot checked\tcopy\t-\t-\n"
            "#remark\tpart\tsentence\n"
            "remark\tcut\tMuch was left out.\n"
            "#verdict\tstatus\tsentence\n"
            "verdict\t2\tSomething is wrong: 1 extent is flagged.\n");
}

TEST(TextMap, ANameThatIsAHyphenIsNoMissingName) {
  DiskMap map;
  map.extents = {{.kind = ExtentKind::kPartition, .name = "-"}};
  EXPECT_TRUE(Has(MapAsText(map, {}), "\tpartition\t-\t-\t\"-\"\t-\t")) << MapAsText(map, {});
}

// Every record has the columns that the line above says; so has every other kind of record.
TEST(TextMap, RecordsHaveTheColumnsThatTheirHeadingNames) {
  DiskMap map = SmallMap();
  map.dynamicDisk = TwoDisks();
  map.storageSpaces = StorageSpaces{};
  map.storageSpaces->objects = {{.id = 7, .kind = "space"}};
  std::vector<std::pair<std::string, std::ptrdiff_t>> headings;
  std::size_t records = 0;
  for (const std::string& line : LinesOf(MapAsText(map, {}))) {
    const std::ptrdiff_t tabs = std::count(line.begin(), line.end(), '\t');
    const std::string name = line.substr(0, line.find('\t'));
    if (name.starts_with('#')) {
      headings.emplace_back(name.substr(1), tabs);
      continue;
    }
    ++records;
    EXPECT_EQ(std::count(headings.begin(), headings.end(), std::pair(name, tabs)), 1) << line;
    EXPECT_FALSE(Has(line, "\t\t")) << line;
  }
  EXPECT_EQ(headings.size(), 12U);
  EXPECT_EQ(records, 20U);
}

TEST(TextLayout, WrapsAtBlanksAndWithinWordsThatAreLongerThanALine) {
  EXPECT_EQ(Wrap("- ", 2, "one two three", 9), "- one two\n  three\n");
  EXPECT_EQ(Wrap("", 2, "abcdefghij kl", 6), "abcdef\n  ghij\n  kl\n");
  EXPECT_EQ(Wrap("", 1, "\u65E5\u672C\u8A9E", 3), "\u65E5\n \u672C\n \u8A9E\n");
  EXPECT_EQ(Wrap("", 4, "ab", 1), "a\n    b\n");  // no room at all: a character a line
  EXPECT_EQ(Wrap("x", 4, "", 10), "x\n");
}

}  // namespace
}  // namespace trovisk::test
