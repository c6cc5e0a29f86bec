#include "map/base64.h"

namespace trovisk {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string Base64(Bytes bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const u64 group = BigEndianAt<3>(bytes, at);
    for (int shift = 18; shift >= 0; shift -= 6)
      text += kAlphabet[group >> shift & 0x3F];
  }
  const std::size_t padding = (3 - bytes.size() % 3) % 3;
  text.replace(text.size() - padding, padding, padding, '=');
  return text;
}

std::vector<u8> FromBase64(std::string_view text) {
  std::vector<u8> bytes;
  bytes.reserve(text.size() / 4 * 3);
  u32 pending = 0;
  int bits = 0;
  for (const char character : text) {
    const std::size_t value = kAlphabet.find(character);
    if (value == std::string_view::npos) break;
    pending = pending << 6 | static_cast<u32>(value);
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    bytes.push_back(static_cast<u8>(pending >> bits));
  }
  return bytes;
}

}  // namespace trovisk
