// Where the fields of a report's tables stand on the disk: found again there, byte by byte.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>

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

// The labels of a report's lines "Label : value", but for dumps of bytes that other fields name one by one.
std::vector<std::string> LabelsOf(const std::string& text) {
  static const std::regex labelled("\\t? *([A-Z][^:\\t]*[^: \\t]) *:.*");
  std::vector<std::string> labels;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::smatch found;
    if (!std::regex_match(line, found, labelled)) continue;
    if (found[1] == "Data" || found[1] == "Self Descriptor" || found[1] == "Bootcode") continue;
    labels.push_back(found[1]);
  }
  return labels;
}

TEST(FieldNotes, NoLabelledLineOfTheSampleDisksIsLeftOut) {
  for (const Disk& disk : {GptSample(), MbrSample(), DynamicSample()}) {
    SurveyOf(disk);
    for (const Structure& structure : StructuresNow()) {
      std::multiset<std::string> fields;
      for (const StructureField& field : structure.fields)
        fields.insert(field.label);
      for (const std::string& label : LabelsOf(structure.text)) {
        const auto found = fields.find(label);
        ASSERT_NE(found, fields.end()) << label << " in\n" << structure.text;
        fields.erase(found);
      }
    }
  }
}

// Each is written as other bytes than the value has digits.
TEST(FieldNotes, OfLinesThatNoTablePrints) {
  SurveyOf(GptSample());
  const std::vector<Structure> structures = StructuresNow();
  const auto has = [&](u64 sector, const std::string& field) {
    const Structure* const structure = At(structures, sector);
    ASSERT_NE(structure, nullptr) << sector;
    const std::vector<std::string> fields = FieldsOf(*structure);
    EXPECT_NE(std::find(fields.begin(), fields.end(), field), fields.end()) << field << " in\n"
                                                                            << structure->text;
  };
  has(1, "Revision = 10 @8+4");
  has(1, "Last Partitition Entry LBA = 33 @?+0");
  has(2, "Partition Type = EFI Partition Scheme @0+16");
  has(2048, "First sector of FAT#2 = 2680 @?+0");
  has(2048, "Filesystem Version = 0.0 @42+2");
  has(80112, "Checkpoint Reference #2 = 0x00000000000001E8 @200+8");
  has(80112, "Checksum = 0x0123456789ABCDEF @248+8");
  has(96256, "Sectors/Cluster = 8 @13+1");
  // Lines below one another become one: an exFAT volume's flags.
  has(104448, "Volume Flags = Active FAT 0 Volume Clean No Media Failure @106+2");
  // In slot 0 of a sector of LDM records: what stands behind fields of stated lengths.
  has(114698, "Number Of Children = 1 @61+1");
  has(114698, "Size = 0x800 (1 MiB) @79+2");
}

}  // namespace
}  // namespace trovisk::test
