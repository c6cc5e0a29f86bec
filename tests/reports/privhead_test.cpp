// Reports of PRIVHEAD, the private header of a dynamic disk.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

// Every field has a value of its own.
Privhead DetailedPrivhead() {
  return {.sequence = 41,
          .timestamp = 133'000'000'000'000'000,
          .alternate1 = 1856,
          .alternate2 = 2047,
          .diskId = "2f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80",
          .hostId = "1b77da20-c717-11d0-a5be-00a0c91db73c",
          .groupId = "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34",
          .groupName = "HOST-Dg0",
          .logicalStart = 63,
          .logicalEnd = 4294967298,
          .configStart = kConfigStart,
          .configSize = 2048,
          .tocCount = 2,
          .tocSize = 50,
          .configCount = 3,
          .logCount = 4,
          .configRegionSize = 1481,
          .logRegionSize = 224,
          .diskSignature = 0x1A2B3C4D,
          .diskSetId = CountingBytes(0x01),
          .diskSetIdCopy = CountingBytes(0xF0)};
}

Disk DiskWith(const Privhead& header) {
  Disk disk = DynamicMbrDisk();
  PutPrivhead(disk, kPrivheadSector, header);
  return disk;
}

TEST(Privhead, Version2Point12HasTwoCopiesOfTheTableOfContents) {
  const Disk disk = DiskWith(DetailedPrivhead());
  EXPECT_TRUE(SameText(ReportOf(disk, kPrivheadSector, "\n"), Expected("ldm_privhead_2_12.txt", disk)));
  EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr("       102\tTOC Sector\n"
                                               "       150\tTOC Sector\n"
                                               "      1956\tAlternate PRIVHEAD Sector\n"
                                               "      2147\tAlternate PRIVHEAD Sector\n")));
}

TEST(Privhead, EveryOtherVersionHasFourCopies) {
  Privhead header = DetailedPrivhead();
  header.minor = 11;
  const Disk disk = DiskWith(header);
  EXPECT_TRUE(SameText(ReportOf(disk, kPrivheadSector, "\n"), Expected("ldm_privhead_2_11.txt", disk)));
  EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr("       101\tTOC Sector\n"
                                               "       102\tTOC Sector\n"
                                               "       150\tTOC Sector\n"
                                               "       151\tTOC Sector\n"
                                               "      1956\tAlternate PRIVHEAD Sector\n"
                                               "      2147\tAlternate PRIVHEAD Sector\n")));
}

// All four bytes of the version count.
TEST(Privhead, NearlyVersion2Point12IsAnotherVersion) {
  for (const auto& [major, minor] :
       {std::pair<u16, u16>{2, 13}, {3, 12}, {0x0102, 12}, {2, 0x010C}, {12, 2}}) {
    Privhead header = SmallPrivhead();
    header.major = major;
    header.minor = minor;
    const std::string report = ReportOf(DiskWith(header), kPrivheadSector, "\n");
    EXPECT_NE(report.find("TOC #1 starts @ sector     : 101\nTOC #2 starts @ sector     : 102\n"
                          "TOC #3 starts @ sector     : 150\nTOC #4 starts @ sector     : 151\n\n"),
              std::string::npos)
        << major << "." << minor << "\n"
        << report;
  }
}

// The third candidate is then the configuration start, the fourth the first one again.
TEST(Privhead, TocSizeOfZero) {
  Privhead header = SmallPrivhead();
  header.minor = 11;
  header.tocSize = 0;
  const Disk disk = DiskWith(header);
  EXPECT_NE(ReportOf(disk, kPrivheadSector, "\n")
                .find("TOC #1 starts @ sector     : 101\nTOC #2 starts @ sector     : 102\n"
                      "TOC #3 starts @ sector     : 100\nTOC #4 starts @ sector     : 101\n\n"),
            std::string::npos);
  EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr("       100\tTOC Sector\n"
                                               "       101\tTOC Sector\n"
                                               "       102\tTOC Sector\n"
                                               "       160\tAlternate PRIVHEAD Sector\n"
                                               "       161\tAlternate PRIVHEAD Sector\n")));
}

// The empty line behind the list of copies is written whether or not the list is.
TEST(Privhead, AnEmptyLineInEveryPass) {
  const Disk disk = DynamicDisk();
  const Outcome outcome = RunOn(disk, {"7"});
  EXPECT_TRUE(SameText(
      outcome.out, Preamble(disk, " sector 7", "\n") + "\nReading sector # 7 [Raw Sector]\n... empty ...\n"));
  EXPECT_EQ(outcome.err, "");
}

TEST(Privhead, AlternatesWriteTheirEmptyLineToo) {
  Disk disk = DynamicDisk();
  PutPrivhead(disk, 160, SmallPrivhead());
  PutPrivhead(disk, 161, SmallPrivhead());
  PutVmdb(disk, kVmdbSector, {});
  PutKlog(disk, kKlogSector, {});
  const Outcome outcome = RunOn(disk, {"170"});
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 170", "\n\n\n") +
                                        "\n\n\nReading sector # 170 [Raw Sector]\n... empty ...\n"));
  EXPECT_EQ(outcome.err, "");
}

// Nothing ends the name but its length: the byte behind it is not zero here.
TEST(Privhead, GroupNameOf32Characters) {
  Privhead header = SmallPrivhead();
  header.groupName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345X";
  const std::string report = ReportOf(DiskWith(header), kPrivheadSector, "\n");
  EXPECT_NE(report.find("\nDisk Group Name            : [ABCDEFGHIJKLMNOPQRSTUVWXYZ012345]\n"),
            std::string::npos);
}

TEST(Privhead, IdentifiersOf64Characters) {
  const std::string id = "0123456789abcdef0123456789ABCDEF0123456789abcdef0123456789ABCDEF";
  Privhead header = SmallPrivhead();
  header.diskId = header.hostId = header.groupId = id;
  header.groupName = "next";
  const std::string report = ReportOf(DiskWith(header), kPrivheadSector, "\n");
  EXPECT_NE(
      report.find("\nDisk ID GUID               : {" + id + "}\nHost ID GUID               : {" + id +
                  "}\nDisk Group ID GUID         : {" + id + "}\nDisk Group Name            : [next]\n"),
      std::string::npos);
}

TEST(Privhead, NamesWithUnprintableBytes) {
  Privhead header = SmallPrivhead();
  header.groupName = "a\r\n\x07\xC4z";
  const std::string report = ReportOf(DiskWith(header), kPrivheadSector, "\n");
  EXPECT_NE(report.find("\nDisk Group Name            : [a<CR><LF><0x07><0xC4>z]\n"), std::string::npos);
}

// Only 32 bits of the seconds since 1970 count: a time of zero is one in 2009.
TEST(Privhead, TimestampInLocalTimeWithin32Bits) {
  const Disk disk = DiskWith(SmallPrivhead());
  EXPECT_NE(ReportOf(disk, kPrivheadSector, "\n")
                .find("Timestamp                  : Wed Apr 22 19:24:48 2009\n\n\n"),
            std::string::npos);
  const std::string path = ScratchPath("privhead-time.img");
  disk.Write(path);
  const Outcome west = RunProgram(Build::kInventedCode, {path, "6"}, {"TZ=WST+5"});
  EXPECT_NE(west.out.find("Timestamp                  : Wed Apr 22 14:24:48 2009\n\n\n"), std::string::npos);
}

// The alternate at 101 stands before the table of contents, which so counts from another start.
TEST(Privhead, AlternateDecodedLaterMovesTheConfigurationStart) {
  Disk disk = DynamicMbrDisk();
  PutPrivhead(disk, kPrivheadSector,
              {.alternate1 = 1, .alternate2 = 1, .configStart = kConfigStart, .tocSize = 50});
  PutPrivhead(disk, 101, {.alternate1 = 1, .alternate2 = 1, .configStart = 200, .tocSize = 50});
  PutTocBlock(disk, kTocSector, SmallTocBlock());
  const Outcome outcome = RunOn(disk, {"102"});
  EXPECT_NE(outcome.out.find("\nVMDB starts @ sector       : 210\nVBLKs start @ sector       : 211\n"
                             "VBLKs end @ sector         : 212\nKLOGs start @ sector       : 220\n"),
            std::string::npos)
      << outcome.out;
}

TEST(Privhead, WithoutSignatureNothingIsRegistered) {
  Privhead header = SmallPrivhead();
  header.signature = "PRIVHEAd";
  const Disk disk = DiskWith(header);
  const Outcome outcome = RunOn(disk, {"6"});
  EXPECT_TRUE(
      SameText(outcome.out, Preamble(disk, " sector 6") + "Reading sector # 6 [PRIVHEAD Sector]\n\n"));
  // Once in each pass.
  EXPECT_EQ(outcome.err, "**** No PRIVHEAD magic found ****\n**** No PRIVHEAD magic found ****\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr("")));
}

TEST(Privhead, UnreadableSector) {
  Disk disk = DiskWith(SmallPrivhead());
  disk.Resize(6);
  const Outcome outcome = RunOn(disk, {"5"});
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
  EXPECT_EQ(outcome.status, 0);
}

// Sector numbers wrap around: the configuration area starts one sector before the disk.
TEST(Privhead, SectorNumbersWrap) {
  Privhead header = SmallPrivhead();
  header.configStart = ~u64{0};
  const Disk disk = DiskWith(header);
  const std::string report = ReportOf(disk, kPrivheadSector, "\n");
  EXPECT_NE(report.find("\nConfiguration Start Sector : 18446744073709551615\n"), std::string::npos);
  EXPECT_NE(report.find("\nAlt. PRIVHEAD #1 @ sector  : 59\nAlt. PRIVHEAD #2 @ sector  : 60\n\n"
                        "TOC #2 starts @ sector     : 1\nTOC #3 starts @ sector     : 49\n\n"),
            std::string::npos);
  EXPECT_TRUE(SameText(TocOf(disk),
                       "         0\tMaster Boot Record\n         1\tTOC Sector\n"
                       "         6\tPRIVHEAD Sector\n        49\tTOC Sector\n"
                       "        59\tAlternate PRIVHEAD Sector\n"
                       "        60\tAlternate PRIVHEAD Sector\n"));
}

// Sectors beyond the disk are registered as they stand; the walk stops when it cannot read one.
TEST(Privhead, CopiesBeyondTheDisk) {
  Privhead header = SmallPrivhead();
  header.tocSize = 1 << 20;
  const Disk disk = DiskWith(header);
  EXPECT_NE(TocOf(disk).find("   1048676\tTOC Sector\n"), std::string::npos);
}

// The header is the first 512 bytes of a larger sector; the dump shows all of it.
TEST(Privhead, On4096ByteSectors) {
  Disk disk = DynamicMbrDisk(4096);
  PutPrivhead(disk, kPrivheadSector, DetailedPrivhead()).Text(4080, "the end");
  std::string expected = Expected("ldm_privhead_2_12.txt", disk);
  EXPECT_NE(expected.find("0xFF0  74 68 65 20 65 6E 64"), std::string::npos);
  EXPECT_TRUE(SameText(ReportOf(disk, kPrivheadSector, "\n"), expected));
}

// On a GPT disk it is the last sector of the LDM metadata partition, under a name in small letters. All that
// it points to stands before it, so only the printing pass gets there.
TEST(Privhead, OnAGptDisk) {
  Disk disk;
  PutGpt(disk, {{.type = kLdmMetadataType, .first = 1000, .last = 2023}});
  PutLdmDatabase(disk, {.privhead = 2023, .configStart = 1000});
  const Outcome outcome = RunOn(disk, {"2023"});
  const std::string start = Preamble(disk, " sector 2023", "\n") + "\n\n" +
                            "Reading sector # 2023 [PRIVHEAD sector]\n\n"
                            "Magic Number               : [PRIVHEAD]\n";
  EXPECT_TRUE(SameText(outcome.out.substr(0, start.size()), start));
  EXPECT_EQ(outcome.err, "");
  const std::string toc = TocOf(disk);
  EXPECT_NE(toc.find("      1002\tTOC Sector\n      1008\tVMDB Sector\n      1009\tVBLK Sector\n"
                     "      1010\tVBLK Sector\n      1011\tVBLK Sector\n      1012\tVBLK Sector\n"
                     "      1013\tVBLK Sector\n      1020\tKLOG Sector\n      1021\tKLOG Sector\n"
                     "      1056\tAlternate PRIVHEAD Sector\n      1060\tTOC Sector\n"
                     "      1063\tAlternate PRIVHEAD Sector\n      2023\tPRIVHEAD sector\n"),
            std::string::npos)
      << toc;
}

}  // namespace
}  // namespace trovisk::test
