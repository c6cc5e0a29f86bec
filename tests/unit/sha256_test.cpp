// SHA-256 against published test vectors and against digests that another implementation made.

#include "refimages/sha256.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/digits.h"

namespace trovisk {
namespace {

std::string DigestOf(const std::vector<u8>& message) {
  return test::SmallDigits(Sha256(message));
}

std::string DigestOfText(std::string_view text) {
  return DigestOf({text.begin(), text.end()});
}

std::string DigestOfHex(const std::string& digits) {
  std::vector<u8> message;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    message.push_back(static_cast<u8>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  return DigestOf(message);
}

std::string DigestOfRepeated(u8 byte, std::size_t count) {
  return DigestOf(std::vector<u8>(count, byte));
}

// FIPS 180: the examples of one block, of two, and of a million characters.
TEST(Sha256, PublishedExamples) {
  EXPECT_EQ(DigestOfText("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(DigestOfText("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(DigestOfText("abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmn"
                         "hijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu"),
            "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1");
  EXPECT_EQ(DigestOfRepeated('a', 1'000'000),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// NIST's validation vectors, short messages of 0 to 10 bytes.
TEST(Sha256, PublishedShortMessages) {
  EXPECT_EQ(DigestOfHex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(DigestOfHex("d3"), "28969cdfa74a12c82f3bad960b0b000aca2ac329deea5c2328ebc6f2ba9802c1");
  EXPECT_EQ(DigestOfHex("11af"), "5ca7133fa735326081558ac312c620eeca9970d1e70a4b95533d956f072d1f98");
  EXPECT_EQ(DigestOfHex("b4190e"), "dff2e73091f6c05e528896c4c831b9448653dc2ff043528f6769437bc7b975c2");
  EXPECT_EQ(DigestOfHex("74ba2521"), "b16aa56be3880d18cd41e68384cf1ec8c17680c45a02b1575dc1518923ae8b0e");
  EXPECT_EQ(DigestOfHex("c299209682"), "f0887fe961c9cd3beab957e8222494abb969b1ce4c6557976df8b0f6d20e9166");
  EXPECT_EQ(DigestOfHex("e1dc724d5621"), "eca0a060b489636225b4fa64d267dabbe44273067ac679f20820bddc6b6a90ac");
  EXPECT_EQ(DigestOfHex("06e076f5a442d5"),
            "3fd877e27450e6bbd5d74bb82f9870c64c66e109418baa8e6bbcff355e287926");
  EXPECT_EQ(DigestOfHex("5738c929c4f4ccb6"),
            "963bb88f27f512777aab6c8b1a02c70ec0ad651d428f870036e1917120fb48bf");
  EXPECT_EQ(DigestOfHex("3334c58075d3f4139e"),
            "078da3d77ed43bd3037a433fd0341855023793f9afd08b4b08ea1e5597ceef20");
  EXPECT_EQ(DigestOfHex("74cb9381d89f5aa73368"),
            "73d6fad1caaa75b43b21733561fd3958bdc555194a037c2addec19dc2d7a52bd");
}

// NIST's additional examples: about the edge of a block, and long ones.
TEST(Sha256, PublishedLongMessages) {
  EXPECT_EQ(DigestOfHex("bd"), "68325720aabd7c82f30f554b313d0570c95accbb7dc4b5aae11204c08ffe732b");
  EXPECT_EQ(DigestOfHex("c98c8e55"), "7abc22c0ae5af26ce93dbb94433a0e0b2e119d014f8e7f65bd56c61ccccd9504");
  EXPECT_EQ(DigestOfRepeated(0x00, 55), "02779466cdec163811d078815c633f21901413081449002f24aa3e80f0b88ef7");
  EXPECT_EQ(DigestOfRepeated(0x00, 56), "d4817aa5497628e7c77e6b606107042bbba3130888c5f47a375e6179be789fbb");
  EXPECT_EQ(DigestOfRepeated(0x00, 57), "65a16cb7861335d5ace3c60718b5052e44660726da4cd13bb745381b235a1785");
  EXPECT_EQ(DigestOfRepeated(0x00, 64), "f5a5fd42d16a20302798ef6ed309979b43003d2320d9f0e8ea9831a92759fb4b");
  EXPECT_EQ(DigestOfRepeated(0x00, 1000), "541b3e9daa09b20bf85fa273e5cbd3e80185aa4ec298e765db87742b70138a53");
  EXPECT_EQ(DigestOfRepeated(0x41, 1000), "c2e686823489ced2017f6059b8b239318b6364f6dcd835d0a519105a1eadd6e4");
  EXPECT_EQ(DigestOfRepeated(0x55, 1005), "f4d62ddec0f3dd90ea1380fa16a5ff8dc4c54b21740650f24afc4120903552b0");
  EXPECT_EQ(DigestOfRepeated(0x00, 1'000'000),
            "d29751f2649b32ff572b5e0a9f541ea660a50f94ff0beedfb0b692b924cc8025");
}

// NIST's Monte Carlo vector, its first checkpoint: each digest is that of the three before it.
TEST(Sha256, PublishedMonteCarloCheckpoint) {
  constexpr Sha256Digest kSeed = {0x6D, 0x1E, 0x72, 0xAD, 0x03, 0xDD, 0xEB, 0x5D, 0xE8, 0x91, 0xE5,
                                  0x72, 0xE2, 0x39, 0x6F, 0x8D, 0xA0, 0x15, 0xD8, 0x99, 0xEF, 0x0E,
                                  0x79, 0x50, 0x31, 0x52, 0xD6, 0x01, 0x0A, 0x3F, 0xE6, 0x91};
  std::vector<u8> lastThree;
  for (int i = 0; i < 3; ++i)
    lastThree.insert(lastThree.end(), kSeed.begin(), kSeed.end());
  for (int i = 0; i < 1000; ++i) {
    const Sha256Digest digest = Sha256(lastThree);
    lastThree.erase(lastThree.begin(), lastThree.begin() + 32);
    lastThree.insert(lastThree.end(), digest.begin(), digest.end());
  }
  Sha256Digest last{};
  std::copy(lastThree.end() - 32, lastThree.end(), last.begin());
  EXPECT_EQ(test::SmallDigits(last), "e93c330ae5447738c8aa85d71a6c80f2a58381d05872d26bdd39f1fcd4f2b788");
}

constexpr std::string_view kDigestsByLength[] = {
#include "tests/unit/sha256_digests.inc"
};

// Every length about the first edges of blocks and of the padding in them.
TEST(Sha256, EveryLengthUpTo300) {
  ASSERT_EQ(std::size(kDigestsByLength), 301U);
  for (std::size_t length = 0; length <= 300; ++length) {
    std::vector<u8> message(length);
    for (std::size_t i = 0; i < length; ++i)
      message[i] = static_cast<u8>(7 * i + length);
    EXPECT_EQ(DigestOf(message), kDigestsByLength[length]) << length;
  }
}

}  // namespace
}  // namespace trovisk
