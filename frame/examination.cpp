#include "frame/examination.h"

#include <array>
#include <utility>

#include "frame/global.h"
#include "frame/sector.h"

namespace trovisk {
namespace {

constexpr u64 kMostBytes = u64{1} << 20;

void AppendUtf8(std::string& text, char32_t character) {
  const auto put = [&](char32_t bits) { text += static_cast<char>(static_cast<u8>(bits)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | character >> 6);
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | character >> 12);
    put(0x80 | (character >> 6 & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | character >> 18);
    put(0x80 | (character >> 12 & 0x3F));
    put(0x80 | (character >> 6 & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

}  // namespace

bool IsUnsafeToShow(char32_t character) {
  if (character == 0x00AD || character == 0x180E || character == 0x115F || character == 0x1160 ||
      character == 0x3164 || character == 0xFFA0 || (character >= 0xE0000 && character <= 0xE007F)) {
    return true;  // shown as nothing: two names that look the same need not be
  }
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x061C ||
         (character >= 0x200B && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF ||
         (character >= 0xFDD0 && character <= 0xFDEF) || (character & 0xFFFE) == 0xFFFE ||
         (character >= 0xFFF9 && character <= 0xFFFB);
}

std::optional<std::vector<u8>> ReadSectors(u64 first, u64 count) {
  const u64 bytesPerSector = disk.bytesPerSector;
  if (bytesPerSector == 0 || count == 0 || count > kMostBytes / bytesPerSector) return std::nullopt;
  if (first > ~u64{0} / bytesPerSector) return std::nullopt;
  std::vector<u8> bytes(static_cast<std::size_t>(count * bytesPerSector));
  if (!SeekToSector(first) || !disk.Read(bytes.data(), bytes.size())) return std::nullopt;
  return bytes;
}

Check CheckEqual(u64 sector, std::string_view name, std::string found, std::string expected) {
  const Verdict verdict = found == expected ? Verdict::kGood : Verdict::kBad;
  return {sector, std::string(name), verdict, std::move(found), std::move(expected)};
}

Check CheckEqual(u64 sector, std::string_view name, u64 found, u64 expected) {
  return CheckEqual(sector, name, std::to_string(found), std::to_string(expected));
}

std::string Hex32(u64 value) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4)
    text += kDigits[static_cast<std::size_t>(value >> shift & 0xF)];
  return text;
}

std::string StoredGuidText(Bytes bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  if (bytes.size() < 16) return text;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kDigits[bytes[i] >> 4U];
    text += kDigits[bytes[i] & 0xFU];
  }
  return text;
}

std::string SafeUtf16(Bytes units, bool* replaced) {
  std::string text;
  for (u64 position = 0; position + 2 <= units.size(); position += 2) {
    const char32_t unit = Le16At(units, position);
    if (unit == 0) break;
    char32_t character = unit;
    if (unit >= 0xD800 && unit < 0xDC00) {
      const char32_t low = Le16At(units, position + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        character = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        position += 2;
      }
    }
    const bool lone = character >= 0xD800 && character < 0xE000;
    const bool unsafe = lone || IsUnsafeToShow(character);
    if (unsafe && replaced != nullptr) *replaced = true;
    AppendUtf8(text, unsafe ? U'?' : character);
  }
  return text;
}

std::string SafeUtf8(std::string_view text) {
  const Bytes bytes(reinterpret_cast<const u8*>(text.data()), text.size());  // NOLINT(*-reinterpret-cast)
  std::string safe;
  for (std::size_t position = 0; position < bytes.size();) {
    const u8 lead = bytes[position++];
    if (lead == 0) break;
    const std::size_t more = lead < 0x80 ? 0U : lead < 0xC0 ? 4U : lead < 0xE0 ? 1U : lead < 0xF0 ? 2U : 3U;
    constexpr std::array<char32_t, 4> kSmallest = {0, 0x80, 0x800, 0x10000};
    char32_t character = more == 0 ? lead : more == 4 ? U'\uFFFF' : lead & (0x3FU >> more);
    bool whole = more < 4;
    for (std::size_t i = 0; whole && i < more; ++i) {
      whole = position < bytes.size() && (bytes[position] & 0xC0) == 0x80;
      if (whole) character = character << 6 | (bytes[position++] & 0x3F);
    }
    whole =
        whole && character >= kSmallest.at(more) && character < 0x110000 && (character & 0x1FF800) != 0xD800;
    AppendUtf8(safe, !whole || IsUnsafeToShow(character) ? U'?' : character);
  }
  return safe;
}

std::string SafeAscii(Bytes characters) {
  std::string text;
  for (const u8 byte : characters) {
    if (byte == 0) break;
    text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '?';
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace trovisk
