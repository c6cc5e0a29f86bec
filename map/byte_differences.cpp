#include "map/byte_differences.h"

#include <algorithm>

namespace trovisk {
namespace {

constexpr std::size_t kMostStretches = 4;
constexpr std::size_t kMostBytes = 8;  // of one

std::string Hex(Bytes bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const u8 byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
  }
  return text;
}

std::string HexOffset(u64 offset) {
  const std::array<u8, 4> bytes = {static_cast<u8>(offset >> 24), static_cast<u8>(offset >> 16),
                                   static_cast<u8>(offset >> 8), static_cast<u8>(offset)};
  const std::string digits = Hex(bytes);
  return "0x" + digits.substr(std::min(digits.find_first_not_of('0'), digits.size() - 1));
}

std::vector<bool> Differing(Bytes before, Bytes after, const std::vector<ByteRange>& told) {
  std::vector<bool> differs(before.size());
  for (std::size_t i = 0; i < before.size(); ++i)
    differs[i] = before[i] != after[i];
  for (const ByteRange& range : told) {
    const u64 end = range.offset + std::min(range.length, u64{differs.size()});
    for (u64 i = range.offset; i < std::min<u64>(end, differs.size()); ++i)
      differs[static_cast<std::size_t>(i)] = false;
  }
  return differs;
}

}  // namespace

std::string ByteDifferences(Bytes before, Bytes after, const std::vector<ByteRange>& told) {
  if (before.size() != after.size()) {
    return "number of bytes: " + std::to_string(before.size()) + " -> " + std::to_string(after.size());
  }
  const std::vector<bool> differs = Differing(before, after, told);
  std::string text;
  std::size_t stretches = 0;
  std::size_t more = 0;
  for (std::size_t at = 0; at < differs.size();) {
    std::size_t end = at;
    while (end < differs.size() && differs[end] && end - at < kMostBytes)
      ++end;
    if (end == at) {
      ++at;
      continue;
    }
    if (stretches++ < kMostStretches) {
      text.append(text.empty() ? "bytes " : ", ").append(HexOffset(at));
      if (end - at > 1) text.append("-").append(HexOffset(end - 1));
      text.append(": ").append(Hex(before.subspan(at, end - at)));
      text.append(" -> ").append(Hex(after.subspan(at, end - at)));
    } else {
      more += end - at;
    }
    at = end;
  }
  if (more != 0) text.append(", and ").append(std::to_string(more)).append(" more bytes");
  return text;
}

}  // namespace trovisk
