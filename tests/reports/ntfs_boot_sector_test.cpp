// Reports and registrations of NTFS boot sectors and their backups.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;
constexpr u64 kBackup = 1063;  // the volume's sector plus its 1000 sectors

Disk WithPartition(u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1001}}});
  return disk;
}

Disk WithVolume(const NtfsBootSector& boot, u32 sectorSize = 512) {
  Disk disk = WithPartition(sectorSize);
  PutNtfsBootSector(disk, kVolume, boot);
  return disk;
}

std::string Line(const std::string& report, const std::string& label) {
  const std::size_t at = report.find(label);
  return at == std::string::npos
             ? "no line " + label
             : report.substr(at + label.size(), report.find('\n', at) - at - label.size());
}

// The messages of a report, one text for all: from the first "Error Message#" to the empty line.
std::string Messages(const Disk& disk) {
  const std::string report = ReportOf(disk, kVolume);
  const std::size_t at = report.find("Error Message#");
  return at == std::string::npos ? "no messages" : report.substr(at, report.find("\n\n", at) + 1 - at);
}

TEST(NtfsBootSector, Windows2000PrintsFourMessages) {
  const Disk disk = WithVolume({.code = BootCode::kNtfsW1999});
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), Expected("ntfs_windows_2000.txt", disk)));
}

TEST(NtfsBootSector, WindowsVista) {
  const Disk disk = WithVolume({.code = BootCode::kNtfsVista});
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), Expected("ntfs_vista.txt", disk)));
}

TEST(NtfsBootSector, Windows7) {
  const Disk disk = WithVolume({.code = BootCode::kNtfsWindows7});
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), Expected("ntfs_windows_7.txt", disk)));
}

// Three messages, one of them empty, and every field of the block with a value of its own. The backup's
// sector wraps to 0, which has another entry.
TEST(NtfsBootSector, Windows8PrintsThreeMessages) {
  const Disk disk = WithVolume({.code = BootCode::kNtfsWindows8,
                                .oemName = "NT\x01~S",
                                .bytesPerSector = 4096,
                                .sectorsPerCluster = 0xF4,
                                .reservedSectors = 65535,
                                .mediaDescriptor = 0xF1,
                                .sectorsPerTrack = 17,
                                .heads = 16,
                                .hiddenSectors = 4294967295,
                                .totalSectors = ~u64{0} - 62,
                                .mftCluster = u64{1} << 63,
                                .mftMirrorCluster = 1311768467463790320,
                                .clustersPerRecordSegment = 0xFFFFFFF6,
                                .clustersPerIndexBlock = 0xFFFFFFF6,
                                .volumeSerial = 0xFEDCBA9876543210,
                                .messages = {"First", "", "Third"}});
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), Expected("ntfs_windows_8.txt", disk)));
}

// A boot sector that the identification knows and the heading does not: no bootstrap block, and the end mark
// directly below the BIOS parameter block.
TEST(NtfsBootSector, BetaCodeIsUnknown) {
  const Disk disk = WithVolume({.code = BootCode::kNtfsWindows8Beta});
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), Expected("ntfs_unknown.txt", disk)));
}

// Both passes say so and end; nothing is dumped or registered.
TEST(NtfsBootSector, BadEndMarkEndsThePass) {
  for (const u16 endMark : std::initializer_list<u16>{0xAA54, 0x2A55, 0x55AA, 0x0000}) {
    const Disk disk = WithVolume({.endMark = endMark});
    const std::string complaint = "Not a valid NTFS boot sector end marker @ sector # 63\n";
    EXPECT_TRUE(SameText(ReportOf(disk, kVolume, complaint),
                         "Reading sector # 63 [Windows 8 / 10 NTFS boot sector]\n" + complaint));
    EXPECT_TRUE(SameText(TocOf(disk), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n"));
  }
}

TEST(NtfsBootSector, RegistersBootCodeMirrorMftAndBackup) {
  Disk disk = WithVolume({});
  PutNtfsBootSector(disk, kBackup, {});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tNTFS Boot Sector\n"
                       "        64\tNTFS boot sector +1\n"
                       "        79\tMFTMirr\n"
                       "        95\tMFT\n"
                       "      1063\tBackup NTFS boot sector\n"));
}

// With such sectors the boot code's second stage lies in the boot sector itself.
TEST(NtfsBootSector, NoBootCodeSectorOn4096ByteSectors) {
  Disk disk = WithVolume({.bytesPerSector = 4096, .sectorsPerCluster = 1}, 4096);
  PutNtfsBootSector(disk, kBackup, {});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tNTFS Boot Sector\n"
                       "        65\tMFTMirr\n"
                       "        67\tMFT\n"
                       "      1063\tBackup NTFS boot sector\n"));
}

// Every other sector size has one, whatever the volume's own field says.
TEST(NtfsBootSector, BootCodeSectorOn2048ByteSectors) {
  Disk disk = WithVolume({.bytesPerSector = 4096, .sectorsPerCluster = 1}, 2048);
  PutNtfsBootSector(disk, kBackup, {});
  EXPECT_NE(TocOf(disk).find("        64\tNTFS boot sector +1\n"), std::string::npos);
}

// The report decodes the byte from 0x81 on, the arithmetic from 0x80 on: 0x80 shows 128 and counts as 1.
TEST(NtfsBootSector, SectorsPerClusterAsShownAndAsCounted) {
  struct Case {
    u8 stored;
    std::string shown;
    u64 counted;
  };
  for (const Case& it :
       {Case{0x00, "0", 0}, Case{0x08, "8", 8}, Case{0x7F, "127", 127}, Case{0x80, "128", 1},
        Case{0x81, "2147483648", 2147483648}, Case{0xE0, "1", 1}, Case{0xE1, "2147483648", 2147483648},
        Case{0xF4, "4096", 4096}, Case{0xFF, "2", 2}}) {
    const Disk disk = WithVolume(
        {.sectorsPerCluster = it.stored, .totalSectors = 500, .mftCluster = 3, .mftMirrorCluster = 5});
    SCOPED_TRACE(it.shown);
    EXPECT_EQ(Line(ReportOf(disk, kVolume), "\tSectors/Cluster            : "), it.shown);
    const std::string toc = TocOf(disk);
    // Cluster 0-sized volumes point both at the boot sector, which keeps its entry.
    const bool registered = it.counted != 0;
    EXPECT_EQ(toc.find(std::to_string(63 + 3 * it.counted) + "\tMFT\n") != std::string::npos, registered)
        << toc;
    EXPECT_EQ(toc.find(std::to_string(63 + 5 * it.counted) + "\tMFTMirr\n") != std::string::npos, registered)
        << toc;
  }
}

// All 32 bits count: a size code in one byte is a positive number. From an exponent of 31 on the power of two
// leaves the 32 bits.
TEST(NtfsBootSector, ClustersPerFileRecordSegment) {
  const std::pair<u32, std::string> cases[] = {
      {0xFFFFFFF6, "1024"},        {0x000000F6, "246"},        {0xFFFFFFFF, "2"},
      {0x00000000, "0"},           {0xFFFFFFE2, "1073741824"},  // -30
      {0xFFFFFFE1, "-2147483648"},                              // -31
      {0xFFFFFFE0, "0"},                                        // -32
      {0xFFFFFFDF, "2"},                                        // -33
      {0x80000000, "0"},           {0x7FFFFFFF, "2147483647"},
  };
  for (const auto& [stored, shown] : cases) {
    const Disk disk = WithVolume({.clustersPerRecordSegment = stored});
    EXPECT_EQ(Line(ReportOf(disk, kVolume), "\tClusters/File Record Seg.  : "), shown) << stored;
  }
}

// Products and sums wrap at 2^64: the backup of a volume of 2^64 - 1 sectors stands before it.
TEST(NtfsBootSector, ClusterProductsWrap) {
  const Disk disk = WithVolume({.sectorsPerCluster = 8,
                                .totalSectors = ~u64{0},
                                .mftCluster = 0x2000000000000004,
                                .mftMirrorCluster = 0xE000000000000002});
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        62\tBackup NTFS boot sector\n"
                       "        63\tNTFS Boot Sector\n"
                       "        64\tNTFS boot sector +1\n"
                       "        79\tMFTMirr\n"
                       "        95\tMFT\n"));
}

// Where the volume's structures coincide, the one that is registered first keeps the sector.
TEST(NtfsBootSector, FirstRegistrationKeepsTheSector) {
  const auto toc = [](const NtfsBootSector& boot) { return TocOf(WithVolume(boot)); };
  const std::string begin = "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n";
  EXPECT_TRUE(
      SameText(toc({.sectorsPerCluster = 1, .totalSectors = 1, .mftCluster = 1, .mftMirrorCluster = 1}),
               begin + "        64\tNTFS boot sector +1\n"));
  EXPECT_TRUE(
      SameText(toc({.sectorsPerCluster = 1, .totalSectors = 9, .mftCluster = 9, .mftMirrorCluster = 9}),
               begin + "        64\tNTFS boot sector +1\n        72\tMFTMirr\n"));
  EXPECT_TRUE(
      SameText(toc({.sectorsPerCluster = 1, .totalSectors = 9, .mftCluster = 9, .mftMirrorCluster = 0}),
               begin + "        64\tNTFS boot sector +1\n        72\tMFT\n"));
}

// Targets beyond the disk are registered as they are. The loading pass reads the first entry behind its
// position, here the backup, and ends there.
TEST(NtfsBootSector, TargetsBeyondTheDisk) {
  const Disk disk = WithVolume({.totalSectors = 10'000'000, .mftCluster = 2'000'000});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n"));
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n"
                       "        63\tNTFS Boot Sector\n"
                       "        64\tNTFS boot sector +1\n"
                       "        79\tMFTMirr\n"
                       "  10000063\tBackup NTFS boot sector\n"
                       "  16000063\tMFT\n"));
}

// An unbounded whole-disk run reaches the sector behind a disk that ends with the boot sector. Its header
// line stands before the failed read, and the pass ends.
TEST(NtfsBootSector, BootCodeSectorBeyondTheDisk) {
  Disk disk = WithVolume({});
  disk.Resize(64);
  const Outcome outcome = RunOn(disk, {"-1", "-1"});
  EXPECT_EQ(outcome.status, 0);
  const std::string failure = ReadBehindTheEnd(512) + "Error reading sector\n";
  EXPECT_TRUE(SameText(outcome.err, failure + failure));
  EXPECT_NE(outcome.out.find("Reading sector # 64 [NTFS boot sector +1]\n\n\tTable Of Contents\n"),
            std::string::npos);
}

// The same for a backup, which an image that was cut short has lost.
TEST(NtfsBootSector, BackupBeyondTheDisk) {
  const Disk disk = WithVolume({.totalSectors = 10'000'000});
  const Outcome outcome = RunOn(disk, {"-1", "-1"});
  EXPECT_EQ(outcome.status, 0);
  const std::string failure = ReadBehindTheEnd(512) + "Error reading sector\n";
  EXPECT_TRUE(SameText(outcome.err, failure + failure));
  EXPECT_NE(outcome.out.find("Reading sector # 10000063 [Backup NTFS boot sector]\n\n\tTable Of Contents\n"),
            std::string::npos);
}

TEST(NtfsBootSector, BackupPrintsTheSameReport) {
  Disk disk = WithVolume({});
  PutNtfsBootSector(disk, kBackup, {.code = BootCode::kNtfsVista});
  EXPECT_TRUE(SameText(ReportOf(disk, kBackup), Expected("ntfs_backup.txt", disk)));
}

TEST(NtfsBootSector, BackupWithoutKnownCodeIsUnknown) {
  Disk disk = WithVolume({});
  PutNtfsBootSector(disk, kBackup, {.code = std::nullopt});
  EXPECT_TRUE(SameText(ReportOf(disk, kBackup), Expected("ntfs_backup_unknown.txt", disk)));
}

// Its own message alone, then the dump, and the pass goes on: here to a second volume behind the backup.
TEST(NtfsBootSector, BackupWithBadEndMarkIsDumped) {
  Disk disk(4096);
  PutBootRecord(
      disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1001}, {.type = 0x07, .first = 2000}}});
  PutNtfsBootSector(disk, kVolume, {});
  PutNtfsBootSector(disk, kBackup, {.endMark = 0xAA54});
  PutNtfsBootSector(disk, 2000, {.totalSectors = 0});
  const std::string complaint = "Not a valid NTFS backup boot sector end marker @ sector # 1063\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kBackup, complaint),
                       ExpandExpected("Reading sector # 1063 [Backup NTFS boot sector]\n" + complaint +
                                          "Reading sector # 1063 [as a raw sector]\n{{dump 1063}}\n",
                                      disk)));
  EXPECT_NE(TocOf(disk).find("      2001\tNTFS boot sector +1\n"), std::string::npos);
}

TEST(NtfsBootSector, EmptyBackupIsDumpedAsEmpty) {
  const Disk disk = WithVolume({});
  const std::string complaint = "Not a valid NTFS backup boot sector end marker @ sector # 1063\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kBackup, complaint),
                       "Reading sector # 1063 [Backup NTFS boot sector]\n" + complaint +
                           "Reading sector # 1063 [as a raw sector]\n... empty ...\n"));
}

// The raw dump shows the whole sector, the report its first 512 bytes.
TEST(NtfsBootSector, DumpShowsTheWholeSectorOf4096Bytes) {
  Disk disk = WithVolume({.code = BootCode::kNtfsWindows7, .bytesPerSector = 4096}, 4096);
  disk.At(kVolume).Text(0xFF0, "last row");
  std::string expected = Expected("ntfs_windows_7.txt", disk);
  expected.replace(expected.find(": 512\n"), 6, ": 4096\n");
  EXPECT_TRUE(SameText(ReportOf(disk, kVolume), expected));
}

// Each message's place is the first one's plus the difference of the offset bytes, down as well as up. 0x1FE
// is the end mark's first byte, 0x200 the first behind the sector.
TEST(NtfsBootSector, MessagesByOffsetBytes) {
  Disk disk = WithVolume({.code = BootCode::kNtfsVista, .messages = {}});
  disk.At(kVolume).Text(0x180, "base").Bytes(0x1F8, {0x10, 0x0E, 0x8E, 0x90});
  EXPECT_TRUE(SameText(Messages(disk),
                       "Error Message#1 [ base ]\n"
                       "Error Message#2 [ <0xED><0xF4>base ]\n"
                       "Error Message#3 [ U<0xAA> ]\n"
                       "Error Message#4 [  ]\n"));
}

// The first message is there whatever its own offset is; the others reach 255 bytes down, into the code.
TEST(NtfsBootSector, MessageOffsetBytesAtTheirMaximum) {
  Disk disk = WithVolume({.code = BootCode::kNtfsVista, .messages = {}});
  disk.At(kVolume).Text(0x180, "base").Bytes(0x1F8, {0xFF, 0x00, 0xFF, 0xFE});
  const std::string messages = Messages(disk);
  // 0x180 - 0xFF: byte 45 of the code, which is (0x11 + 0x0D * 14 + 7 * 45) mod 256, and 7 more each.
  EXPECT_EQ(messages.find(
                "Error Message#1 [ base ]\nError Message#2 [ <0x02><0x09><0x10><0x17><0x1E>%,3:AHOV]dkry"),
            0U)
      << messages;
  EXPECT_NE(messages.find("Error Message#3 [ base ]\n"), std::string::npos) << messages;
}

TEST(NtfsBootSector, MessageBytesAtTheLastByteAndBehindIt) {
  Disk disk = WithVolume({.code = BootCode::kNtfsW1999, .messages = {}});
  disk.At(kVolume).Bytes(0x1F8, {0x00, 0x7C, 0x7D, 0xFF});  // 0x183 + 0x7C = 0x1FF
  EXPECT_TRUE(SameText(Messages(disk),
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ <0xAA> ]\n"
                       "Error Message#3 [  ]\n"
                       "Error Message#4 [  ]\n"));
}

// A text without a NUL goes on to the sector's end, over the offsets and the end mark.
TEST(NtfsBootSector, MessageWithoutEnd) {
  Disk disk = WithVolume({.code = BootCode::kNtfsWindows7, .messages = {}});
  disk.At(kVolume).Fill(0x1F0, 8, 'm').Bytes(0x1F8, {0x8C, 0xF4, 0x8C, 0x8C}).Bytes(0x1FC, {'t', 'x'});
  EXPECT_TRUE(SameText(Messages(disk),
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ mmmm<0x8C><0xF4><0x8C><0x8C>txU<0xAA> ]\n"
                       "Error Message#3 [  ]\n"
                       "Error Message#4 [  ]\n"));
}

// Word offsets reach beyond the sector on both sides: positions before its first byte and behind its last
// print nothing.
TEST(NtfsBootSector, MessagesByOffsetWords) {
  struct Case {
    u16 first, second, third;
    std::string secondText, thirdText;
  };
  for (const Case& it : {
           Case{0x018A, 0x0000, 0x01FF, "<0xEB>R<0x90>NTFS    ", "<0xAA>"},
           Case{0x018B, 0x0000, 0x0201, "", ""},
           Case{0x0000, 0x0076, 0xFFFF, "", ""},
           Case{0xFFFF, 0x0000, 0xFFFF, "", "base"},
           Case{0x7FFF, 0x8074, 0x8000, "<0xAA>", "ase"},
       }) {
    Disk disk = WithVolume({.code = BootCode::kNtfsWindows8, .messages = {}});
    disk.At(kVolume).Text(0x18A, "base").U8(0x00B, 0);
    disk.At(kVolume).Le16(0x1F6, it.first).Le16(0x1F8, it.second).Le16(0x1FA, it.third);
    EXPECT_TRUE(SameText(Messages(disk), "Error Message#1 [ base ]\nError Message#2 [ " + it.secondText +
                                             " ]\nError Message#3 [ " + it.thirdText + " ]\n"));
  }
}

}  // namespace
}  // namespace trovisk::test
