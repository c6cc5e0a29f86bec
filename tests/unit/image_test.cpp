// The reads of an image: which of them the source is asked for, and what is taken from those without a copy.

#include "frame/disk/image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace trovisk {
namespace {

constexpr u64 kLength = u64{1} << 20;
constexpr std::size_t kSector = 512;

u8 ByteAt(u64 offset) {
  return static_cast<u8>(offset / 7);
}

std::vector<std::string> asked;  // "offset+count"

ErrorCode ReadMadeUp(void* /*state*/, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  asked.push_back(std::to_string(offset) + "+" + std::to_string(count));
  got = offset >= kLength ? 0 : static_cast<std::size_t>(std::min<u64>(count, kLength - offset));
  for (std::size_t i = 0; i < got; ++i)
    buffer[i] = ByteAt(offset + i);
  return 0;
}

class ImageReads : public testing::Test {
 protected:
  ImageReads() { asked.clear(); }

  bool ReadsWell(u64 offset, std::size_t count = kSector) {
    std::vector<u8> bytes(count);
    std::size_t got = 0;
    return image_.Read(offset, bytes.data(), count, got) == 0 && got == count && AreOf(bytes, offset);
  }

  // All of the bytes, and the right ones.
  bool TakesWell(u64 offset, std::size_t count = kSector) {
    const Bytes taken = image_.Take(offset, count);
    return taken.size() == count && AreOf(taken, offset);
  }

  Image& TheImage() { return image_; }

 private:
  static bool AreOf(Bytes bytes, u64 offset) {
    for (const u8 byte : bytes) {
      if (byte != ByteAt(offset++)) return false;
    }
    return true;
  }

  Image image_{{nullptr, kLength, ReadMadeUp, [](void* /*state*/) {}}, kSector};
};

using Asked = std::vector<std::string>;

TEST_F(ImageReads, NothingIsTakenOfAnImageThatWasNotRead) {
  EXPECT_TRUE(TheImage().Take(0, kSector).empty());
  EXPECT_EQ(asked, Asked{});
}

TEST_F(ImageReads, NothingIsTakenAfterALoneRead) {
  EXPECT_TRUE(ReadsWell(0));
  EXPECT_TRUE(TheImage().Take(0, kSector).empty());
  EXPECT_TRUE(TheImage().Take(kSector, kSector).empty());
  EXPECT_EQ(asked, Asked{"0+512"});
}

TEST_F(ImageReads, WhatWasReadAheadIsTakenWithoutAsking) {
  EXPECT_TRUE(ReadsWell(0));
  EXPECT_TRUE(ReadsWell(512));
  for (u64 offset = 512; offset < 4096; offset += kSector)
    EXPECT_TRUE(TakesWell(offset)) << offset;
  EXPECT_TRUE(TheImage().Take(4096, kSector).empty());
  EXPECT_EQ(asked, (Asked{"0+512", "512+3584"}));
}

TEST_F(ImageReads, OnlyAllOfTheBytesAreTaken) {
  EXPECT_TRUE(ReadsWell(512) && ReadsWell(1024));
  EXPECT_TRUE(TheImage().Take(512, kSector).empty());
  EXPECT_TRUE(TheImage().Take(1023, kSector).empty());
  EXPECT_TRUE(TakesWell(1025));
  EXPECT_TRUE(TakesWell(4096 - kSector));
  EXPECT_TRUE(TheImage().Take(4096 - kSector + 1, kSector).empty());
  EXPECT_TRUE(TheImage().Take(~u64{0}, kSector).empty());
}

// A run that takes its bytes is a run of reads: the larger read behind it is twice as large as the one
// before. The first one ends where a page does.
TEST_F(ImageReads, RunGoesOnBehindWhatWasTaken) {
  EXPECT_TRUE(ReadsWell(0) && ReadsWell(512));
  for (u64 offset = 1024; offset < 4096; offset += kSector)
    EXPECT_TRUE(TakesWell(offset)) << offset;
  EXPECT_TRUE(ReadsWell(4096));
  EXPECT_TRUE(TakesWell(4096 + kSector));
  EXPECT_EQ(asked, (Asked{"0+512", "512+3584", "4096+8192"}));
}

TEST_F(ImageReads, ReadElsewhereIsALoneOneAgain) {
  EXPECT_TRUE(ReadsWell(0) && ReadsWell(512) && TakesWell(1024));
  EXPECT_TRUE(ReadsWell(kLength - kSector));
  EXPECT_TRUE(TheImage().Take(1024, kSector).empty());
  EXPECT_EQ(asked, (Asked{"0+512", "512+3584", "1048064+512"}));
}

// Sectors that no page begins with: where less than one is left of the page, the read goes on behind it.
TEST_F(ImageReads, SectorAcrossTheEndOfAPageIsReadWhole) {
  for (const std::size_t size : {520U, 1999U, 2048U}) {
    for (u64 offset = 0; offset + size <= kLength; offset += size)
      EXPECT_TRUE(ReadsWell(offset, size)) << size << " bytes at " << offset;
  }
}

}  // namespace
}  // namespace trovisk
