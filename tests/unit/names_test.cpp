// The name tables: how many names there are, and some of them character by character.

#include "frame/report/names.h"

#include <gtest/gtest.h>

namespace trovisk {
namespace {

struct ByteRow {
  u8 code;
  std::wstring name;
};

// How many bytes have a name; of those without, each is "unknown".
int NamedBytes(WideText (*nameOf)(u8)) {
  int named = 0;
  for (int code = 0; code < 256; ++code) {
    const WideText name = nameOf(static_cast<u8>(code));
    EXPECT_FALSE(name.empty()) << code;
    if (name != L"unknown") ++named;
  }
  return named;
}

void ExpectRows(const std::vector<ByteRow>& rows, WideText (*nameOf)(u8)) {
  for (const auto& [code, name] : rows)
    EXPECT_EQ(std::wstring(nameOf(code)), name) << int{code};
}

TEST(MediaTypeName, SomeOfSeven) {
  EXPECT_EQ(NamedBytes(MediaTypeName), 7);
  ExpectRows({{0xF0, L"3 1/2 floppy, 1.44MB"},
              {0xF8, L"Fixed Hard Drive"},
              {0xFC, L"5 1/4 floppy, 180KB"},
              {0xFF, L"5 1/4 floppy, 320KB"},
              {0x00, L"unknown"},
              {0xF7, L"unknown"},
              {0xFB, L"unknown"}},
             MediaTypeName);
}

// Some names have lost their end on the way, and keep it so.
TEST(PartitionTypeName, SomeOfNinety) {
  EXPECT_EQ(NamedBytes(PartitionTypeName), 90);
  ExpectRows({{0x01, L"FAT-12"},
              {0x07, L"NTFS"},
              {0x0C, L"Win95 FAT-32 (LBA"},
              {0x0F, L"Win95 Extended (LBA"},
              {0x42, L"Dynamic Disk"},
              {0x83, L"Linux ext2"},
              {0xC6, L"DRDOS/sec (FAT-"},
              {0xDE, L"Dell Utility"},
              {0xEE, L"EFI GPT"},
              {0xFF, L"BBT"},
              {0x00, L"unknown"},
              {0x0D, L"unknown"},
              {0xED, L"unknown"}},
             PartitionTypeName);
}

struct GptRow {
  std::string guid;  // registry form
  std::wstring name;
};

// The first and the last, those whose partitions are decoded, and some that differ in few bytes.
const GptRow kGptTypes[] = {
    {"00000000-0000-0000-0000-000000000000", L"Unused Entry"},
    {"C12A7328-F81F-11D2-BA4B-00A0C93EC93B", L"EFI Partition Scheme"},
    {"EBD0A0A2-B9E5-4433-87C0-68B6B72699C7", L"Windows/Linux : Data Partition"},
    {"5808C8AA-7E8F-42E0-85D2-E1E90434CFB3", L"Windows : LDM Metadata Partition"},
    {"DE94BBA4-06D1-4D40-A16A-BFD50179D6AC", L"Windows : Recovery Partition"},
    {"E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D", L"Windows : Storage Space Partition"},
    {"558D43C5-A1AC-43C0-AAC8-D1472B2923D1", L"Microsoft Storage Replication Db"},
    {"516E7CB6-6ECF-11D6-8FF8-00022D09712B", L"FreeBSD : UFS Partition"},
    {"516E7CB8-6ECF-11D6-8FF8-00022D09712B", L"FreeBSD : Vinum Volume Manager Partition"},
    {"52414944-0000-11AA-AA11-00306543ECAC", L"Max OS X : Apple RAID Partition"},
    {"6A898CC3-1DD2-11B2-99A6-080020736631", L"Solaris : /usr Partition"},
    {"6A8D2AC7-1DD2-11B2-99A6-080020736631", L"Solaris : Reserved Partition"},
    {"9198EFFC-31C0-11DB-8F78-000C2911D1B8", L"VMWare Reserved Partition"},
};

// The bytes on disk: the first three groups least significant byte first.
std::array<u8, 16> OnDisk(const std::string& guid) {
  std::string digits;
  for (const char character : guid) {
    if (character != '-') digits += character;
  }
  std::array<u8, 16> bytes{};
  constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<u8>(std::stoul(digits.substr(2 * kOrder[i], 2), nullptr, 16));
  return bytes;
}

TEST(GptTypeName, SomeRows) {
  for (const GptRow& row : kGptTypes)
    EXPECT_EQ(std::wstring(GptTypeName(OnDisk(row.guid))), row.name) << row.guid;
}

// Every byte of a GUID counts: with any one changed, no row is left or it is another one.
TEST(GptTypeName, OneWrongByteIsEnough) {
  for (const GptRow& row : kGptTypes) {
    for (std::size_t i = 0; i < 16; ++i) {
      auto guid = OnDisk(row.guid);
      guid[i] = static_cast<u8>(guid[i] ^ 0x80);
      EXPECT_EQ(std::wstring(GptTypeName(guid)), L"unknown") << row.guid << " byte " << i;
    }
  }
}

// The registry form's bytes in its own order are another GUID.
TEST(GptTypeName, IsTheOnDiskLayout) {
  constexpr std::array<u8, 16> kEfiOnDisk = {0x28, 0x73, 0x2A, 0xC1, 0x1F, 0xF8, 0xD2, 0x11,
                                             0xBA, 0x4B, 0x00, 0xA0, 0xC9, 0x3E, 0xC9, 0x3B};
  constexpr std::array<u8, 16> kEfiAsWritten = {0xC1, 0x2A, 0x73, 0x28, 0xF8, 0x1F, 0x11, 0xD2,
                                                0xBA, 0x4B, 0x00, 0xA0, 0xC9, 0x3E, 0xC9, 0x3B};
  EXPECT_EQ(std::wstring(GptTypeName(kEfiOnDisk)), L"EFI Partition Scheme");
  EXPECT_EQ(std::wstring(GptTypeName(kEfiAsWritten)), L"unknown");
}

}  // namespace
}  // namespace trovisk
