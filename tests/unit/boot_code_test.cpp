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

// The tests see the same stretches as the shipped program.
TEST(InventedBootCode, StretchesAreThoseOfTheShippedCatalogue) {
  ASSERT_EQ(BootCodeCatalogue().size(), std::size(kBootCodeRows));
  for (const ExpectedBootCode& expected : kBootCodeRows) {
    const BootCodeRow& row = RowOf(expected.code);
    EXPECT_EQ(row.code, expected.code);
    EXPECT_EQ(row.offset, expected.offset);
    EXPECT_EQ(row.length, expected.length);
    EXPECT_TRUE(row.digest.has_value());
  }
}

TEST(BootCode, MatchesItsOwnCodeOnly) {
  for (const ExpectedBootCode& present : kBootCodeRows) {
    const Sector sector = SectorWith(present.code);
    for (const ExpectedBootCode& other : kBootCodeRows) {
      EXPECT_EQ(MatchesIn(other.code, sector), other.code == present.code)
          << static_cast<int>(present.code) << " " << static_cast<int>(other.code);
    }
  }
}

TEST(BootCode, FirstAndLastByteOfTheStretchCount) {
  for (const ExpectedBootCode& row : kBootCodeRows) {
    for (const std::size_t offset : {row.offset, row.offset + row.length - 1}) {
      Sector sector = SectorWith(row.code);
      sector.U8(offset, U8At(sector.View(), offset) ^ 1U);
      EXPECT_FALSE(MatchesIn(row.code, sector)) << static_cast<int>(row.code);
    }
  }
}

TEST(BootCode, BytesBesideTheStretchDoNotCount) {
  for (const ExpectedBootCode& row : kBootCodeRows) {
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
