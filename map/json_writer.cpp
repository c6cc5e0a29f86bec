#include "map/json_writer.h"

#include "frame/examination.h"

namespace trovisk {
namespace {

constexpr u64 kLargestExact = u64{1} << 53;

// Of a character that UTF-8 writes in two or three bytes; 0 for the others.
char32_t ShortCharacter(std::string_view text, std::size_t at, std::size_t& length) {
  const auto byte = [&](std::size_t i) { return char32_t{static_cast<u8>(text[at + i])}; };
  length = 1;
  if (byte(0) >> 5 == 0x6 && at + 2 <= text.size()) {
    length = 2;
    return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
  }
  if (byte(0) >> 4 == 0xE && at + 3 <= text.size()) {
    length = 3;
    return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
  }
  return 0;
}

void AppendEscape(std::string& text, char32_t character) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4)
    text += kDigits[character >> shift & 0xF];
}

}  // namespace

Json JsonNumber(u64 number) {
  if (number > kLargestExact) return std::to_string(number);
  return number;
}

std::string JsonText(const Json& value) {
  const std::string dumped = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  text.reserve(dumped.size());
  for (std::size_t at = 0, length = 1; at < dumped.size(); at += length) {
    length = 1;
    const u8 byte = static_cast<u8>(dumped[at]);
    // The other control characters are escaped already.
    const char32_t character = byte < 0x80 ? byte : ShortCharacter(dumped, at, length);
    if (character >= 0x7F && IsUnsafeToShow(character)) {
      AppendEscape(text, character);
    } else {
      text.append(dumped, at, length);
    }
  }
  return text;
}

std::string JsonWriter::LineStart(std::string_view key) {
  if (open_.empty()) return {};
  std::string text = empty_ ? "\n" : ",\n";
  text.append(2 * open_.size(), ' ');
  if (!key.empty()) text.append(JsonText(key)).append(": ");
  empty_ = false;
  return text;
}

void JsonWriter::Open(std::string_view key, char bracket) {
  write_(LineStart(key) + bracket);
  open_.push_back(bracket == '{' ? '}' : ']');
  empty_ = true;
}

void JsonWriter::Member(std::string_view key, const Json& value) {
  write_(LineStart(key) + JsonText(value));
}

void JsonWriter::Close() {
  const char bracket = open_.back();
  open_.pop_back();
  std::string text;
  if (!empty_) text.append("\n").append(2 * open_.size(), ' ');
  text += bracket;
  if (open_.empty()) text += '\n';
  write_(text);
  empty_ = false;
}

}  // namespace trovisk
