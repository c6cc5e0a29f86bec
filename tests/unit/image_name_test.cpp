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
}

TEST(PieceNames, BeforeIsTheOneInFront) {
  EXPECT_EQ(PieceNames::Before("d.001"), "d.000");
  EXPECT_EQ(PieceNames::Before("d.010"), "d.009");
  EXPECT_EQ(PieceNames::Before("d.1000"), "d.999");
  EXPECT_EQ(PieceNames::Before("d.ab"), "d.aa");
  EXPECT_EQ(PieceNames::Before("d.ba"), "d.az");
  for (const char* none : {"d.000", "d.aa", "d.img", "d.01", "d.AB", "d", "d.0000000001"})
    EXPECT_EQ(PieceNames::Before(none), "") << none;
}

}  // namespace
}  // namespace trovisk::test
