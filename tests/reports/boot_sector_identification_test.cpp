// Identification of a partition's boot sector. Most of these boot sectors hold nothing but what they are
// recognised by: without an end mark the decoder that they are handed to prints its header line, refuses them
// and ends the pass, which shows who was called, under which description, and that its result is passed on.

#include <gtest/gtest.h>

#include "tests/disks/boot_code.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

using namespace std::string_view_literals;

constexpr u64 kBootSector = 63;

// A disk with one partition of type 7, whose boot sector is to be filled.
Disk DiskWithPartition(u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBootSector, .count = 1000}}});
  disk.At(kBootSector);
  return disk;
}

Disk DiskWithCode(BootCode code) {
  Disk disk = DiskWithPartition();
  PutInventedCode(disk.At(kBootSector), code);
  return disk;
}

// The report of a boot sector that no class fits.
std::string UnknownReport(const Disk& disk) {
  return ExpandExpected("Reading sector # 63 [Unknown boot sector]\n{{dump 63}}", disk);
}

struct CodeClass {
  BootCode code;
  std::string header;   // the header line of the decoder that the class calls
  std::string refusal;  // and what it prints of a missing end mark
};

const CodeClass kClasses[] = {
    {BootCode::kFatMsWin41, "Reading FAT sector # 63 [MSWIN4.1 FAT boot sector]\n",
     "Not a valid FAT boot sector end marker\n"},
    {BootCode::kFatMsDos50, "Reading FAT sector # 63 [MSDOS5.0 FAT boot sector]\n",
     "Not a valid FAT boot sector end marker\n"},
    {BootCode::kFat32MsWin41, "Reading FAT sector # 63 [MSWIN4.1 FAT32 boot sector]\n",
     "Not a valid FAT boot sector end marker\n"},
    {BootCode::kFat32MsDos50, "Reading FAT sector # 63 [MSDOS5.0 FAT32 boot sector]\n",
     "Not a valid FAT boot sector end marker\n"},
    {BootCode::kFat32Vista, "Reading FAT sector # 63 [Vista FAT32 boot sector]\n",
     "Not a valid FAT boot sector end marker\n"},
    {BootCode::kNtfsW1999, "Reading sector # 63 [W1999 NTFS boot sector]\n",
     "Not a valid NTFS boot sector end marker @ sector # 63\n"},
    {BootCode::kNtfsVista, "Reading sector # 63 [Vista NTFS boot sector]\n",
     "Not a valid NTFS boot sector end marker @ sector # 63\n"},
    {BootCode::kNtfsWindows7, "Reading sector # 63 [Windows 7 / 2008 R2 NTFS boot sector]\n",
     "Not a valid NTFS boot sector end marker @ sector # 63\n"},
    {BootCode::kNtfsWindows8Beta, "Reading sector # 63 [Windows 8 (Beta NTFS boot sector]\n",
     "Not a valid NTFS boot sector end marker @ sector # 63\n"},
    {BootCode::kNtfsWindows8, "Reading sector # 63 [Windows 8 / 10 NTFS boot sector]\n",
     "Not a valid NTFS boot sector end marker @ sector # 63\n"},
    {BootCode::kExFat, "Reading sector # 63 [exFAT boot sector]\n",
     "Not a valid exFAT boot sector end marker @ sector # 63\n"},
};

// The class name is the description that the decoder prints; its own refusal comes in both passes.
TEST(BootSectorIdentification, HandsKnownCodeToItsDecoder) {
  for (const CodeClass& row : kClasses) {
    EXPECT_TRUE(
        SameText(ReportOf(DiskWithCode(row.code), kBootSector, row.refusal), row.header + row.refusal));
  }
}

// The sector size changes neither what is compared nor where: the first 512 bytes.
TEST(BootSectorIdentification, KnownCodeInALargeSector) {
  for (const CodeClass& row : kClasses) {
    Disk disk = DiskWithPartition(4096);
    PutInventedCode(disk.At(kBootSector), row.code);
    disk.At(kBootSector).U8(0xFFF, 1);
    EXPECT_TRUE(SameText(ReportOf(disk, kBootSector, row.refusal), row.header + row.refusal));
  }
}

// The first and the last byte of each stretch count; the ones beside it do not.
TEST(BootSectorIdentification, OneByteOffIsUnknown) {
  for (const CodeClass& row : kClasses) {
    const BootCodeRow& stretch = RowOf(row.code);
    for (const std::size_t changed : {stretch.offset, stretch.offset + stretch.length - 1}) {
      SCOPED_TRACE(row.header + std::to_string(changed));
      Disk disk = DiskWithCode(row.code);
      Sector& sector = disk.At(kBootSector);
      sector.U8(changed, U8At(sector.View(), changed) ^ 0x80U);
      EXPECT_TRUE(SameText(ReportOf(disk, kBootSector), UnknownReport(disk)));
    }
    Disk disk = DiskWithCode(row.code);
    disk.At(kBootSector).U8(stretch.offset - 1, 0xA5).U8(stretch.offset + stretch.length, 0xA5);
    EXPECT_TRUE(SameText(ReportOf(disk, kBootSector, row.refusal), row.header + row.refusal));
  }
}

// Neither an end mark nor a file system's own signature makes a class. Nothing is registered.
TEST(BootSectorIdentification, VolumeWithUnlistedCodeIsShownRaw) {
  Disk disk = DiskWithPartition();
  disk.At(kBootSector)
      .Bytes(0x000, {0xEB, 0x58, 0x90})
      .Text(0x003, "mkfs.fat")
      .Le16(0x00B, 512)
      .U8(0x00D, 8)
      .Le16(0x030, 1)
      .Le16(0x032, 6)
      .Text(0x052, "FAT32   ")
      .Le16(0x1FE, 0xAA55);
  EXPECT_TRUE(SameText(ReportOf(disk, kBootSector), UnknownReport(disk)));
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n");
}

// The NTFS volume of a release that is not listed: no backup, no metadata.
TEST(BootSectorIdentification, NtfsVolumeOneByteOffRegistersNothing) {
  Disk disk = DiskWithCode(BootCode::kNtfsWindows8);
  Sector& sector = disk.At(kBootSector);
  sector.Text(0x003, "NTFS    ").Le16(0x00B, 512).U8(0x00D, 8).Le64(0x028, 999).Le64(0x030, 4).Le64(0x038, 2);
  sector.Le16(0x1FE, 0xAA55).U8(0x100, U8At(sector.View(), 0x100) ^ 1U);
  EXPECT_TRUE(SameText(ReportOf(disk, kBootSector), UnknownReport(disk)));
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n");
}

TEST(BootSectorIdentification, EmptySectorIsUnknown) {
  EXPECT_TRUE(SameText(ReportOf(DiskWithPartition(), kBootSector),
                       "Reading sector # 63 [Unknown boot sector]\n... empty ...\n"));
}

TEST(BootSectorIdentification, UnknownSectorIsShownWhole) {
  Disk disk = DiskWithPartition(4096);
  disk.At(kBootSector).Fill(0, 4096, 0x42);
  EXPECT_TRUE(SameText(ReportOf(disk, kBootSector), UnknownReport(disk)));
}

// Four letters of the OEM name are enough, and ReFS is handed on without an end mark.
TEST(BootSectorIdentification, ReFsByTheStartOfItsOemName) {
  for (const std::string_view oemName : {"ReFS\0\0\0\0"sv, "ReFS    "sv, "ReFS-FS-"sv}) {
    Disk disk = DiskWithPartition();
    disk.At(kBootSector).Text(0x003, oemName);
    EXPECT_TRUE(
        ReportOf(disk, kBootSector)
            .starts_with("Reading sector # 63 [ReFS Volume Boot sector]\n\nReFS Volume Boot Record\n"))
        << oemName;
  }
}

TEST(BootSectorIdentification, BitLockerByItsWholeOemName) {
  Disk disk = DiskWithPartition();
  disk.At(kBootSector).Text(0x003, "-FVE-FS-").Fill(0x054, 300, 0xCC);
  const std::string refusal = "Not a valid Bitlocker boot sector end marker @ sector # 63\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kBootSector, refusal),
                       "Reading sector # 63 [Bitlocker Boot sector]\n" + refusal));
}

TEST(BootSectorIdentification, NearlyAnOemNameIsUnknown) {
  for (const std::string_view oemName :
       {"-FVE-FS "sv, "-FVE-FS\0"sv, "-fve-fs-"sv, "ReF\0    "sv, "REFS    "sv}) {
    Disk disk = DiskWithPartition();
    disk.At(kBootSector).Text(0x003, oemName);
    EXPECT_TRUE(SameText(ReportOf(disk, kBootSector), UnknownReport(disk)));
  }
}

// Boot code is looked at first: an OEM name counts only where the code is unknown.
TEST(BootSectorIdentification, BootCodeComesBeforeTheOemName) {
  for (const CodeClass& row : kClasses) {
    for (const std::string_view oemName : {"ReFS    "sv, "-FVE-FS-"sv}) {
      Disk disk = DiskWithCode(row.code);
      disk.At(kBootSector).Text(0x003, oemName);
      EXPECT_TRUE(SameText(ReportOf(disk, kBootSector, row.refusal), row.header + row.refusal));
    }
  }
}

// The table of contents names the sector as its partition's type does, the report as it was identified.
TEST(BootSectorIdentification, TableKeepsTheDescriptionOfThePartition) {
  Disk disk = DiskWithCode(BootCode::kNtfsVista);
  PutBootRecord(disk, 0,
                {.entries = {{.bootIndicator = 0x80, .type = 0x42, .first = kBootSector, .count = 1000}}});
  PutPrivhead(disk, 6, {.configStart = 2000});  // without it the walk would end there
  const std::string refusal = "Not a valid NTFS boot sector end marker @ sector # 63\n";
  const Outcome outcome = RunOn(disk, {"63"});
  EXPECT_TRUE(outcome.out.ends_with("\nReading sector # 63 [Vista NTFS boot sector]\n" + refusal))
      << outcome.out;
  EXPECT_NE(TocOf(disk).find("\n        63\tDynamic Boot Sector\n"), std::string::npos);
}

// A refused volume ends the loading pass, so the extended record behind it stays unread; an unknown one goes
// on with the next sector.
TEST(BootSectorIdentification, ResultOfTheDecoderIsPassedOn) {
  Disk disk = DiskWithCode(BootCode::kExFat);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBootSector}, {.type = 0x05, .first = 100}}});
  PutBootRecord(disk, 100, {.entries = {{.type = 0x07, .first = 1}}});
  const std::string rows =
      "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n       100\tSupplementary Boot Record\n";
  EXPECT_EQ(TocOf(disk), rows);
  disk.At(kBootSector).U8(0x078, 0);
  EXPECT_EQ(TocOf(disk), rows + "       101\tNTFS Boot Sector\n");
}

// The sector beyond the end of the disk ends the loading pass; what is in the table by then is printed.
TEST(BootSectorIdentification, UnreadableSectorEndsThePass) {
  Disk disk(200);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 200}, {.type = 0x07, .first = 100}}});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(outcome.err, ReadBehindTheEnd(512) + "Error reading sector #200\n"));
  EXPECT_TRUE(outcome.out.ends_with("Reading sector # 100 [Unknown boot sector]\n... empty ...\n" +
                                    kTocHeading +
                                    "         0\tMaster Boot Record\n"
                                    "       100\tNTFS Boot Sector\n       200\tNTFS Boot Sector\n"))
      << outcome.out;
}

// An entry that was registered behind the unreadable sector is not loaded.
TEST(BootSectorIdentification, UnreadableSectorLeavesLaterOnesUnloaded) {
  Disk disk(200);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 200}, {.type = 0x07, .first = 5000000}}});
  const Outcome outcome = RunOn(disk);
  EXPECT_TRUE(SameText(outcome.err, ReadBehindTheEnd(512) + "Error reading sector #200\n"));
  EXPECT_TRUE(outcome.out.ends_with("       200\tNTFS Boot Sector\n   5000000\tNTFS Boot Sector\n"));
}

// The shipped catalogue has no digest of the Windows 8 beta code, and knows none of the tests' code.
TEST(BootSectorIdentification, ShippedCatalogueDoesNotKnowInventedCode) {
  for (const BootCode code : {BootCode::kNtfsWindows8Beta, BootCode::kNtfsWindows8}) {
    const Disk disk = DiskWithCode(code);
    EXPECT_TRUE(SameText(RunOn(disk, {"63"}, Build::kShipped).out,
                         Preamble(disk, " sector 63") + UnknownReport(disk)));
  }
}

}  // namespace
}  // namespace trovisk::test
