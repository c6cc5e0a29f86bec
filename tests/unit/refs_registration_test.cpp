// What the ReFS decoders register where no partition has led to them: cases that a whole run does not reach.

#include <gtest/gtest.h>

#include "frame/global.h"
#include "frame/report/report.h"
#include "frame/sector.h"
#include "tests/disks/refs.h"
#include "tests/support/program.h"
#include "volumes/volumes_state.h"

namespace trovisk::test {
namespace {

class ReFsRegistration : public ::testing::Test {
 protected:
  // Writes the image, opens it and stands at the sector, with nothing registered.
  void Open(const Disk& image, u64 sector) {
    const std::string path = ScratchPath("refs_registration.img");
    image.Write(path);
    ASSERT_TRUE(disk.Open(L"the image", path.c_str()));
    ASSERT_TRUE(SeekToSector(sector));
  }

  void TearDown() override {
    disk.Reset();
    ResetVolumesState();
  }

  // Runs a decoder without its report reaching the test's own output.
  static void Decode(SectorDecoder decoder, WideText description, u64 sector, bool print) {
    std::string text;
    report.DirectTo(&text);
    EXPECT_EQ(decoder(description, sector, print), sector + 1);
    report.DirectTo(nullptr);
  }
};

// A boot record that is not registered yet is listed under its own description, for the backup's decoder.
TEST_F(ReFsRegistration, BootRecordRegistersItself) {
  Disk image(64);
  PutReFsBootRecord(image, 8, {.sectorCount = 50, .sectorsPerCluster = 1});
  Open(image, 8);
  Decode(DecodeReFsBootRecord, L"ReFS Volume Boot sector", 8, false);

  const auto own = disk.toc.At(8);
  ASSERT_TRUE(own);
  EXPECT_EQ(own->decoder, DecodeReFsBackupBootRecord);
  EXPECT_EQ(own->description, L"ReFS Volume Boot sector");
  const auto backup = disk.toc.At(57);
  ASSERT_TRUE(backup);
  EXPECT_EQ(backup->decoder, DecodeReFsBackupBootRecord);
  const auto superblock = disk.toc.At(38);
  ASSERT_TRUE(superblock);
  EXPECT_EQ(superblock->decoder, DecodeReFsSuperblock);
  EXPECT_EQ(refsVolume.volumeSector, 8U);
  EXPECT_EQ(refsVolume.sectorsPerCluster, 1U);
}

TEST_F(ReFsRegistration, BackupLeavesTheContextAlone) {
  Disk image(64);
  PutReFsBootRecord(image, 8);
  Open(image, 8);
  refsVolume = {.volumeSector = 3, .sectorsPerCluster = 5};
  Decode(DecodeReFsBackupBootRecord, L"Backup ReFS Volume Boot Record", 8, false);
  EXPECT_FALSE(disk.toc.FirstAtOrAfter(0));
  EXPECT_EQ(refsVolume.volumeSector, 3U);
  EXPECT_EQ(refsVolume.sectorsPerCluster, 5U);
}

// Checkpoints are registered in the printing pass and with both values of the context, not otherwise.
TEST_F(ReFsRegistration, SuperblockNeedsThePrintingPassAndBothValues) {
  struct Case {
    ReFsVolumeContext context;
    bool print;
    bool registers;
  };
  constexpr Case kCases[] = {
      {{.volumeSector = 8, .sectorsPerCluster = 2}, true, true},
      {{.volumeSector = 8, .sectorsPerCluster = 2}, false, false},
      {{.volumeSector = 0, .sectorsPerCluster = 2}, true, false},
      {{.volumeSector = 8, .sectorsPerCluster = 0}, true, false},
      {{.volumeSector = 0, .sectorsPerCluster = 0}, true, false},
  };
  for (const Case& row : kCases) {
    Disk image(64);
    PutReFsSuperblock(image, 38, {.references = {20}});
    Open(image, 38);
    refsVolume = row.context;
    Decode(DecodeReFsSuperblock, L"ReFS SUPB Sector", 38, row.print);
    EXPECT_EQ(disk.toc.At(48).has_value(), row.registers);
    EXPECT_EQ(disk.toc.FirstAtOrAfter(0).has_value(), row.registers);
    TearDown();
  }
}

}  // namespace
}  // namespace trovisk::test
