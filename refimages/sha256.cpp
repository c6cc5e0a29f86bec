#include "refimages/sha256.h"

#include <bit>

namespace trovisk {
namespace {

constexpr std::size_t kBlockBytes = 64;
constexpr std::size_t kLengthBytes = 8;  // the message length in bits, at the end of the last block

constexpr std::array<u32, 64> kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using State = std::array<u32, 8>;

void Compress(State& state, FixedBytes<kBlockBytes> block) {
  std::array<u32, 64> words{};
  for (std::size_t t = 0; t < 16; ++t)
    words[t] = Be32At(block, t * 4);
  for (std::size_t t = 16; t < 64; ++t) {
    const u32 x = words[t - 15];
    const u32 y = words[t - 2];
    const u32 sigma0 = std::rotr(x, 7) ^ std::rotr(x, 18) ^ (x >> 3);
    const u32 sigma1 = std::rotr(y, 17) ^ std::rotr(y, 19) ^ (y >> 10);
    words[t] = sigma1 + words[t - 7] + sigma0 + words[t - 16];
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t t = 0; t < 64; ++t) {
    const u32 sum1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const u32 choice = (e & f) ^ (~e & g);
    const u32 first = h + sum1 + choice + kRoundConstants[t] + words[t];
    const u32 sum0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const u32 majority = (a & b) ^ (a & c) ^ (b & c);
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + sum0 + majority;
  }
  const State mixed = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state.size(); ++i)
    state[i] += mixed[i];
}

}  // namespace

Sha256Digest Sha256(Bytes message) {
  State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  const u64 bits = u64{message.size()} * 8;
  while (message.size() >= kBlockBytes) {
    Compress(state, message.first<kBlockBytes>());
    message = message.subspan(kBlockBytes);
  }

  // The rest, a one bit, zeros, and the length: in one block or, where it does not fit, in two.
  std::array<u8, 2 * kBlockBytes> tail{};
  std::copy(message.begin(), message.end(), tail.begin());
  tail[message.size()] = 0x80;
  const bool oneBlock = message.size() + 1 + kLengthBytes <= kBlockBytes;
  const std::size_t end = oneBlock ? kBlockBytes : 2 * kBlockBytes;
  for (std::size_t i = 0; i < kLengthBytes; ++i)
    tail[end - 1 - i] = static_cast<u8>(bits >> (8 * i));
  const FixedBytes<2 * kBlockBytes> padded(tail);
  Compress(state, padded.first<kBlockBytes>());
  if (!oneBlock) Compress(state, padded.last<kBlockBytes>());

  Sha256Digest digest{};
  for (std::size_t i = 0; i < digest.size(); ++i)
    digest[i] = static_cast<u8>(state[i / 4] >> (24 - 8 * (i % 4)));
  return digest;
}

}  // namespace trovisk
