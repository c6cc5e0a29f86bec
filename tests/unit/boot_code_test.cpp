// The comparison of boot code, with the tests' own catalogue.

#include "tests/disks/boot_code.h"

#include <gtest/gtest.h>

#include "tests/support/boot_code_rows.h"

namespace trovisk::test {
namespace {

Sector SectorWith(BootCode code) {
  Sector sector(512);
  PutInventedCode(sector, code);
  return sector;
}

bool MatchesIn(BootCode code, const Sector& sector) {
  return Matches(code, sector.View().first<512>());
}

// The tests' program knows every code, in the places where the shipped one looks for it.
TEST(InventedBootCode, HasADigestOfEveryRow) {
  ASSERT_EQ(BootCodeCatalogue().size(), kBootCodes);
  for (std::size_t i = 0; i < kBootCodes; ++i) {
    const BootCodeRow& row = RowOf(static_cast<BootCode>(i));
    EXPECT_EQ(row.code, static_cast<BootCode>(i));
    EXPECT_TRUE(row.digest.has_value()) << i;
    EXPECT_LE(row.offset + row.length, 512U) << i;
  }
  for (const ExpectedStretch& expected : kSomeStretches) {
    EXPECT_EQ(RowOf(expected.code).offset, expected.offset) << static_cast<int>(expected.code);
    EXPECT_EQ(RowOf(expected.code).length, expected.length) << static_cast<int>(expected.code);
  }
}

TEST(BootCode, MatchesItsOwnCodeOnly) {
  for (const BootCodeRow& present : BootCodeCatalogue()) {
    const Sector sector = SectorWith(present.code);
    for (const BootCodeRow& other : BootCodeCatalogue()) {
      EXPECT_EQ(MatchesIn(other.code, sector), other.code == present.code)
          << static_cast<int>(present.code) << " " << static_cast<int>(other.code);
    }
  }
}

TEST(BootCode, FirstAndLastByteOfTheStretchCount) {
  for (const BootCodeRow& row : BootCodeCatalogue()) {
    for (const std::size_t offset : {row.offset, row.offset + row.length - 1}) {
      Sector sector = SectorWith(row.code);
      sector.U8(offset, U8At(sector.View(), offset) ^ 1U);
      EXPECT_FALSE(MatchesIn(row.code, sector)) << static_cast<int>(row.code);
    }
  }
}

TEST(BootCode, BytesBesideTheStretchDoNotCount) {
  for (const BootCodeRow& row : BootCodeCatalogue()) {
    Sector sector = SectorWith(row.code);
    if (row.offset > 0) sector.Fill(0, row.offset, 0xEE);
    sector.Fill(row.offset + row.length, 512 - row.offset - row.length, 0xEE);
    EXPECT_TRUE(MatchesIn(row.code, sector)) << static_cast<int>(row.code);
  }
}

TEST(BootCode, StretchIsTheBytesAtItsPlace) {
  const Sector sector = SectorWith(BootCode::kExFat);
  const Bytes stretch = StretchOf(BootCode::kExFat, sector.View().first<512>());
  EXPECT_EQ(stretch.data(), sector.View().data() + 0x078);
  EXPECT_EQ(stretch.size(), 244U);
}

}  // namespace
}  // namespace trovisk::test
