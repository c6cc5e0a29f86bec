// Reports of BitLocker boot sectors.

#include "tests/disks/bitlocker.h"

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;

template <typename Boot>
Disk WithVolume(const Boot& boot) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1000}}});
  PutBitLocker(disk, kVolume, boot);
  return disk;
}

std::string Report(const Disk& disk) {
  return ReportOf(disk, kVolume);
}

// From the line that begins so to its end.
std::string Line(const std::string& report, const std::string& begin) {
  const std::size_t at = report.find("\n" + begin);
  return at == std::string::npos ? "no line " + begin
                                 : report.substr(at + 1, report.find('\n', at + 1) - at - 1);
}

TEST(BitLocker, WindowsVista) {
  Disk disk = WithVolume(BitLockerVista{.flags = 0x0A,
                                        .bpbVersion = 0x28,
                                        .reserved = 0xFE,
                                        .totalSectors = ~u64{1},
                                        .mftCluster = 9223372036854775809ULL,
                                        .metadataCluster = 1311768467463790320,
                                        .indexEntrySize = 244,
                                        .checksum = 0x0089ABCD});
  disk.At(kVolume).Bytes(0x041, {0x0A, 0x0B, 0x0C}).Bytes(0x045, {0x0D, 0x0E, 0x0F});
  for (std::size_t i = 0x054; i < 0x1FE; ++i)
    disk.At(kVolume).U8(i, i * 3);
  std::string expected = Expected("bitlocker_vista.txt", disk);
  const std::string entrySize = "<MFT entry size>";
  expected.replace(expected.find(entrySize), entrySize.size(), "\xF6");
  EXPECT_TRUE(SameText(Report(disk), expected));
}

// The byte goes out as it is, line feeds and NUL bytes too.
TEST(BitLocker, MftEntrySizeIsACharacter) {
  for (const u8 size : std::initializer_list<u8>{0x00, 0x0A, 0x31, 0x80, 0xFF}) {
    const std::string report = Report(WithVolume(BitLockerVista{.mftEntrySize = size}));
    const std::string line =
        "\nMFT Entry Size                         : " + std::string(1, static_cast<char>(size)) +
        "\nUnknown #1                             : 0x000000\n";
    EXPECT_NE(report.find(line), std::string::npos) << unsigned{size};
  }
}

TEST(BitLocker, Windows7) {
  Disk disk = WithVolume(BitLockerSeven{.sectorsPerFat = 4294967294,
                                        .fatFlags = 0xFEDC,
                                        .rootCluster = 4294967293,
                                        .infoSector = 65532,
                                        .copySector = 65531,
                                        .volumeSerial = 0x89AB3412,
                                        .fileSystem = "FAT\xFF"
                                                      "2",
                                        .metadata = {~u64{0}, u64{1} << 63, 1311768467463790320},
                                        .messageOffsets = {0x00, 0x0F, 0x20}});
  Sector& boot = disk.At(kVolume);
  boot.Bytes(0x034, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}).U8(0x041, 0x0E);
  for (std::size_t i = 0x05A; i < 0x0A0; ++i)
    boot.U8(i, i * 5);
  for (std::size_t i = 0; i < 56; ++i)
    boot.U8(0x0C8 + i, 0xA0 + i);
  for (std::size_t i = 0x148; i < 0x1FB; ++i)
    boot.U8(i, i);
  boot.Text(0x100, "\r\nFirst text").Text(0x10F, "Second text").Text(0x120, "Third text, longer than both");
  EXPECT_TRUE(SameText(Report(disk), Expected("bitlocker_windows_7.txt", disk)));
}

TEST(BitLocker, UnknownPrintsTheCommonFields) {
  Disk disk = WithVolume(BitLockerSeven{});
  PutBitLockerCommon(disk, kVolume,
                     {.jump = {0xEB, 0x58, 0x00},
                      .bytesPerSector = 4096,
                      .sectorsPerCluster = 244,
                      .reservedSectors = 65534,
                      .fats = 253,
                      .rootEntries = 65532,
                      .totalSectors16 = 65531,
                      .mediaDescriptor = 0xF0,
                      .sectorsPerFat16 = 65530,
                      .sectorsPerTrack = 65529,
                      .heads = 65528,
                      .hiddenSectors = 4294967291,
                      .totalSectors32 = 4294967290});
  EXPECT_TRUE(SameText(Report(disk), Expected("bitlocker_unknown.txt", disk)));
}

TEST(BitLocker, LayoutByJumpInstruction) {
  const auto heading = [](std::array<u8, 3> jump) {
    Disk disk = WithVolume(BitLockerSeven{});
    disk.At(kVolume).Bytes(0, jump);
    const std::string report = Report(disk);
    const std::size_t at = report.find("\n\n") + 2;
    return report.substr(at, report.find("\nJump") - at);
  };
  EXPECT_EQ(heading({0xEB, 0x52, 0x90}), "Windows Vista Bitlocker Boot Sector\n" + std::string(36, '-'));
  EXPECT_EQ(heading({0xEB, 0x58, 0x90}), "Windows 7 Bitlocker Boot Sector\n" + std::string(32, '-'));
  const std::string unknown = "Unknown Bitlocker Boot Sector\n" + std::string(30, '-');
  EXPECT_EQ(heading({0xEB, 0x58, 0x00}), unknown);
  EXPECT_EQ(heading({0xEB, 0x52, 0x91}), unknown);
  EXPECT_EQ(heading({0xE9, 0x52, 0x90}), unknown);
  EXPECT_EQ(heading({0xEB, 0x53, 0x90}), unknown);
}

// Both passes say so and end, so that the partition behind is not loaded.
TEST(BitLocker, BadEndMarkEndsThePass) {
  for (const u16 endMark : std::initializer_list<u16>{0xAA54, 0x2A55, 0x55AA, 0x0000}) {
    const Disk disk = WithVolume(BitLockerVista{.common = {.jump = {0xEB, 0x52, 0x90}, .endMark = endMark}});
    const std::string complaint = "Not a valid Bitlocker boot sector end marker @ sector # 63\n";
    EXPECT_TRUE(SameText(ReportOf(disk, kVolume, complaint),
                         "Reading sector # 63 [Bitlocker Boot sector]\n" + complaint));
  }
}

// Nothing is registered, and the pass goes on with the next sector: a record that registers one of its own.
TEST(BitLocker, RegistersNothing) {
  Disk disk = WithVolume(BitLockerSeven{});
  PutBootRecord(
      disk, 0,
      {.entries = {{.type = 0x07, .first = kVolume, .count = 1}, {.type = 0x05, .first = 64, .count = 99}}});
  PutBootRecord(disk, 64, {.entries = {{.type = 0x07, .first = 9, .count = 50}}});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tNTFS Boot Sector\n"
                       "        64\tSupplementary Boot Record\n"
                       "        73\tNTFS Boot Sector\n"));
}

// The first message stands at its own offset, the second and third at their distance from the first; the
// first two end one byte before the next one's offset.
TEST(BitLocker, MessagesAreBoundedByTheNextOffset) {
  struct Case {
    std::array<u8, 3> offsets;
    std::string texts[3];
  };
  // Letters from 0x100 to 0x15F, the whole alphabet over and over, then zeros.
  const auto letters = [](int from, int count) {
    std::string text;
    for (int i = from; i < from + count; ++i)
      text += static_cast<char>('a' + i % 26);
    return text;
  };
  const Case cases[] = {
      {{0x00, 0x20, 0x40}, {letters(0x00, 31), letters(0x20, 31), letters(0x40, 32)}},
      {{0x10, 0x20, 0x40}, {letters(0x10, 15), letters(0x10, 31), letters(0x30, 48)}},
      {{0x00, 0x01, 0x02}, {"", "", letters(0x02, 94)}},                       // bounds of 0
      {{0x00, 0x02, 0x04}, {"a", "c", letters(0x04, 92)}},                     // bounds of 1
      {{0x08, 0x08, 0x08}, {letters(8, 88), letters(0, 96), letters(0, 96)}},  // bounds that wrap
      {{0x08, 0x07, 0x06}, {letters(8, 88), "~" + letters(0, 96), "-~" + letters(0, 96)}},
      {{0x00, 0xFF, 0xFF}, {letters(0, 96), "<0xAA>", "<0xAA>"}},
      {{0xFF, 0xFF, 0xFF}, {"<0xAA>", letters(0, 96), letters(0, 96)}},
      {{0xFE, 0xFF, 0x00}, {"", letters(1, 95), "<0x90>-FVE-FS-"}},
      {{0xFD, 0xFF, 0x00}, {"", letters(2, 94), "-FVE-FS-"}},
  };
  for (const Case& it : cases) {
    Disk disk = WithVolume(BitLockerSeven{.messageOffsets = it.offsets});
    disk.At(kVolume).Text(0x0FE, "-~").Text(0x100, letters(0, 96));
    const std::string report = Report(disk);
    for (int i = 0; i < 3; ++i) {
      const std::string begin = "Error Message#" + std::to_string(i + 1) + " [ ";
      EXPECT_EQ(Line(report, begin), begin + it.texts[i] + " ]")
          << unsigned{it.offsets[0]} << " " << unsigned{it.offsets[1]};
    }
  }
}

// An unbounded text without a NUL goes on to the sector's end, over the offsets and the end mark.
TEST(BitLocker, MessageWithoutEnd) {
  Disk disk = WithVolume(BitLockerSeven{.messageOffsets = {0xF8, 0xF1, 0x01}});
  disk.At(kVolume).Text(0x1F8, "end");
  EXPECT_EQ(Line(Report(disk), "Error Message#1"), "Error Message#1 [ end<0xF8><0xF1><0x01>U<0xAA> ]");
}

}  // namespace
}  // namespace trovisk::test
