// The shipped catalogue of known boot code.

#include "refimages/catalogue.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/boot_code_rows.h"
#include "tests/support/digits.h"

namespace trovisk::test {
namespace {

TEST(Catalogue, RowsStandInTheOrderOfTheEnumeration) {
  ASSERT_EQ(BootCodeCatalogue().size(), kBootCodes);
  ASSERT_EQ(static_cast<std::size_t>(BootCode::kExFat) + 1, kBootCodes);
  for (std::size_t i = 0; i < kBootCodes; ++i) {
    const auto code = static_cast<BootCode>(i);
    EXPECT_EQ(BootCodeCatalogue()[i].code, code);
    EXPECT_EQ(&RowOf(code), &BootCodeCatalogue()[i]);
  }
}

TEST(Catalogue, SomeStretches) {
  for (const ExpectedStretch& expected : kSomeStretches) {
    EXPECT_EQ(RowOf(expected.code).offset, expected.offset) << static_cast<int>(expected.code);
    EXPECT_EQ(RowOf(expected.code).length, expected.length) << static_cast<int>(expected.code);
  }
}

TEST(Catalogue, SomeDigests) {
  EXPECT_EQ(SmallDigits(RowOf(BootCode::kMbrWindows2000).digest.value_or(BootCodeDigest{}).whole),
            "b5ed343494f0326a08aa6abf7cc9aa4d96207532cf0d2b39453c6eb7bede19e3");
  EXPECT_EQ(SmallDigits(RowOf(BootCode::kNtfsWindows8).digest.value_or(BootCodeDigest{}).whole),
            "8ee6cab3c70e892279a55b3db3d9a0a3f7dbf837341ec8d5fbda591c8e7e4e62");
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
  std::set<u64> samples;
  for (const BootCodeRow& row : BootCodeCatalogue()) {
    if (!row.digest) continue;
    EXPECT_FALSE(AllZero(row.digest->whole));
    EXPECT_TRUE(digests.insert(row.digest->whole).second) << static_cast<int>(row.code);
    EXPECT_TRUE(samples.insert(row.digest->sample).second) << static_cast<int>(row.code);
  }
  EXPECT_EQ(digests.size(), 17U);
}

// The rows rest on this hash as it is: another one would match nothing.
TEST(Catalogue, SampleHashOfKnownBytes) {
  std::array<u8, 300> counting{};
  for (std::size_t i = 0; i < counting.size(); ++i)
    counting[i] = static_cast<u8>(i);
  EXPECT_EQ(SampleHash(counting), 0xC3FDB07FCEAAA0C5U);
  EXPECT_EQ(SampleHash(Bytes(counting).subspan(1, 40)), 0x172867B4989F3B1FU);
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
