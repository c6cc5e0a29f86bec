// Contents without a decoder, named by their signatures. The bytes are laid out here as published; that real
// ones are named alike is tested with the tools that make them (made_by_tools_test.cpp).

#include "map/signatures.h"

#include "tests/map/examined.h"

namespace trovisk::test {
namespace {

constexpr u64 kPlace = 100;
constexpr u64 kSectors = 3000;
constexpr u64 kDiskSectors = 4096;

// A disk with bytes at offsets of the place at its sector 100.
class Content {
 public:
  explicit Content(u32 sectorSize = 512) : disk_(kDiskSectors, sectorSize) {}

  Content& Text(u64 offset, std::string_view text) {
    for (const char character : text)
      Byte(offset++, static_cast<u8>(character));
    return *this;
  }
  Content& Le(u64 offset, u64 value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i)
      Byte(offset + i, static_cast<u8>(value >> (8 * i)));
    return *this;
  }
  Content& Le16(u64 offset, u64 value) { return Le(offset, value, 2); }
  Content& Le32(u64 offset, u64 value) { return Le(offset, value, 4); }
  Content& Le64(u64 offset, u64 value) { return Le(offset, value, 8); }
  Content& Be32(u64 offset, u64 value) { return Be(offset, value, 4); }
  Content& Be64(u64 offset, u64 value) { return Be(offset, value, 8); }

  // "type [label] sectors from signature's sector"; of a place of so many sectors.
  std::string Named(u64 sectors = kSectors) const {
    const OpenedDisk opened(disk_);
    const auto content = NameContent({.sector = kPlace, .sectors = sectors, .lastOnDisk = kDiskSectors - 1});
    if (!content) return "nothing";
    return content->type + " [" + content->label + "] " + std::to_string(content->sectors) + " at " +
           std::to_string(content->sector);
  }

 private:
  Content& Be(u64 offset, u64 value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i)
      Byte(offset + width - 1 - i, static_cast<u8>(value >> (8 * i)));
    return *this;
  }
  void Byte(u64 offset, u8 value) {
    disk_.At(kPlace + offset / disk_.SectorSize()).U8(offset % disk_.SectorSize(), value);
  }

  Disk disk_;
};

struct Ext {
  u32 blocks = 300;
  u32 logBlockSize = 2;
  u32 compatible = 0;
  u32 incompatible = 0x2;
  u32 readOnly = 0x3;
};

Content ExtContent(const Ext& ext) {
  Content content;
  content.Le32(1024 + 0x04, ext.blocks).Le32(1024 + 0x18, ext.logBlockSize).Le16(1024 + 0x38, 0xEF53);
  content.Le32(1024 + 0x5C, ext.compatible).Le32(1024 + 0x60, ext.incompatible);
  return content.Le32(1024 + 0x64, ext.readOnly).Text(1024 + 0x78, "root");
}

TEST(Signatures, NothingIsNamedNothing) {
  EXPECT_EQ(Content().Named(), "nothing");
}

TEST(Signatures, ExtKindsAreToldApartByTheirFeatures) {
  EXPECT_EQ(ExtContent({}).Named(), "ext2 [root] 2400 at 102");
  EXPECT_EQ(ExtContent({.compatible = 0x4}).Named(), "ext3 [root] 2400 at 102");
  EXPECT_EQ(ExtContent({.compatible = 0x4, .incompatible = 0x42}).Named(), "ext4 [root] 2400 at 102");
  EXPECT_EQ(ExtContent({.compatible = 0x4, .readOnly = 0x400}).Named(), "ext4 [root] 2400 at 102");
  EXPECT_EQ(ExtContent({.incompatible = 0x8}).Named(), "ext journal [root] 2400 at 102");
}

TEST(Signatures, ExtCountsBlocksIn64BitsWhereItSaysSo) {
  EXPECT_EQ(ExtContent({.logBlockSize = 0, .incompatible = 0x82}).Le32(1024 + 0x150, 1).Named(),
            "ext4 [root] 8589935192 at 102");
  EXPECT_EQ(ExtContent({.logBlockSize = 0}).Le32(1024 + 0x150, 1).Named(), "ext2 [root] 600 at 102");
}

TEST(Signatures, ExtThatCannotBe) {
  EXPECT_EQ(ExtContent({.logBlockSize = 7}).Named(), "nothing");
  EXPECT_EQ(ExtContent({.blocks = 0}).Named(), "nothing");
}

TEST(Signatures, Xfs) {
  EXPECT_EQ(Content().Text(0, "XFSB").Be32(4, 4096).Be64(8, 375).Text(0x6C, "data").Named(),
            "XFS [data] 3000 at 100");
}

TEST(Signatures, SizeThatOverflowsIsNotStated) {
  EXPECT_EQ(Content().Text(0, "XFSB").Be32(4, 4096).Be64(8, u64{1} << 52).Named(), "XFS [] 0 at 100");
}

TEST(Signatures, Btrfs) {
  EXPECT_EQ(Content()
                .Text(65536 + 0x40, "_BHRfS_M")
                .Le64(65536 + 0xD1, 1536000)
                .Text(65536 + 0x12B, "pool")
                .Named(),
            "Btrfs [pool] 3000 at 228");
}

TEST(Signatures, F2fs) {
  EXPECT_EQ(Content()
                .Le32(1024, 0xF2F52010)
                .Le32(1024 + 0x10, 12)
                .Le64(1024 + 0x24, 375)
                .Le32(1024 + 0x7C, 0xE40041)
                .Named(),
            "F2FS [A\xC3\xA4] 3000 at 102");
}

TEST(Signatures, Erofs) {
  EXPECT_EQ(Content()
                .Le32(1024, 0xE0F5E1E2)
                .Le(1024 + 0x0C, 12, 1)
                .Le32(1024 + 0x24, 5)
                .Text(1024 + 0x40, "image")
                .Named(),
            "EROFS [image] 40 at 102");
}

// A part of a sector counts as a whole one.
TEST(Signatures, SquashFs) {
  EXPECT_EQ(Content().Text(0, "hsqs").Le16(0x1C, 4).Le64(0x28, 1025).Named(), "SquashFS [] 3 at 100");
  EXPECT_EQ(Content().Text(0, "hsqs").Le16(0x1C, 3).Named(), "nothing");
}

TEST(Signatures, LuksHeadersOfBothVersions) {
  EXPECT_EQ(Content().Text(0, "LUKS\xBA\xBE").Le16(6, 0x0100).Text(0x18, "notalabel").Named(),
            "LUKS1 [] 0 at 100");
  EXPECT_EQ(Content().Text(0, "LUKS\xBA\xBE").Le16(6, 0x0200).Text(0x18, "secret").Named(),
            "LUKS2 [secret] 0 at 100");
}

TEST(Signatures, Lvm2LabelInOneOfTheFirstFourSectors) {
  for (const u64 sector : {0U, 1U, 2U, 3U}) {
    EXPECT_EQ(Content()
                  .Text(512 * sector, "LABELONE")
                  .Le32(512 * sector + 0x14, 32)
                  .Text(512 * sector + 0x18, "LVM2 001")
                  .Le64(512 * sector + 0x40, 1536000)
                  .Named(),
              "LVM2 PV [] 3000 at " + std::to_string(kPlace + sector));
  }
  EXPECT_EQ(Content().Text(2048, "LABELONE").Le32(2048 + 0x14, 32).Text(2048 + 0x18, "LVM2 001").Named(),
            "nothing");
  EXPECT_EQ(Content().Text(512, "LABELONE").Text(512 + 0x18, "LVM1 001").Named(), "nothing");
}

// The signature ends the first page, whose size depends on the machine.
TEST(Signatures, SwapOfEachPageSize) {
  const auto swap = [](u64 page) {
    return Content().Le32(1024, 1).Le32(1028, 9).Text(1024 + 28, "swap0").Text(page - 10, "SWAPSPACE2");
  };
  EXPECT_EQ(swap(4096).Named(), "Linux swap [swap0] 80 at 107");
  EXPECT_EQ(swap(8192).Named(), "Linux swap [swap0] 160 at 115");
  EXPECT_EQ(swap(16384).Named(), "Linux swap [swap0] 320 at 131");
  EXPECT_EQ(swap(32768).Named(), "Linux swap [swap0] 640 at 163");
  EXPECT_EQ(swap(65536).Named(), "Linux swap [swap0] 1280 at 227");
}

TEST(Signatures, SwapOfTheOtherByteOrderIsNamedWithoutItsSize) {
  EXPECT_EQ(Content().Be32(1024, 1).Be32(1028, 9).Text(4086, "SWAPSPACE2").Named(), "Linux swap [] 0 at 107");
}

Content Md1(u64 position, u64 ownPlace) {
  return Content()
      .Le32(position, 0xA92B4EFC)
      .Le32(position + 0x04, 1)
      .Text(position + 0x20, "host:home")
      .Le64(position + 0x90, ownPlace);
}

// 3000 sectors: 1.0 stands in the last 8 KiB, on a border of 4 KiB.
TEST(Signatures, MdMetadataAtEachPlace) {
  EXPECT_EQ(Md1(0, 0).Named(), "md RAID 1.1 [host:home] 0 at 100");
  EXPECT_EQ(Md1(4096, 8).Named(), "md RAID 1.2 [host:home] 0 at 108");
  EXPECT_EQ(Md1(2984 * 512, 2984).Named(), "md RAID 1.0 [host:home] 0 at 3084");
  EXPECT_EQ(Md1(2984 * 512, 2984).Named(2999), "nothing");
  EXPECT_EQ(Md1(2976 * 512, 2976).Named(2999), "md RAID 1.0 [host:home] 0 at 3076");
}

TEST(Signatures, MdMetadataThatNamesAnotherPlaceIsACopy) {
  EXPECT_EQ(Md1(4096, 0).Named(), "nothing");
}

// 3000 sectors are 23 times 64 KiB and some.
TEST(Signatures, MdMetadata090InTheLastWhole64KiB) {
  const Content content = Content().Le32(22 * 65536, 0xA92B4EFC).Le32(22 * 65536 + 8, 90);
  EXPECT_EQ(content.Named(), "md RAID 0.90 [] 0 at 2916");
  EXPECT_EQ(Content().Le32(22 * 65536, 0xA92B4EFC).Le32(22 * 65536 + 8, 91).Named(), "nothing");
  EXPECT_EQ(content.Named(127), "nothing");
}

// A mirror's member holds the file system's superblock as well.
TEST(Signatures, MemberOfARaidCountsMoreThanWhatItHolds) {
  Content content = ExtContent({});
  content.Le32(2984 * 512, 0xA92B4EFC).Le32(2984 * 512 + 4, 1).Le64(2984 * 512 + 0x90, 2984);
  EXPECT_EQ(content.Named(), "md RAID 1.0 [] 0 at 3084");
}

TEST(Signatures, ZfsByItsUberblocksInEitherByteOrder) {
  // The list of names and values that stands in front of the uberblocks.
  const auto labelled = [] { return Content().Le64(16384, 0x0101); };
  EXPECT_EQ(labelled().Le64(131072 + 37 * 1024, 0x00BAB10C).Named(), "ZFS [] 0 at 430");
  EXPECT_EQ(labelled().Be64(131072 + 127 * 1024, 0x00BAB10C).Named(), "ZFS [] 0 at 610");
  EXPECT_EQ(labelled().Le64(131072 + 128 * 1024, 0x00BAB10C).Named(), "nothing");
  EXPECT_EQ(Content().Le64(131072 + 37 * 1024, 0x00BAB10C).Named(), "nothing");
}

TEST(Signatures, Apfs) {
  EXPECT_EQ(Content().Text(32, "NXSB").Le32(0x24, 4096).Le64(0x28, 375).Named(),
            "APFS container [] 3000 at 100");
  EXPECT_EQ(Content().Text(32, "NXSB").Le32(0x24, 512).Named(), "nothing");
}

TEST(Signatures, HfsPlusAndHfsx) {
  EXPECT_EQ(
      Content().Text(1024, "H+").Le16(1026, 0x0400).Be32(1024 + 0x28, 4096).Be32(1024 + 0x2C, 375).Named(),
      "HFS+ [] 3000 at 102");
  EXPECT_EQ(Content().Text(1024, "HX").Le16(1026, 0x0500).Named(), "HFSX [] 0 at 102");
}

TEST(Signatures, Iso9660AndUdf) {
  Content content;
  content
      .Text(32768,
            "\x01"
            "CD001\x01")
      .Text(32768 + 0x28, "INSTALL           ");
  content.Le32(32768 + 0x50, 750).Le16(32768 + 0x80, 2048);
  EXPECT_EQ(content.Named(), "ISO 9660 [INSTALL] 3000 at 164");
  // A medium may have both: UDF is what systems prefer.
  content.Text(32768 + 3 * 2048 + 1, "NSR02");
  EXPECT_EQ(content.Named(), "UDF [] 0 at 176");
  EXPECT_EQ(Content().Text(32768 + 1, "BEA01").Text(32768 + 2048 + 1, "NSR03").Named(), "UDF [] 0 at 168");
}

TEST(Signatures, LabelsAreSafeToShow) {
  EXPECT_EQ(Content().Text(0, "XFSB").Text(0x6C, "a\x1B[31m\"").Named(), "XFS [a?[31m\"] 0 at 100");
}

TEST(Signatures, SectorsOf4096Bytes) {
  Content content(4096);
  content.Text(65536 + 0x40, "_BHRfS_M").Le64(65536 + 0xD1, 12288000);
  EXPECT_EQ(content.Named(), "Btrfs [] 3000 at 116");
}

// What stands behind the place belongs to something else.
TEST(Signatures, NothingBehindThePlaceIsRead) {
  const Content content = ExtContent({});
  EXPECT_EQ(content.Named(2), "nothing");
  EXPECT_EQ(content.Named(3), "ext2 [root] 2400 at 102");
  EXPECT_EQ(Content().Text(32, "NXSB").Le32(0x24, 4096).Named(1), "APFS container [] 0 at 100");
}

TEST(Signatures, PlaceBeyondTheEndOfTheDisk) {
  const Disk disk(150);
  const OpenedDisk opened(disk);
  EXPECT_FALSE(NameContent({.sector = 100, .sectors = 3000, .lastOnDisk = 149}));
  EXPECT_FALSE(NameContent({.sector = 200, .sectors = 3000, .lastOnDisk = 149}));
  EXPECT_FALSE(NameContent({.sector = ~u64{0} - 5, .sectors = ~u64{0}, .lastOnDisk = 149}));
}

// Half of the first 4096 bytes lie beyond the end of the disk: the rest tells all the same.
TEST(Signatures, DiskThatEndsInTheFirstBlock) {
  Disk disk(104);
  disk.At(100).Text(0, "XFSB");
  const OpenedDisk opened(disk);
  const auto content = NameContent({.sector = 100, .sectors = 3000, .lastOnDisk = 103});
  ASSERT_TRUE(content);
  EXPECT_EQ(content->type, "XFS");
}

}  // namespace
}  // namespace trovisk::test
