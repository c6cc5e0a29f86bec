// The JSON document: its form as a whole, numbers that stay exact, and texts that mean harm.

#include "map/json_map.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "map/base64.h"
#include "tests/map/written.h"

namespace trovisk::test {
namespace {

using nlohmann::json;

constexpr u64 kTwoTo53 = 9007199254740992;

json WrittenName(const std::string& name) {
  DiskMap map;
  map.extents.push_back({.name = name});
  return json::parse(Written(map)).at("extents").at(0).at("name");
}

json WrittenFirst(u64 first) {
  DiskMap map;
  map.extents.push_back({.first = first});
  return json::parse(Written(map)).at("extents").at(0).at("first");
}

TEST(JsonMap, EmptyMapHasEveryKey) {
  EXPECT_EQ(Written({}), R"({
  "schema": "trovisk-map/1",
  "disk": {
    "path": "",
    "sector_size": 0,
    "sectors": null,
    "bytes": null,
    "scheme": "",
    "id": "",
    "first_usable": null,
    "last_usable": null,
    "table_length": null
  },
  "extents": [],
  "structures": [],
  "checks": [],
  "dynamic_disk": null,
  "storage_spaces": null,
  "cut": []
}
)");
}

TEST(JsonMap, ExtentsAndChecksStandOneALine) {
  DiskMap map;
  map.disk.path = "disk.img";
  map.disk.sectorSize = 512;
  map.disk.sectors = 100;
  map.disk.bytes = 51200;
  map.disk.scheme = "MBR";
  map.extents.push_back({.first = 0, .last = 0, .kind = ExtentKind::kStructure, .typeName = "MBR"});
  map.extents.push_back({.first = 63,
                         .last = 99,
                         .kind = ExtentKind::kPartition,
                         .flags = kFlagActive | kFlagBeyondEnd,
                         .type = "0x07",
                         .typeName = "NTFS",
                         .name = "data",
                         .source = "MBR entry 2",
                         .depth = 1,
                         .number = 2});
  map.checks.push_back({7, "End mark", Verdict::kNotChecked, "0x55AA", "nothing"});
  map.cut = {"Some are left out."};
  EXPECT_EQ(Written(map),
            R"({
  "schema": "trovisk-map/1",
  "disk": {
    "path": "disk.img",
    "sector_size": 512,
    "sectors": 100,
    "bytes": 51200,
    "scheme": "MBR",
    "id": "",
    "first_usable": null,
    "last_usable": null,
    "table_length": null
  },
  "extents": [
    {"first":0,"last":0,"kind":"structure","type":"","type_name":"MBR","name":"","source":"","flags":[],"depth":0,"number":null,"id":"","attributes":0},
    {"first":63,"last":99,"kind":"partition","type":"0x07","type_name":"NTFS","name":"data","source":"MBR entry 2","flags":["active","beyond-end"],"depth":1,"number":2,"id":"","attributes":0}
  ],
  "structures": [],
  "checks": [
    {"sector":7,"check":"End mark","verdict":"not checked","found":"0x55AA","expected":"nothing"}
  ],
  "dynamic_disk": null,
  "storage_spaces": null,
  "cut": ["Some are left out."]
}
)");
}

TEST(JsonMap, StructureHasItsFieldsTextAndBytes) {
  Structure structure;
  structure.sector = 1;
  structure.count = 3;
  structure.title = "Primary GPT Header";
  structure.structure = "gpt_header";
  structure.valid = false;
  structure.messages = {"damaged"};
  structure.fields = {{"Revision", "10", 8, 4, true}, {"Sum", "7", 0, 0, false}};
  structure.text = "line 1\nline 2\n";
  structure.bytes = {0x45, 0x46, 0x49, 0x20};
  const std::string text = Written({}, {structure, structure});
  const std::string item = R"({
      "sector": 1,
      "count": 3,
      "title": "Primary GPT Header",
      "structure": "gpt_header",
      "valid": false,
      "messages": ["damaged"],
      "fields": [
        {"label":"Revision","value":"10","offset":8,"length":4},
        {"label":"Sum","value":"7","offset":null,"length":null}
      ],
      "text": "line 1\nline 2\n",
      "bytes": "RUZJIA=="
    })";
  EXPECT_NE(text.find("  \"structures\": [\n    " + item + ",\n    " + item + "\n  ],\n"), std::string::npos)
      << text;
}

TEST(JsonMap, NumbersAboveTwoTo53AreStrings) {
  EXPECT_EQ(WrittenFirst(kTwoTo53 - 1), json(kTwoTo53 - 1));
  EXPECT_EQ(WrittenFirst(kTwoTo53), json(kTwoTo53));
  EXPECT_EQ(WrittenFirst(kTwoTo53 + 1), json("9007199254740993"));
  EXPECT_EQ(WrittenFirst(~u64{0}), json("18446744073709551615"));
}

TEST(JsonMap, DynamicDiskNestsVolumesComponentsAndPartitions) {
  DiskMap map;
  map.dynamicDisk.emplace();
  map.dynamicDisk->groupName = "Dg0";
  map.dynamicDisk->areas = {{10, 12, "VMDB"}};
  map.dynamicDisk->disks = {{5, "Disk1", "guid", "Harddisk0", true}};
  DynamicPartition here;
  here.id = 9;
  here.name = "Disk1-01";
  here.diskId = 5;
  here.disk = "Disk1";
  here.onThisDisk = true;
  here.start = 1;
  here.absoluteStart = 64;
  here.size = 1000;
  DynamicPartition elsewhere;
  elsewhere.size = ~u64{0};
  DynamicVolume& volume = map.dynamicDisk->volumes.emplace_back();
  volume.name = "Volume1";
  volume.components.emplace_back().partitions = {here, elsewhere};
  map.dynamicDisk->orphans = {elsewhere};
  const json disk = json::parse(Written(map)).at("dynamic_disk");
  EXPECT_EQ(disk.at("group_name"), "Dg0");
  EXPECT_EQ(disk.at("areas"), json::parse(R"([{"first": 10, "last": 12, "name": "VMDB"}])"));
  EXPECT_EQ(disk.at("disks").at(0).at("this_disk"), true);
  EXPECT_EQ(disk.at("disks").at(0).at("device"), "Harddisk0");
  EXPECT_EQ(disk.at("orphans").size(), 1U);
  const json partitions = disk.at("volumes").at(0).at("components").at(0).at("partitions");
  EXPECT_EQ(partitions.at(0), json::parse(R"({"id": 9, "name": "Disk1-01", "disk_id": 5, "disk": "Disk1",
    "on_this_disk": true, "start": 1, "absolute_start": 64, "size": 1000, "volume_offset": 0, "column": 0})"));
  // Where it lies on another disk is not known here.
  EXPECT_EQ(partitions.at(1).at("absolute_start"), nullptr);
  EXPECT_EQ(partitions.at(1).at("size"), "18446744073709551615");
}

TEST(JsonMap, StorageSpacesListTheirObjects) {
  DiskMap map;
  map.storageSpaces.emplace();
  map.storageSpaces->sector = 2048;
  map.storageSpaces->objects = {{3, "space", "Mirror", "", 4}};
  const json spaces = json::parse(Written(map)).at("storage_spaces");
  EXPECT_EQ(spaces.at("sector"), 2048);
  EXPECT_EQ(spaces.at("objects"),
            json::parse(R"([{"id": 3, "kind": "space", "name": "Mirror", "guid": "", "parts": 4}])"));
  EXPECT_EQ(spaces.at("remarks"), json::array());
}

TEST(JsonMapText, QuotesEscapesAndNulBytesComeBackAsTheyWere) {
  const std::string harmful("a\"b\\c</script>\x1b[31m\n\0end", 24);
  EXPECT_EQ(WrittenName(harmful), harmful);
}

TEST(JsonMapText, BytesThatAreNoUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(WrittenName("a\xff\xfe z"), "a\uFFFD\uFFFD z");
  EXPECT_EQ(WrittenName("cut \xe2\x82"), "cut \uFFFD");
  EXPECT_EQ(WrittenName("lone surrogate \xed\xa0\x80."), "lone surrogate \uFFFD\uFFFD\uFFFD.");
}

TEST(JsonMapText, WhatATerminalMustNotSeeIsEscaped) {
  const std::string harmful = "x\u202Ey\u200Fz\u2066\u2028\uFEFF\u0085\x7f";
  EXPECT_EQ(WrittenName(harmful), harmful);
  DiskMap map;
  map.extents.push_back({.name = harmful});
  EXPECT_NE(Written(map).find(R"("name":"x\u202ey\u200fz\u2066\u2028\ufeff\u0085\u007f")"),
            std::string::npos);
}

TEST(JsonMapText, OtherScriptsStandAsTheyAre) {
  DiskMap map;
  map.extents.push_back({.name = "Größe \u05D0\u6570\U0001F4BE"});
  EXPECT_NE(Written(map).find("\"name\":\"Größe \u05D0\u6570\U0001F4BE\""), std::string::npos);
}

TEST(Base64, EveryLengthComesBack) {
  const std::vector<std::pair<std::vector<u8>, std::string>> pairs = {{{}, ""},
                                                                      {{0}, "AA=="},
                                                                      {{0xff}, "/w=="},
                                                                      {{0xff, 0xfe}, "//4="},
                                                                      {{'M', 'a', 'n'}, "TWFu"},
                                                                      {{'M', 'a', 'n', 0xfb}, "TWFu+w=="}};
  for (const auto& [bytes, text] : pairs) {
    EXPECT_EQ(Base64(bytes), text);
    EXPECT_EQ(FromBase64(text), bytes);
  }
}

TEST(Base64, EndsAtWhatIsNoneOfIt) {
  EXPECT_EQ(FromBase64("TWFu\nTWFu"), (std::vector<u8>{'M', 'a', 'n'}));
}

}  // namespace
}  // namespace trovisk::test
