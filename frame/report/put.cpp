#include "frame/report/put.h"

#include <charconv>
#include <climits>
#include <cwchar>

namespace trovisk {

char* PutNumber(char* out, u64 value, ReportSettings settings, std::size_t width) {
  char* end = std::to_chars(out, out + kNumberText, value, settings.hexadecimal ? 16 : 10).ptr;
  if (settings.hexadecimal && settings.capitals) {
    std::transform(out, end, out,
                   [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
  }
  if (static_cast<std::size_t>(end - out) < width) {
    char* const number = std::move_backward(out, end, out + width);
    std::fill(out, number, ' ');
    end = out + width;
  }
  return end;
}

char* PutNarrow(char* out, WideText text) {
  static_assert(kNarrowText >= MB_LEN_MAX);
  for (const wchar_t character : text) {
    if (character < 0x80 && character > 0) {
      *out++ = static_cast<char>(character);
      continue;
    }
    if (character == L'\0') break;
    std::mbstate_t state{};
    const std::size_t count = std::wcrtomb(out, character, &state);
    if (count == static_cast<std::size_t>(-1)) {
      *out++ = '?';
    } else {
      out += count;
    }
  }
  return out;
}

std::string Narrow(WideText text) {
  std::string narrow(text.size() * kNarrowText, '\0');
  narrow.resize(static_cast<std::size_t>(PutNarrow(narrow.data(), text) - narrow.data()));
  return narrow;
}

}  // namespace trovisk
