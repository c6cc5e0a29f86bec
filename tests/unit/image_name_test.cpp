// Names of image files: sector sizes, and the order of pieces.

#include "frame/disk/image_name.h"

#include <gtest/gtest.h>

#include <set>

namespace trovisk::test {
namespace {

u32 SizeOf(const std::string& argument) {
  std::string path = "unchanged";
  const u32 size = SectorSizeOfName(argument, path);
  EXPECT_EQ(path, size == 0 ? "unchanged" : argument.substr(0, argument.rfind('@')));
  return size;
}

TEST(SectorSizeOfName, DecimalNumbersUpToAMebibyte) {
  EXPECT_EQ(SizeOf("disk.img@1"), 1U);
  EXPECT_EQ(SizeOf("disk@home@4096"), 4096U);
  EXPECT_EQ(SizeOf("disk.img@1048576"), 1048576U);
  for (const char* none : {"disk.img", "disk.img@", "disk.img@0", "disk.img@1048577", "disk.img@99999999999",
                           "disk.img@-1", "disk.img@5x", "disk.img@0x200"}) {
    EXPECT_EQ(SizeOf(none), 0U) << none;
  }
}

std::set<std::string> files;

bool IsThere(const std::string& path) {
  return files.count(path) != 0;
}

// The endings of the pieces behind the first one, as far as these are there.
std::string PiecesBehind(const std::string& first, const std::set<std::string>& present) {
  files = present;
  PieceNames names(first);
  std::string endings;
  for (std::string path = names.Next(IsThere); !path.empty(); path = names.Next(IsThere))
    endings += path.substr(path.rfind('.') + 1) + " ";
  return endings;
}

TEST(PieceNames, NumbersGoOnWithFourDigits) {
  EXPECT_EQ(PiecesBehind("d.001", {"d.002", "d.003", "d.005"}), "002 003 ");
  EXPECT_EQ(PiecesBehind("d.998", {"d.999", "d.1000", "d.1001"}), "999 1000 1001 ");
}

// Behind yz either za, where two letters are all there are, or zaaa.
TEST(PieceNames, LettersGoOnAsSplitNamesThem) {
  EXPECT_EQ(PiecesBehind("d.ay", {"d.az", "d.ba"}), "az ba ");
  EXPECT_EQ(PiecesBehind("d.yy", {"d.yz", "d.za", "d.zb"}), "yz za zb ");
  EXPECT_EQ(PiecesBehind("d.yy", {"d.yz", "d.zaaa", "d.zaab"}), "yz zaaa zaab ");
  EXPECT_EQ(PiecesBehind("d.zyzz", {"d.zzaaaa"}), "zzaaaa ");
  EXPECT_EQ(PiecesBehind("d.zz", {"d.aaa"}), "");
}

TEST(PieceNames, MissingIsOneInFrontOfAnother) {
  files = {"d.001", "d.003"};
  EXPECT_EQ(PieceNames("d.001").Missing(IsThere), "d.002");
  files = {"d.001"};
  EXPECT_EQ(PieceNames("d.001").Missing(IsThere), "");
  files = {"d.001", "d.900"};
  EXPECT_EQ(PieceNames("d.001").Missing(IsThere), "d.002");
  files = {"d.aa", "d.zz"};
  EXPECT_EQ(PieceNames("d.aa").Missing(IsThere), "d.ab");
}

// Behind yz names of another length may stand, whether yz is there or not.
TEST(PieceNames, MissingIsLookedForInBothWaysThatLettersGoOn) {
  files = {"d.yy", "d.zaaa"};
  EXPECT_EQ(PieceNames("d.yy").Missing(IsThere), "d.yz");
  files = {"d.yz", "d.zaab"};
  EXPECT_EQ(PieceNames("d.yz").Missing(IsThere), "d.za");
  files = {"d.yz", "d.zb"};
  EXPECT_EQ(PieceNames("d.yz").Missing(IsThere), "d.za");
  files = {"d.aa", "d.zzaa"};
  EXPECT_EQ(PieceNames("d.aa").Missing(IsThere), "");
  files = {"d.zyzz", "d.zzaaac"};
  EXPECT_EQ(PieceNames("d.zyzz").Missing(IsThere), "d.zzaa");
}

TEST(PieceNames, BeforeIsTheOneInFront) {
  files = {"d.000", "d.aa"};
  EXPECT_EQ(PieceNames::Before("d.001", IsThere), "d.000");
  EXPECT_EQ(PieceNames::Before("d.010", IsThere), "d.009");
  EXPECT_EQ(PieceNames::Before("d.1000", IsThere), "d.999");
  EXPECT_EQ(PieceNames::Before("d.ab", IsThere), "d.aa");
  EXPECT_EQ(PieceNames::Before("d.ba", IsThere), "d.az");
  for (const char* none : {"d.000", "d.aa", "d.img", "d.01", "d.AB", "d", "d.0000000001"})
    EXPECT_EQ(PieceNames::Before(none, IsThere), "") << none;
  files = {"d.001"};
  EXPECT_EQ(PieceNames::Before("d.002", IsThere), "d.001");
  files = {"d.002", "d.ab"};
  for (const char* none : {"d.003", "d.20261122", "d.ac"})
    EXPECT_EQ(PieceNames::Before(none, IsThere), "") << none;
}

TEST(PieceNames, OneOfSeveralHasAnotherBesideIt) {
  files = {"d.001", "d.002"};
  EXPECT_TRUE(PieceNames::IsOneOfSeveral("d.001", IsThere));
  EXPECT_TRUE(PieceNames::IsOneOfSeveral("d.002", IsThere));
  EXPECT_FALSE(PieceNames::IsOneOfSeveral("d.img", IsThere));
  files = {"d.001"};
  EXPECT_FALSE(PieceNames::IsOneOfSeveral("d.001", IsThere));
}

}  // namespace
}  // namespace trovisk::test
