// Comparing two maps: each kind of difference, and documents that mean harm.

#include "map/compare.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "map/byte_differences.h"
#include "map/differences.h"
#include "map/document.h"
#include "map/saved_map.h"
#include "tests/map/written.h"

namespace trovisk::test {
namespace {

struct Side {
  DiskMap map;
  std::vector<Structure> structures = {};
};

std::optional<Document> Parsed(const std::string& text, std::string& complaint) {
  std::istringstream stream(text);
  return ParseDocument(stream, complaint);
}

// The lines of the comparison of two maps that went through JSON.
std::string Differences(const Side& before, const Side& after) {
  std::string complaint;
  const auto first = Parsed(Written(before.map, before.structures), complaint);
  const auto second = Parsed(Written(after.map, after.structures), complaint);
  if (!first || !second) return "no document: " + complaint;
  std::string text;
  u64 lines = 0;
  const u64 count = WriteDifferences(*first, *second, [&](std::string_view line) {
    text += line;
    ++lines;
  });
  EXPECT_EQ(std::min<u64>(count, 10001), lines);  // one line says how many are left out
  return text;
}

std::string ComplaintAbout(const std::string& text) {
  std::string complaint;
  EXPECT_FALSE(Parsed(text, complaint).has_value()) << text.substr(0, 80);
  return complaint;
}

Extent Partition(u64 first, u64 last, const std::string& name, const std::string& id) {
  return {.first = first,
          .last = last,
          .kind = ExtentKind::kPartition,
          .type = "0fc6",
          .typeName = "Linux",
          .name = name,
          .source = "GPT entry 1",
          .id = id,
          .number = 1};
}

Side WithExtents(const std::vector<Extent>& extents) {
  Side side;
  side.map.extents = extents;
  return side;
}

Side WithChecks(const std::vector<Check>& checks) {
  Side side;
  side.map.checks = checks;
  return side;
}

Structure Header(u64 sector, const std::vector<u8>& bytes) {
  Structure structure;
  structure.sector = sector;
  structure.title = "Primary GPT Header";
  structure.structure = "gpt_header";
  structure.bytes = bytes;
  return structure;
}

TEST(CompareExtents, EqualMapsHaveNoDifference) {
  const Side side = WithExtents({Partition(34, 99, "data", "a-b")});
  EXPECT_EQ(Differences(side, side), "");
}

TEST(CompareExtents, AddedAndRemoved) {
  const Side one = WithExtents({Partition(34, 99, "", "")});
  EXPECT_EQ(Differences({}, one), "added: partition 34-99 Linux (GPT entry 1)\n");
  EXPECT_EQ(Differences(one, {}), "removed: partition 34-99 Linux (GPT entry 1)\n");
}

TEST(CompareExtents, SameIdElsewhereHasMoved) {
  EXPECT_EQ(Differences(WithExtents({Partition(34, 99, "data", "a-b")}),
                        WithExtents({Partition(134, 199, "data", "a-b")})),
            "moved: partition 34-99 Linux, data (GPT entry 1) -> 134-199\n");
}

TEST(CompareExtents, SameNameAndSizeElsewhereHasMoved) {
  Extent there = Partition(134, 199, "data", "");
  there.source = "GPT entry 7";
  there.number = 7;
  EXPECT_EQ(Differences(WithExtents({Partition(34, 99, "data", "")}), WithExtents({there})),
            "moved: partition 34-99 Linux, data (GPT entry 1) -> 134-199\n"
            "changed: partition 34-99 Linux, data (GPT entry 1): source: GPT entry 1 -> GPT entry 7\n"
            "changed: partition 34-99 Linux, data (GPT entry 1): number: 1 -> 7\n");
}

TEST(CompareExtents, SameIdOfAnotherSizeHasChanged) {
  EXPECT_EQ(Differences(WithExtents({Partition(34, 99, "data", "a-b")}),
                        WithExtents({Partition(35, 199, "data", "a-b")})),
            "changed: partition 34-99 Linux, data (GPT entry 1): first: 34 -> 35\n"
            "changed: partition 34-99 Linux, data (GPT entry 1): last: 99 -> 199\n");
}

// A partition is who it is, not where it stands in the table.
TEST(CompareExtents, TwoThatChangePlacesHaveMoved) {
  EXPECT_EQ(Differences(WithExtents({Partition(10, 19, "", "a-a"), Partition(20, 29, "", "b-b")}),
                        WithExtents({Partition(10, 19, "", "b-b"), Partition(20, 29, "", "a-a")})),
            "moved: partition 10-19 Linux (GPT entry 1) -> 20-29\n"
            "moved: partition 20-29 Linux (GPT entry 1) -> 10-19\n");
}

// With two copies of a table that contradict each other, the one that says the same as before is the same.
TEST(CompareExtents, CopyThatHasChangedIsAdded) {
  Extent primary = Partition(34, 99, "changed", "a-b");
  primary.source = "GPT primary entry 1";
  Extent backup = Partition(34, 99, "data", "a-b");
  backup.source = "GPT backup entry 1";
  EXPECT_EQ(Differences(WithExtents({Partition(34, 99, "data", "a-b")}), WithExtents({primary, backup})),
            "changed: partition 34-99 Linux, data (GPT entry 1): source: GPT entry 1 -> GPT backup entry 1\n"
            "added: partition 34-99 Linux, changed (GPT primary entry 1)\n");
}

TEST(CompareExtents, EachFieldOfItsOwn) {
  Extent before = Partition(34, 99, "old", "a-b");
  before.flags = kFlagActive;
  Extent after = Partition(34, 99, "", "a-c");
  after.type = "ebd0";
  after.typeName = "Basic data";
  after.flags = kFlagActive | kFlagOverlaps;
  after.attributes = ~u64{0};
  const std::string title = "changed: partition 34-99 Linux, old (GPT entry 1): ";
  EXPECT_EQ(Differences(WithExtents({before}), WithExtents({after})),
            title + "type: 0fc6 -> ebd0\n" + title + "type_name: Linux -> Basic data\n" + title +
                "name: old -> \"\"\n" + title + "flags: active -> active,overlaps\n" + title +
                "id: a-b -> a-c\n" + title + "attributes: 0 -> 18446744073709551615\n");
}

TEST(CompareExtents, ReusedEntryHasChanged) {
  EXPECT_EQ(
      Differences(WithExtents({Partition(10, 19, "", "a-a")}), WithExtents({Partition(30, 59, "", "b-b")})),
      "changed: partition 10-19 Linux (GPT entry 1): first: 10 -> 30\n"
      "changed: partition 10-19 Linux (GPT entry 1): last: 19 -> 59\n"
      "changed: partition 10-19 Linux (GPT entry 1): id: a-a -> b-b\n");
}

TEST(CompareExtents, OneOfTwoEqualOnesIsAdded) {
  const Extent twin = Partition(34, 99, "", "a-b");
  EXPECT_EQ(Differences(WithExtents({twin}), WithExtents({twin, twin})),
            "added: partition 34-99 Linux (GPT entry 1)\n");
}

TEST(CompareExtents, GapsAndDepthFollowFromTheRest) {
  Extent deeper = Partition(34, 99, "", "");
  deeper.depth = 3;
  EXPECT_EQ(Differences(WithExtents({Partition(34, 99, "", ""), {.first = 100, .last = 200}}),
                        WithExtents({deeper})),
            "");
}

TEST(CompareExtents, ReformattedVolumeHasChanged) {
  Extent ntfs = {
      .first = 10, .last = 99, .kind = ExtentKind::kVolume, .typeName = "NTFS", .source = "boot sector"};
  Extent ext4 = ntfs;
  ext4.typeName = "ext4";
  EXPECT_EQ(Differences(WithExtents({ntfs}), WithExtents({ext4})),
            "changed: volume 10-99 NTFS (boot sector): type_name: NTFS -> ext4\n");
}

TEST(CompareChecks, VerdictThatTurned) {
  EXPECT_EQ(Differences(WithChecks({{1, "GPT header CRC-32", Verdict::kGood, "0x12345678", "0x12345678"}}),
                        WithChecks({{1, "GPT header CRC-32", Verdict::kBad, "0x00000001", "0x12345678"}})),
            "turned: check GPT header CRC-32 in sector 1: good -> bad; found 0x12345678 -> 0x00000001; "
            "expected 0x12345678\n");
}

TEST(CompareChecks, VerdictThatStaysWithAnotherFinding) {
  EXPECT_EQ(Differences(WithChecks({{1, "end mark", Verdict::kBad, "0", "1"}}),
                        WithChecks({{1, "end mark", Verdict::kBad, "2", "1"}})),
            "changed: check end mark in sector 1: found: 0 -> 2\n");
}

TEST(CompareChecks, MovesWithItsStructure) {
  EXPECT_EQ(Differences(WithChecks({{1, "end mark", Verdict::kBad, "0", "1"}}),
                        WithChecks({{2, "end mark", Verdict::kBad, "0", "1"}})),
            "moved: check end mark in sector 1 -> sector 2\n");
}

TEST(CompareChecks, OneThatIsAskedMoreOften) {
  const Check check = {1, "entry", Verdict::kGood, "", ""};
  EXPECT_EQ(Differences(WithChecks({check, check}), WithChecks({check})),
            "removed: check entry in sector 1\n");
}

TEST(CompareStructures, FieldByFieldWithTheirOccurrences) {
  Side before = {{}, {Header(1, {1, 2, 3, 4})}};
  Side after = before;
  before.structures[0].fields = {
      {"Name", "a", 0, 1, true}, {"Size", "2", 1, 1, true}, {"Name", "c", 2, 1, true}};
  after.structures[0].fields = {
      {"Name", "a", 0, 1, true}, {"Name", "d", 2, 1, true}, {"More", "5", 3, 1, true}};
  after.structures[0].valid = false;
  const std::string title = "structure gpt_header in sector 1 (Primary GPT Header): ";
  EXPECT_EQ(Differences(before, after), "changed: " + title + "valid: true -> false\n" + "removed: " + title +
                                            "Size: 2\n" + "changed: " + title + "Name: c -> d\n" +
                                            "added: " + title + "More: 5\n");
}

// One line, not one for each of its fields.
TEST(CompareStructures, OneWhoseSectorWasWipedSaysThatAlone) {
  Side before = {{}, {Header(1, {1, 2})}};
  Side after = {{}, {Header(1, {0, 0})}};
  before.structures[0].fields = {{"Name", "a", 0, 1, true}, {"Size", "2", 1, 1, true}};
  after.structures[0].fields = {{"Name", "", 0, 1, true}, {"Size", "0", 1, 1, true}};
  EXPECT_EQ(Differences(before, after),
            "changed: structure gpt_header in sector 1 (Primary GPT Header): the sector is all zeros now\n");
}

TEST(CompareStructures, OneThatIsNoLongerDecodedLosesItsFieldsAtOnce) {
  Side before = {{}, {Header(1, {1, 2})}};
  Side after = {{}, {Header(1, {9, 2})}};
  before.structures[0].fields = {{"Name", "a", 0, 1, true}, {"Size", "2", 1, 1, true}};
  after.structures[0].valid = false;
  const std::string title = "structure gpt_header in sector 1 (Primary GPT Header): ";
  EXPECT_EQ(Differences(before, after), "changed: " + title + "valid: true -> false\n" + "removed: " + title +
                                            "all 2 fields\n" + "changed: " + title + "bytes 0x0: 01 -> 09\n");
  EXPECT_EQ(Differences(after, before), "changed: " + title + "valid: false -> true\n" + "added: " + title +
                                            "all 2 fields\n" + "changed: " + title + "bytes 0x0: 09 -> 01\n");
}

// What a changed field tells already is not told once more as bytes.
TEST(CompareStructures, BytesThatNoFieldTells) {
  Side before = {{}, {Header(1, {1, 2, 3, 4, 5})}};
  Side after = {{}, {Header(1, {1, 9, 3, 9, 9})}};
  before.structures[0].fields = {{"Size", "2", 1, 1, true}};
  after.structures[0].fields = {{"Size", "9", 1, 1, true}};
  const std::string title = "changed: structure gpt_header in sector 1 (Primary GPT Header): ";
  EXPECT_EQ(Differences(before, after), title + "Size: 2 -> 9\n" + title + "bytes 0x3-0x4: 0405 -> 0909\n");
}

TEST(CompareStructures, SameBytesElsewhereHaveMoved) {
  EXPECT_EQ(Differences({{}, {Header(1, {1, 2, 3})}}, {{}, {Header(7, {1, 2, 3})}}),
            "moved: structure gpt_header in sector 1 (Primary GPT Header) -> sector 7\n");
}

TEST(CompareStructures, OtherBytesElsewhereAreAnother) {
  EXPECT_EQ(Differences({{}, {Header(1, {1, 2, 3})}}, {{}, {Header(7, {1, 2, 4})}}),
            "removed: structure gpt_header in sector 1 (Primary GPT Header)\n"
            "added: structure gpt_header in sector 7 (Primary GPT Header)\n");
}

TEST(CompareStructures, UnreadableSectorHasOtherBytes) {
  EXPECT_EQ(Differences({{}, {Header(1, {1, 2, 3})}}, {{}, {Header(1, {})}}),
            "changed: structure gpt_header in sector 1 (Primary GPT Header): number of bytes: 3 -> 0\n");
}

TEST(CompareOthers, DiskFactsButForThePath) {
  Side before;
  before.map.disk.path = "a.img";
  before.map.disk.sectors = 100;
  Side after;
  after.map.disk.path = "b.img";
  after.map.disk.sectors = ~u64{0};
  EXPECT_EQ(Differences(before, after), "changed: disk: sectors: 100 -> 18446744073709551615\n");
}

TEST(CompareOthers, DynamicDiskObjectByObject) {
  Side before;
  DynamicDisk& disk = before.map.dynamicDisk.emplace();
  disk.volumes.resize(2);
  disk.volumes[0].name = "Volume1";
  disk.volumes[1].name = "Volume2";
  disk.volumes[1].components.resize(1);
  disk.volumes[1].components[0].id = 8;
  disk.remarks = {"One."};
  Side after = before;
  after.map.dynamicDisk->volumes[1].components[0].state = "active";
  after.map.dynamicDisk->volumes.erase(after.map.dynamicDisk->volumes.begin());
  after.map.dynamicDisk->remarks = {"One.", "Two."};
  EXPECT_EQ(Differences(before, after),
            "added: dynamic_disk: remarks: Two.\n"
            "removed: dynamic_disk.volumes[Volume1]\n"
            "changed: dynamic_disk.volumes[Volume2].components[8]: state: \"\" -> active\n");
}

TEST(CompareOthers, PoolThatIsNoLonger) {
  Side before;
  before.map.storageSpaces.emplace();
  EXPECT_EQ(Differences(before, {}), "removed: storage_spaces\n");
}

TEST(CompareLines, AreSafeWhateverTheDocumentsHold) {
  Extent harmful = Partition(1, 2, "a\x1b[31m\n\u202Eb\"\\\u009B", "");
  harmful.typeName = "";
  EXPECT_EQ(Differences({}, WithExtents({harmful})),
            "added: partition 1-2, \"a\\u001b[31m\\n\\u202eb\\\"\\\\\\u009b\" (GPT entry 1)\n");
}

// A name that reads like the rest of its line, or like a change.
TEST(CompareLines, CannotBeForgedByNames) {
  EXPECT_EQ(Differences({}, WithExtents({Partition(1, 2, "x (GPT entry 9)", "")})),
            "added: partition 1-2 Linux, \"x (GPT entry 9)\" (GPT entry 1)\n");
  EXPECT_EQ(Differences(WithExtents({Partition(1, 2, "a: name: b", "a-b")}),
                        WithExtents({Partition(1, 2, "c -> d", "a-b")})),
            "changed: partition 1-2 Linux, \"a: name: b\" (GPT entry 1): name: a: name: b -> \"c -> d\"\n");
}

TEST(CompareLines, LongValuesAreCutBetweenCharacters) {
  std::string name(119, 'x');
  name += "\u00e9\u00e9\u00e9";
  EXPECT_EQ(Differences({}, WithExtents({Partition(1, 2, name, "")})),
            "added: partition 1-2 Linux, \"" + std::string(119, 'x') + "\"... (GPT entry 1)\n");
}

TEST(CompareLines, AreBounded) {
  std::vector<Extent> extents;
  for (u64 i = 0; i < 10002; ++i)
    extents.push_back(Partition(i, i, "", ""));
  const std::string text = Differences({}, WithExtents(extents));
  const std::string end = "added: partition 9999-9999 Linux (GPT entry 1)\nand 2 more differences\n";
  EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST(ByteDifferencesText, ShowsTheFirstStretchesAndCountsTheRest) {
  const std::vector<u8> zeros(512);
  std::vector<u8> other(512);
  EXPECT_EQ(ByteDifferences(zeros, other, {}), "");
  other[0] = 0xAB;
  other[511] = 1;
  EXPECT_EQ(ByteDifferences(zeros, other, {}), "bytes 0x0: 00 -> AB, 0x1FF: 00 -> 01");
  EXPECT_EQ(ByteDifferences(zeros, other, {{1, 511}}), "bytes 0x0: 00 -> AB");
  EXPECT_EQ(ByteDifferences(zeros, other, {{0, ~u64{0}}}), "");
  EXPECT_EQ(ByteDifferences(zeros, other, {{~u64{0}, ~u64{0}}}), "bytes 0x0: 00 -> AB, 0x1FF: 00 -> 01");
  std::fill(other.begin() + 16, other.begin() + 16 + 35, u8{0xFF});
  EXPECT_EQ(
      ByteDifferences(zeros, other, {}),
      "bytes 0x0: 00 -> AB, 0x10-0x17: 0000000000000000 -> FFFFFFFFFFFFFFFF, "
      "0x18-0x1F: 0000000000000000 -> FFFFFFFFFFFFFFFF, 0x20-0x27: 0000000000000000 -> FFFFFFFFFFFFFFFF, "
      "and 12 more bytes");
}

// The document as another program would write it: other order, other spaces.
TEST(Documents, OrderOfMembersDoesNotMatter) {
  std::string complaint;
  const auto document = Parsed(
      R"({"checks":[],"extents":[{"last":9,"first":"1"}],"disk":{"path":"x"},"schema":"trovisk-map/1"})",
      complaint);
  ASSERT_TRUE(document.has_value()) << complaint;
  EXPECT_EQ(document->extents.at(0).values[kExtentFirst], "1");
  EXPECT_EQ(document->extents.at(0).values[kExtentSize], "9");
}

TEST(Documents, AnotherVersionIsRefused) {
  const std::string complaint = "is a document of another kind: its schema is not \"trovisk-map/1\"";
  EXPECT_EQ(ComplaintAbout(R"({"schema": "trovisk-map/2"})"), complaint);
  EXPECT_EQ(ComplaintAbout(R"({"schema": ["trovisk-map/1", 2]})"), complaint);
  EXPECT_EQ(ComplaintAbout("{}"), complaint);
  EXPECT_EQ(ComplaintAbout("[]"), complaint);
}

TEST(Documents, CutOffAnywhereIsSaid) {
  const std::string whole =
      Written(WithExtents({Partition(34, 99, "d\u00e4ta", "a-b")}).map, {Header(1, {1, 2})});
  for (std::size_t size = 1; size + 1 < whole.size(); ++size) {
    const std::string complaint = ComplaintAbout(whole.substr(0, size));
    EXPECT_EQ(complaint, "is cut off: the document has no end") << size;
  }
}

TEST(Documents, DamagedOnesSayWhere) {
  EXPECT_EQ(ComplaintAbout("{\"a\": x}"), "is damaged: no JSON at byte 7");
  EXPECT_EQ(ComplaintAbout("{\"a\": \"\xff\"}"), "is damaged: no JSON at byte 8");
  EXPECT_EQ(ComplaintAbout("{\"a\": 1e999}"), "is damaged: no JSON at byte 11");
  EXPECT_EQ(ComplaintAbout("{\"a\": 1} {"), "is damaged: no JSON at byte 10");
  EXPECT_EQ(ComplaintAbout("{\"a\": \"\\ud800\"}").substr(0, 24), "is damaged: no JSON at b");
}

TEST(Documents, DeepNestingIsRefused) {
  std::string deep = "{\"a\": ";
  deep.append(1000000, '[');
  EXPECT_EQ(ComplaintAbout(deep), "is no map: its values are nested too deeply");
  std::string items = R"({"schema": "trovisk-map/1", "extents": [)";
  items.append(13, '[').append(14, ']').append("}");
  std::string complaint;
  EXPECT_TRUE(Parsed(items, complaint).has_value()) << complaint;
}

TEST(Documents, MoreValuesThanAMapEverHasAreRefused) {
  std::string many = "{\"extents\": [";
  for (int i = 0; i < (1 << 22); ++i)
    many += "1,";
  EXPECT_EQ(ComplaintAbout(many), "is too large: no map holds so many values");
}

// The bytes are bounded beside the number of values: of what is kept, of one item, of all items, and of names
// that stand in the way to each object below them.
TEST(Documents, MoreBytesThanCanBeComparedAreRefused) {
  const auto sentences = [](int count) {
    std::string text = R"({"schema": "trovisk-map/1", "cut": [")";
    for (int i = 0; i < count; ++i)
      text.append(1000000, 'x').append(R"(", ")");
    return text + R"("]})";
  };
  std::string complaint;
  EXPECT_TRUE(Parsed(sentences(8), complaint).has_value()) << complaint;
  EXPECT_EQ(ComplaintAbout(sentences(9)), "is too large to be compared");

  std::string names = R"({"disk": {)";
  for (int i = 0; i < 9; ++i)
    names.append("\"").append(std::to_string(i)).append(1000000, 'x').append("\": 1,");
  EXPECT_EQ(ComplaintAbout(names), "is too large to be compared");

  std::string items = R"({"schema": "trovisk-map/1", "checks": [)";
  for (int i = 0; i < 30; ++i)
    items.append(R"({"found": ")").append(1000000, 'x').append("\"},");
  EXPECT_EQ(ComplaintAbout(items), "is too large to be compared");

  std::string tree = R"({"schema": "trovisk-map/1", "dynamic_disk": {"volumes": [{"name": ")";
  tree.append(4000000, 'x').append(R"(", "components": [{})");
  for (int i = 0; i < 10000; ++i)
    tree += ",{}";
  EXPECT_EQ(ComplaintAbout(tree + "]}]}}"), "is too large to be compared");
}

// Nobody is told that two disks are equal because both were too much.
TEST(Documents, ASurveyThatIsTooLargeIsRefusedAsASavedMapIs) {
  DiskMap map;
  map.storageSpaces.emplace().objects.resize(100000);
  std::string complaint;
  EXPECT_FALSE(DocumentOf(map, VisitorOf({}), complaint).has_value());
  EXPECT_EQ(complaint, "is too large: no map holds so many values");
  map.storageSpaces->objects.resize(100);
  EXPECT_TRUE(DocumentOf(map, VisitorOf({}), complaint).has_value());
}

// Nothing of these is what it should be, and all of it is JSON.
TEST(Documents, ValuesOfOtherKindsAreTexts) {
  std::string complaint;
  const auto document = Parsed(
      R"({"schema": "trovisk-map/1", "disk": [1], "dynamic_disk": 7, "storage_spaces": {"areas": [{}, 3, {"name": {}}]},
          "cut": {}, "checks": {"a": {}}, "structures": [{"fields": {}, "bytes": 7, "messages": {"a": [1, "b"]}}, 4],
          "extents": [{"first": -1, "last": 1.5, "flags": [[["x"], null], true], "kind": null},
                      {"first": 0, "last": 18446744073709551615}, {"first": 5, "last": 4}, [], null]})",
      complaint);
  ASSERT_TRUE(document.has_value()) << complaint;
  ASSERT_EQ(document->extents.size(), 3U);
  EXPECT_EQ(document->extents[0].values[kExtentFirst], "-1");
  EXPECT_EQ(document->extents[0].values[kExtentLast], "1.5");
  EXPECT_EQ(document->extents[0].values[kExtentFlags], "x,,true");
  for (const DocumentItem& extent : document->extents)
    EXPECT_EQ(extent.values[kExtentSize], "");
  EXPECT_EQ(document->structures.size(), 1U);
  EXPECT_EQ(document->checks.size(), 0U);
  u64 count = 1;
  count = WriteDifferences(*document, *document, [](std::string_view) {});
  EXPECT_EQ(count, 0U);
}

TEST(Documents, AreToldFromDisksByTheirBeginning) {
  EXPECT_TRUE(LooksLikeDocument("{\"schema"));
  EXPECT_TRUE(LooksLikeDocument("\xEF\xBB\xBF \r\n\t{\n  \"a"));
  EXPECT_TRUE(LooksLikeDocument("{}"));
  EXPECT_TRUE(LooksLikeDocument("{\"\u00e4"));
  EXPECT_TRUE(LooksLikeDocument("{\"\xc3"));  // the rest of the character follows
  EXPECT_FALSE(LooksLikeDocument(""));
  EXPECT_FALSE(LooksLikeDocument("{"));
  EXPECT_FALSE(LooksLikeDocument(std::string_view("{\0\"", 3)));
  EXPECT_FALSE(LooksLikeDocument("\xEB\x3C\x90MSDOS5.0"));
}

// Who wants a disk to be taken for a document can write into its first bytes, not over its end mark.
TEST(Documents, ADiskThatBeginsLikeOneIsADisk) {
  std::string sector = "{\"schema\": \"trovisk-map/1\"}";
  sector.resize(510, ' ');
  EXPECT_TRUE(LooksLikeDocument(sector));
  EXPECT_FALSE(LooksLikeDocument(sector + "\x55\xAA" + sector));
  EXPECT_FALSE(LooksLikeDocument(sector + "  " + std::string("EFI PART\0\0\1\0", 12)));
}

TEST(Documents, InUtf16AreToldToo) {
  EXPECT_TRUE(LooksLikeUtf16Document(std::string_view("\xFF\xFE{\0\r\0\n\0 \0\"\0s\0", 14)));
  EXPECT_FALSE(LooksLikeUtf16Document(std::string_view("\xFF\xFE{\0x\0", 6)));
  EXPECT_FALSE(LooksLikeUtf16Document("{\""));
}

TEST(ItemContentsTest, ComeOutAsTheyWentIn) {
  const ItemContents contents = {.fields = {{"Name", std::string("a\0b", 3), u64{7}, 3}, {"", "", {}, 0}},
                                 .bytes = {1, 2, 0}};
  const std::string packed = Pack(contents);
  const ItemContents again = Unpack(packed);
  ASSERT_EQ(again.fields.size(), 2U);
  EXPECT_EQ(again.fields[0].label, "Name");
  EXPECT_EQ(again.fields[0].value, std::string("a\0b", 3));
  EXPECT_EQ(again.fields[0].offset, u64{7});
  EXPECT_EQ(again.fields[0].length, 3U);
  EXPECT_EQ(again.fields[1].offset, std::nullopt);
  EXPECT_EQ(again.bytes, contents.bytes);
  EXPECT_EQ(Pack(again), packed);
  EXPECT_EQ(Pack({}), "");
  EXPECT_TRUE(Unpack("").fields.empty());
}

// Two files, compared as the command line does.
class CompareFiles : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) const {
    return ::testing::TempDir() + "compare-" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name() + "-" + name;
  }
  std::string Saved(const std::string& name, const std::string& text) {
    std::ofstream(Path(name), std::ios::binary) << text;
    paths_.push_back(Path(name));
    return Path(name);
  }
  int Compare(const std::string& before, const std::string& after) {
    return CompareMaps(
        before, after, [&](std::string_view text) { lines_ += text; }, complaint_);
  }
  void TearDown() override {
    for (const std::string& path : paths_)
      std::remove(path.c_str());
  }

  std::string lines_;
  std::string complaint_;

 private:
  std::vector<std::string> paths_;
};

TEST_F(CompareFiles, StatusSaysWhetherTheyAreEqual) {
  const std::string one = Saved("one", Written(WithExtents({Partition(1, 2, "", "")}).map));
  const std::string other = Saved("other", Written({}));
  EXPECT_EQ(Compare(one, one), 0);
  EXPECT_EQ(lines_, "");
  EXPECT_EQ(Compare(one, other), 1);
  EXPECT_EQ(lines_, "removed: partition 1-2 Linux (GPT entry 1)\n");
  EXPECT_EQ(complaint_, "");
}

// Nobody is told that disks are equal of which a part was not compared.
TEST_F(CompareFiles, MapsThatLeaveSomethingOutAreNotEqual) {
  DiskMap map;
  map.cut = {"Of 5000 logical partitions the first 4096 are shown."};
  const std::string cut = Saved("cut", Written(map));
  EXPECT_EQ(Compare(cut, cut), 3);
  EXPECT_EQ(lines_, "");
  EXPECT_EQ(complaint_,
            "no difference was found, but both maps leave something out: "
            "Of 5000 logical partitions the first 4096 are shown.");
  complaint_.clear();
  EXPECT_EQ(Compare(cut, Saved("whole", Written({}))), 1);
  EXPECT_EQ(complaint_, "");
}

TEST_F(CompareFiles, DamagedOneIsNamed) {
  const std::string good = Saved("good", Written({}));
  const std::string bad = Saved("bad", "{\"schema\": \"trovisk-map/1\", ");
  EXPECT_EQ(Compare(good, bad), 3);
  EXPECT_EQ(complaint_, bad + " is cut off: the document has no end");
  EXPECT_EQ(Compare(bad, good), 3);
  EXPECT_EQ(complaint_, bad + " is cut off: the document has no end");
  EXPECT_EQ(lines_, "");
}

TEST_F(CompareFiles, TextLongerThanAnyOfAMapIsRefused) {
  const std::string good = Saved("good", Written({}));
  const std::string bad = Saved("bad", "{\"a\": \"" + std::string((u64{1} << 23) + 1, 'x') + "\"}");
  EXPECT_EQ(Compare(good, bad), 3);
  EXPECT_EQ(complaint_, bad + " is no map: a text in it is longer than 8388608 bytes");
  const std::string escaped = Saved("escaped", "{\"a\": \"" + std::string(u64{10} << 20, '\\') + "\"}");
  EXPECT_EQ(Compare(escaped, good), 3);
  EXPECT_EQ(complaint_, escaped + " is no map: a text in it is longer than 8388608 bytes");
}

TEST_F(CompareFiles, MapInUtf16SaysWhatToDo) {
  const std::string good = Saved("good", Written({}));
  const std::string bad = Saved("bad", std::string("\xFF\xFE{\0}\0", 6));
  EXPECT_EQ(Compare(good, bad), 3);
  EXPECT_EQ(complaint_, bad + " is a map in UTF-16, as a shell has redirected it: write it with --output");
}

TEST_F(CompareFiles, WhatIsNotThereIsNoSavedMap) {
  const std::string good = Saved("good", Written({}));
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(Compare(good, Path("none")), 3);
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("error 2"), std::string::npos);
  EXPECT_EQ(complaint_, "");  // the survey has said it
}

}  // namespace
}  // namespace trovisk::test
