// Where the fields of a report's tables stand on the disk: found again there, byte by byte.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/disks/gpt.h"
#include "tests/disks/samples.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

const Structure* At(const std::vector<Structure>& structures, u64 sector) {
  const auto found = std::find_if(structures.begin(), structures.end(),
                                  [&](const Structure& each) { return each.sector == sector; });
  return found == structures.end() ? nullptr : &*found;
}

// "label = value @offset+length", in the report's order.
std::vector<std::string> FieldsOf(const Structure& structure) {
  std::vector<std::string> texts;
  for (const StructureField& field : structure.fields) {
    texts.push_back(field.label + " = " + field.value + " @" +
                    (field.placed ? std::to_string(field.offset) : "?") + "+" + std::to_string(field.length));
  }
  return texts;
}

TEST(FieldNotes, OfAGptHeader) {
  for (const u32 sectorSize : {512U, 4096U}) {
    Disk disk(4096, sectorSize);
    PutGpt(disk);
    SurveyOf(disk);
    const std::vector<Structure> structures = StructuresNow();
    const Structure* const header = At(structures, 1);
    ASSERT_NE(header, nullptr);
    const std::vector<std::string> fields = FieldsOf(*header);
    ASSERT_GE(fields.size(), 4u);
    EXPECT_EQ(fields[0], "Magic Number = EFI PART @0+8");
    EXPECT_NE(std::find(fields.begin(), fields.end(), "Header Size = 92 @12+4"), fields.end());
    EXPECT_NE(std::find(fields.begin(), fields.end(), "Backup Header LBA = 4095 @32+8"), fields.end());
    const auto checksum = std::find_if(fields.begin(), fields.end(), [](const std::string& field) {
      return field.starts_with("CRC32 Checksum = 0x") && field.ends_with(" @16+4");
    });
    EXPECT_NE(checksum, fields.end());
    EXPECT_NE(
        std::find(fields.begin(), fields.end(), "Disk GUID = 9ABCDEF0-1234-5678-9ABC-DEF012345678 @56+16"),
        fields.end());
  }
}

TEST(FieldNotes, OfTheEntriesOfASectorEachInItsSlot) {
  Disk disk;
  PutGpt(disk, {{.first = 100, .last = 101},
                {.first = 102, .last = 103},
                {.first = 104, .last = 105},
                {.first = 106, .last = 107, .name = u"fourth"}});
  SurveyOf(disk);
  const std::vector<Structure> structures = StructuresNow();
  const Structure* const sector = At(structures, 2);
  ASSERT_NE(sector, nullptr);
  std::vector<std::string> starts;
  for (const std::string& field : FieldsOf(*sector)) {
    if (field.starts_with("Starting LBA") || field.starts_with("Partition Name = f")) starts.push_back(field);
  }
  EXPECT_EQ(starts, (std::vector<std::string>{"Starting LBA = 100 @32+8", "Starting LBA = 102 @160+8",
                                              "Starting LBA = 104 @288+8", "Starting LBA = 106 @416+8",
                                              "Partition Name = fourth @440+72"}));
}

// Whatever the structure: a decimal number that the report shows is the one that stands at its offset, in one
// byte order or the other.
void ExpectNumbersWhereTheyStand(const Structure& structure, u64& numbers) {
  for (const StructureField& field : structure.fields) {
    if (!field.placed) continue;
    ASSERT_LE(field.offset + field.length, structure.bytes.size()) << structure.title << ": " << field.label;
    const bool decimal = !field.value.empty() && field.value.size() < 19 &&
                         field.value.find_first_not_of("0123456789") == std::string::npos;
    const bool number = field.length == 1 || field.length == 2 || field.length == 4 || field.length == 8;
    if (!decimal || !number) continue;
    u64 little = 0;
    u64 big = 0;
    for (u64 i = 0; i < field.length; ++i) {
      little |= u64{structure.bytes[field.offset + i]} << 8 * i;
      big = big << 8 | structure.bytes[field.offset + i];
    }
    const u64 shown = std::stoull(field.value);
    if (shown == little || shown == big) ++numbers;
  }
}

TEST(FieldNotes, NumbersOfTheSampleDisksStandWhereTheNotesSay) {
  for (const Disk& disk : {GptSample(), MbrSample(), DynamicSample()}) {
    SurveyOf(disk);
    u64 numbers = 0;
    u64 placed = 0;
    for (const Structure& structure : StructuresNow()) {
      ExpectNumbersWhereTheyStand(structure, numbers);
      placed += static_cast<u64>(std::count_if(structure.fields.begin(), structure.fields.end(),
                                               [](const StructureField& field) { return field.placed; }));
    }
    EXPECT_GT(placed, 40u);
    EXPECT_GT(numbers, 20u);
  }
}

}  // namespace
}  // namespace trovisk::test
