// Which decoder the type of a partition leads to. The sectors hold nothing that their decoder accepts: what
// it prints of them shows which one it is.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 100;
constexpr u64 kLast = 109;

struct Refusal {
  std::string report;  // of the sector
  std::string errors;  // of one pass
};

// In the loading pass a decoder complains on standard output, where it does so at all, without a header line.
void ExpectRefused(const Disk& disk, u64 sector, const Refusal& expected, const std::string& complaint) {
  const Outcome outcome = RunOn(disk, {std::to_string(sector)});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, expected.errors + expected.errors);
  EXPECT_TRUE(SameText(outcome.out,
                       Preamble(disk, " sector " + std::to_string(sector), complaint) + expected.report));
}

const std::string kFatComplaint = "Not a valid FAT boot sector end marker\n";

void ExpectMbrType(u8 type, const std::string& report, const std::string& complaint = "") {
  SCOPED_TRACE(int{type});
  Disk disk(200);
  // The indicator matters to a dynamic disk's partition alone.
  PutBootRecord(disk, 0, {.entries = {{.bootIndicator = 0x80, .type = type, .first = kFirst, .count = 10}}});
  ExpectRefused(disk, kFirst, {report, ""}, complaint);
}

TEST(DecoderOfType, MbrFat) {
  for (const u8 type : std::initializer_list<u8>{0x01, 0x04, 0x06, 0x0E})
    ExpectMbrType(type, "Reading FAT sector # 100 [FAT Boot Sector]\n" + kFatComplaint, kFatComplaint);
  for (const u8 type : std::initializer_list<u8>{0x0B, 0x0C})
    ExpectMbrType(type, "Reading FAT sector # 100 [FAT32 Boot Sector]\n" + kFatComplaint, kFatComplaint);
  ExpectMbrType(0xDE, "Reading FAT sector # 100 [Dell Utility Partition]\n" + kFatComplaint, kFatComplaint);
}

TEST(DecoderOfType, MbrExtended) {
  for (const u8 type : std::initializer_list<u8>{0x05, 0x0F}) {
    ExpectMbrType(type,
                  "Reading sector # 100 [Supplementary Boot Record]\n\nSupplementary Boot Record\n"
                  "-------------------------\n\nPartition table entries\n\n\tEmpty\n\n\tEmpty\n\n\n\n"
                  "Sector End Mark : 0x00\n\nReading sector # 100 [as a raw sector]\n... empty ...\n");
  }
}

TEST(DecoderOfType, MbrIdentifiedVolume) {
  ExpectMbrType(0x07, "Reading sector # 100 [Unknown boot sector]\n... empty ...\n");
}

// The disk's own private header has to be there, or the pass would end before.
TEST(DecoderOfType, MbrDynamicVolume) {
  Disk disk(200);
  PutBootRecord(disk, 0, {.entries = {{.bootIndicator = 0x80, .type = 0x42, .first = 5, .count = 10}}});
  ExpectRefused(disk, 5, {"Reading sector # 5 [Unknown boot sector]\n... empty ...\n", ""}, "");
  const Outcome header = RunOn(disk, {"6"});
  EXPECT_TRUE(header.out.ends_with("\nReading sector # 6 [PRIVHEAD Sector]\n\n")) << header.out;
}

void ExpectGptType(const Guid& type, u64 sector, const Refusal& expected, const std::string& complaint = "") {
  Disk disk(300);
  PutGpt(disk, {{.type = type, .first = kFirst, .last = kLast}});
  ExpectRefused(disk, sector, expected, complaint);
}

TEST(DecoderOfType, GptEfiSystemIsFat) {
  ExpectGptType(kEfiSystemType, kFirst,
                {"Reading FAT sector # 100 [EFI partition boot sector]\n" + kFatComplaint, ""},
                kFatComplaint);
}

TEST(DecoderOfType, GptIdentifiedVolumes) {
  for (const Guid& type : {kBasicDataType, kRecoveryType})
    ExpectGptType(type, kFirst, {"Reading sector # 100 [Unknown boot sector]\n... empty ...\n", ""});
}

TEST(DecoderOfType, GptLdmMetadata) {
  ExpectGptType(kLdmMetadataType, kLast,
                {"Reading sector # 109 [PRIVHEAD sector]\n\n", "**** No PRIVHEAD magic found ****\n"});
}

TEST(DecoderOfType, GptStorageSpaces) {
  ExpectGptType(kStorageSpacesType, kFirst,
                {"Reading sector # 100 [SPACEDB sector]\n\n"
                 "Reading sector # 100 [as a raw sector]\n... empty ...\n",
                 "**** No SPACEDB magic found ****\n"});
}

TEST(DecoderOfType, GptStorageReplica) {
  ExpectGptType(kStorageReplicaType, kFirst,
                {"Reading sector # 100 [DPOM sector]\n\n", "**** No DPOM magic found ****\n"});
}

}  // namespace
}  // namespace trovisk::test
