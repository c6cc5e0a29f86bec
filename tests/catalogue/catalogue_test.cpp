// The shipped catalogue of known boot code.

#include "refimages/catalogue.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/boot_code_rows.h"

namespace trovisk::test {
namespace {

std::string Hex(const Sha256Digest& digest) {
  std::string digits;
  for (const u8 byte : digest) {
    digits += "0123456789abcdef"[byte >> 4];
    digits += "0123456789abcdef"[byte & 15];
  }
  return digits;
}

TEST(Catalogue, EveryRow) {
  ASSERT_EQ(BootCodeCatalogue().size(), std::size(kBootCodeRows));
  for (std::size_t i = 0; i < std::size(kBootCodeRows); ++i) {
    const BootCodeRow& row = BootCodeCatalogue()[i];
    const ExpectedBootCode& expected = kBootCodeRows[i];
    EXPECT_EQ(row.code, expected.code) << i;
    EXPECT_EQ(row.offset, expected.offset) << i;
    EXPECT_EQ(row.length, expected.length) << i;
    EXPECT_EQ(row.digest ? Hex(row.digest->whole) : "", expected.digest) << i;
  }
}

TEST(Catalogue, EveryCodeIsFoundUnderItsName) {
  for (const ExpectedBootCode& expected : kBootCodeRows)
    EXPECT_EQ(RowOf(expected.code).code, expected.code);
}

TEST(Catalogue, StretchesLieInTheSector) {
  for (const BootCodeRow& row : BootCodeCatalogue()) {
    EXPECT_GT(row.length, 0U);
    EXPECT_LE(row.offset + row.length, 512U);
  }
}

// A digest that is not known is absent, never a made-up one.
TEST(Catalogue, DigestsAreDifferentAndNoneIsZero) {
  std::set<Sha256Digest> digests;
  for (const BootCodeRow& row : BootCodeCatalogue()) {
    if (!row.digest) continue;
    EXPECT_FALSE(AllZero(row.digest->whole));
    EXPECT_TRUE(digests.insert(row.digest->whole).second) << static_cast<int>(row.code);
  }
  EXPECT_EQ(digests.size(), 17U);
}

// Sectors of one byte repeated, and one of counting bytes.
TEST(Catalogue, NothingMatchesArbitrarySectors) {
  std::array<u8, 512> sector{};
  for (int value = 0; value <= 256; ++value) {
    for (std::size_t i = 0; i < sector.size(); ++i)
      sector[i] = static_cast<u8>(value == 256 ? i : static_cast<std::size_t>(value));
    for (const BootCodeRow& row : BootCodeCatalogue())
      EXPECT_FALSE(Matches(row.code, sector)) << static_cast<int>(row.code) << " " << value;
  }
}

TEST(Catalogue, RowsWithoutADigest) {
  EXPECT_FALSE(RowOf(BootCode::kMbrUsbKey).digest.has_value());
  EXPECT_FALSE(RowOf(BootCode::kNtfsWindows8Beta).digest.has_value());
}

}  // namespace
}  // namespace trovisk::test
