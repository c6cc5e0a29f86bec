// The readers of bounded views, inside, across and outside the view.

#include "frame/bytes.h"

#include <gtest/gtest.h>

namespace trovisk {
namespace {

constexpr std::array<u8, 10> kData = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0x10, 0x32};
const FixedBytes<10> kFixed(kData);
const Bytes kView(kData);

TEST(Bytes, FixedFieldsAtTheirFirstAndLastPlace) {
  EXPECT_EQ(U8<0>(kFixed), 0x01);
  EXPECT_EQ(U8<9>(kFixed), 0x32);
  EXPECT_EQ(Le16<0>(kFixed), 0x2301);
  EXPECT_EQ(Le16<8>(kFixed), 0x3210);
  EXPECT_EQ(Le32<0>(kFixed), 0x67452301U);
  EXPECT_EQ(Le32<6>(kFixed), 0x3210EFCDU);
  EXPECT_EQ(Le64<0>(kFixed), 0xEFCDAB8967452301U);
  EXPECT_EQ(Le64<2>(kFixed), 0x3210EFCDAB896745U);
  EXPECT_EQ(Be16<0>(kFixed), 0x0123);
  EXPECT_EQ(Be16<8>(kFixed), 0x1032);
  EXPECT_EQ(Be32<0>(kFixed), 0x01234567U);
  EXPECT_EQ(Be32<6>(kFixed), 0xCDEF1032U);
  EXPECT_EQ(Be64<0>(kFixed), 0x0123456789ABCDEFU);
  EXPECT_EQ(Be64<2>(kFixed), 0x456789ABCDEF1032U);
}

TEST(Bytes, FixedPartsAtTheEdges) {
  EXPECT_EQ((Part<0, 10>(kFixed).data()), kData.data());
  EXPECT_EQ((Part<7, 3>(kFixed)[0]), 0xEF);
  EXPECT_EQ((Part<10, 0>(kFixed).size()), 0U);
}

TEST(Bytes, ComputedPositionsInside) {
  EXPECT_EQ(U8At(kView, 9), 0x32);
  EXPECT_EQ(Le16At(kView, 8), 0x3210);
  EXPECT_EQ(Le32At(kView, 6), 0x3210EFCDU);
  EXPECT_EQ(Le64At(kView, 2), 0x3210EFCDAB896745U);
  EXPECT_EQ(Be16At(kView, 8), 0x1032);
  EXPECT_EQ(Be32At(kView, 6), 0xCDEF1032U);
  EXPECT_EQ(Be64At(kView, 2), 0x456789ABCDEF1032U);
}

// The bytes that are there keep their places, the others are zero.
TEST(Bytes, FieldsAcrossTheEndKeepTheirInnerBytes) {
  EXPECT_EQ(Le16At(kView, 9), 0x0032);
  EXPECT_EQ(Le32At(kView, 7), 0x003210EFU);
  EXPECT_EQ(Le64At(kView, 8), 0x3210U);
  EXPECT_EQ(Be16At(kView, 9), 0x3200);
  EXPECT_EQ(Be32At(kView, 7), 0xEF103200U);
  EXPECT_EQ(Be64At(kView, 8), 0x1032000000000000U);
}

TEST(Bytes, FieldsOutsideAreZero) {
  for (const u64 position : {u64{10}, u64{11}, u64{1} << 32, u64{1} << 63, ~u64{0} - 7}) {
    EXPECT_EQ(U8At(kView, position), 0) << position;
    EXPECT_EQ(Le16At(kView, position), 0) << position;
    EXPECT_EQ(Le32At(kView, position), 0U) << position;
    EXPECT_EQ(Le64At(kView, position), 0U) << position;
    EXPECT_EQ(Be16At(kView, position), 0) << position;
    EXPECT_EQ(Be32At(kView, position), 0U) << position;
    EXPECT_EQ(Be64At(kView, position), 0U) << position;
  }
  EXPECT_EQ(U8At(kView, ~u64{0}), 0);
}

TEST(Bytes, NothingIsReadFromAnEmptyView) {
  EXPECT_EQ(U8At({}, 0), 0);
  EXPECT_EQ(Le64At({}, 0), 0U);
  EXPECT_TRUE(SliceAt({}, 0, 1).empty());
  EXPECT_TRUE(FromAt({}, 0).empty());
}

TEST(Bytes, SlicesAreCutAtTheEnd) {
  EXPECT_EQ(SliceAt(kView, 0, 10).size(), 10U);
  EXPECT_EQ(SliceAt(kView, 0, 11).size(), 10U);
  EXPECT_EQ(SliceAt(kView, 9, 1).size(), 1U);
  EXPECT_EQ(SliceAt(kView, 9, 2).size(), 1U);
  EXPECT_EQ(SliceAt(kView, 4, 0).size(), 0U);
  EXPECT_EQ(SliceAt(kView, 4, 3).data(), kData.data() + 4);
}

// Position and count are not added up, so that no sum can wrap.
TEST(Bytes, SlicesOfAnyPositionAndCount) {
  EXPECT_EQ(SliceAt(kView, 3, ~u64{0}).size(), 7U);
  EXPECT_EQ(SliceAt(kView, 9, ~u64{0} - 8).size(), 1U);
  EXPECT_TRUE(SliceAt(kView, 10, 1).empty());
  EXPECT_TRUE(SliceAt(kView, ~u64{0}, 1).empty());
  EXPECT_TRUE(SliceAt(kView, ~u64{0}, ~u64{0}).empty());
}

// A position just below 2^64 lies outside as well: it does not come round to the start.
TEST(Bytes, NumbersBelowTheLargestPosition) {
  EXPECT_EQ(Le32At(kView, ~u64{0} - 1), 0U);
  EXPECT_EQ(Be64At(kView, ~u64{0}), 0U);
}

TEST(Bytes, FromAPositionToTheEnd) {
  EXPECT_EQ(FromAt(kView, 0).size(), 10U);
  EXPECT_EQ(FromAt(kView, 9).size(), 1U);
  EXPECT_TRUE(FromAt(kView, 10).empty());
  EXPECT_TRUE(FromAt(kView, ~u64{0}).empty());
}

TEST(Bytes, AllZero) {
  std::array<u8, 512> bytes{};
  EXPECT_TRUE(AllZero(bytes));
  EXPECT_TRUE(AllZero({}));
  bytes[511] = 1;
  EXPECT_FALSE(AllZero(bytes));
  EXPECT_TRUE(AllZero(Bytes(bytes).first(511)));
}

TEST(Bytes, EqualsText) {
  constexpr std::array<u8, 4> kText = {'A', 'B', 0xC4, 0};
  EXPECT_TRUE(EqualsText(Bytes(kText).first(2), "AB"));
  EXPECT_TRUE(EqualsText(kText, std::string_view("AB\xC4\0", 4)));
  EXPECT_FALSE(EqualsText(Bytes(kText).first(2), "Ab"));
  EXPECT_FALSE(EqualsText(Bytes(kText).first(2), "A"));
  EXPECT_FALSE(EqualsText(Bytes(kText).first(2), "ABC"));
  EXPECT_TRUE(EqualsText({}, ""));
}

}  // namespace
}  // namespace trovisk
