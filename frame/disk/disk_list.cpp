#include "frame/disk/disk_list.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace trovisk {
namespace {

// A storage device descriptor: where the names stand in it, each ending in a NUL. 0: there is none.
constexpr std::size_t kVendorOffset = 12;
constexpr std::size_t kProductOffset = 16;

std::string NameAt(Bytes descriptor, u32 offset) {
  const Bytes rest = offset == 0 ? Bytes() : FromAt(descriptor, offset);
  return Printable({reinterpret_cast<const char*>(rest.data()),
                    static_cast<std::size_t>(std::find(rest.begin(), rest.end(), u8{0}) - rest.begin())});
}

}  // namespace

std::string SizeText(u64 bytes) {
  if (bytes < 1024) return std::to_string(bytes) + " B";
  constexpr std::string_view kUnits = "KMGTPE";
  std::size_t unit = 0;
  for (; bytes >= u64{1024} * 1024; bytes /= 1024)
    ++unit;
  u64 tenths = (bytes * 10 + 512) / 1024;
  if (tenths >= 10240) {  // rounded up to the next unit
    tenths = 10;
    ++unit;
  }
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " + kUnits[unit] + "iB";
}

std::string Printable(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
  text = text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
  std::string printable(text);
  std::replace_if(
      printable.begin(), printable.end(), [](char each) { return each < 0x20 || each > 0x7E; }, '?');
  return printable;
}

u64 BytesOfUnits(std::string_view text) {
  constexpr u64 kUnit = 512;
  u64 units = 0;
  const auto number = std::from_chars(text.data(), text.data() + text.size(), units);
  if (number.ec != std::errc() || units > std::numeric_limits<u64>::max() / kUnit) return 0;
  return units * kUnit;
}

std::string ModelOf(Bytes descriptor) {
  const std::string vendor = NameAt(descriptor, Le32At(descriptor, kVendorOffset));
  const std::string product = NameAt(descriptor, Le32At(descriptor, kProductOffset));
  return vendor.empty() || product.empty() ? vendor + product : vendor + " " + product;
}

}  // namespace trovisk
