#include "frame/fields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <ctime>
#include <cwchar>
#include <iomanip>
#include <iostream>

namespace trovisk {
namespace {

void PrintUtf8(u32 codePoint) {
  const auto put = [](u32 byte) { std::cout.put(static_cast<char>(byte)); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0 | codePoint >> 6);
    put(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    put(0xE0 | codePoint >> 12);
    put(0x80 | (codePoint >> 6 & 0x3F));
    put(0x80 | (codePoint & 0x3F));
  } else {
    put(0xF0 | codePoint >> 18);
    put(0x80 | (codePoint >> 12 & 0x3F));
    put(0x80 | (codePoint >> 6 & 0x3F));
    put(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace

std::string ToNarrow(WideText text) {
  std::string narrow(text.size() * MB_LEN_MAX, '\0');
  narrow.resize(static_cast<std::size_t>(PutNarrow(narrow.data(), text) - narrow.data()));
  return narrow;
}

void PrintAsStored(std::string_view characters) {
  for (const char character : characters) {
    const bool printable = character >= 0x20 && character <= 0x7E;
    std::cout.put(printable || !ReportOnTerminal() ? character : '?');
  }
}

char* PutNarrow(char* out, WideText text) {
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

char* PutNumber(char* out, u64 value, std::size_t width) {
  const auto flags = std::cout.flags();
  const bool hex = (flags & std::ios_base::hex) != 0;
  char* end = std::to_chars(out, out + kNumberText, value, hex ? 16 : 10).ptr;
  if (hex && (flags & std::ios_base::uppercase) != 0)
    std::transform(out, end, out,
                   [](char digit) { return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit; });
  if (static_cast<std::size_t>(end - out) < width) {
    char* const number = std::move_backward(out, end, out + width);
    std::fill(out, number, ' ');
    end = out + width;
  }
  return end;
}

// More than any description has.
constexpr std::size_t kMostDescription = 256;

// Assembled and printed at once: in a range dump every sector has this line and nothing else to compute.
void PrintSectorHeader(WideText description, u64 sector) {
  description = description.substr(0, kMostDescription);
  char* out = PutText(RoomForLines(), "Reading sector # ");
  out = PutNumber(out, sector);
  out = PutText(out, " [");
  out = PutNarrow(out, description);
  PrintLinesInPlace(PutText(out, "]\n"));
}

void PrintHeading(std::string_view title, std::string_view indent) {
  PrintHeading(title, title.size(), indent);
}

void PrintHeading(std::string_view title, std::size_t hyphens, std::string_view indent) {
  std::cout << indent << title << LineEnd << indent << std::string(hyphens, '-') << LineEnd;
}

void PrintChars(Bytes text) {
  for (const u8 byte : text) {
    if (byte == 0) return;
    if (byte >= 0x20 && byte <= 0x7E) {
      std::cout.put(static_cast<char>(byte));
    } else if (byte == '\r') {
      std::cout << "<CR>";
    } else if (byte == '\n') {
      std::cout << "<LF>";
    } else {
      std::cout << "<0x";
      PrintHexByte(byte);
      std::cout << ">";
    }
  }
}

void PrintCharsN(Bytes text, i64 count) {
  if (count > 0) PrintChars(SliceAt(text, 0, static_cast<u64>(count)));
}

void PrintPadded(u64 value, int width) {
  std::cout << std::setw(width) << std::setfill('0') << value;
}

void PrintHexStayingHex(u64 value, int width) {
  std::cout << std::uppercase << std::hex << std::setw(width) << std::setfill('0') << value;
}

void PrintHex(u64 value, int width) {
  PrintHexStayingHex(value, width);
  std::cout << std::dec;
}

void PrintHexKeepingBase(u64 value, int width) {
  const auto base = std::cout.flags() & std::ios_base::basefield;
  PrintHexStayingHex(value, width);
  std::cout.setf(base, std::ios_base::basefield);
}

void PrintHexBytes(Bytes bytes) {
  for (const u8 byte : bytes)
    PrintHexByte(byte);
}

void PrintReversedHexBytes(Bytes bytes) {
  for (std::size_t i = bytes.size(); i-- > 0;)
    PrintHexByte(bytes[i]);
}

void PrintBracketedHexBytes(Bytes bytes) {
  for (const u8 byte : bytes) {
    std::cout << "[0x";
    PrintHexByte(byte);
    std::cout << "]";
  }
}

void PrintVolumeSerial(FixedBytes<8> serial) {
  PrintReversedHexBytes(serial);
  std::cout << " (";
  PrintReversedHexBytes(Part<2, 2>(serial));
  std::cout << "-";
  PrintReversedHexBytes(Part<0, 2>(serial));
  std::cout << ")";
}

void PrintCodeListing(Bytes code) {
  std::cout << "\t";
  for (std::size_t i = 0; i < code.size(); ++i) {
    if (i != 0 && i % 16 == 0) std::cout << LineEnd << "\t";
    PrintHexByte(code[i]);
    std::cout << " ";
  }
}

void PrintCodeSection(std::string_view title, std::size_t hyphens, Bytes code) {
  std::cout << LineEnd;
  PrintHeading(title, hyphens, "\t");
  std::cout << LineEnd;
  PrintCodeListing(code);
  std::cout << LineEnd << LineEnd;
}

void PrintErrorMessage(int number, std::string_view separator, Bytes text) {
  std::cout << "Error Message#" << number << separator;
  PrintChars(text);
  std::cout << " ]" << LineEnd;
}

void PrintGuid(FixedBytes<16> guid) {
  const auto group = [](u64 value, int width) {
    std::cout << std::setw(width) << std::setfill('0') << value;
  };
  std::cout << std::hex;
  group(Le32<0>(guid), 8);
  std::cout << "-";
  group(Le16<4>(guid), 4);
  std::cout << "-";
  group(Le16<6>(guid), 4);
  std::cout << "-";
  for (std::size_t i = 8; i < 16; ++i) {
    if (i == 10) std::cout << "-";
    group(guid[i], 2);
  }
  std::cout << std::dec;
}

void PrintStoredGuid(Bytes guid) {
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) std::cout << "-";
    PrintHexByte(U8At(guid, i));
  }
}

void PrintFileTime(u64 fileTime) {
  constexpr u64 kSecondsFrom1601To1970 = 11'644'473'600;
  const auto seconds =
      static_cast<std::time_t>(static_cast<u32>(fileTime / 10'000'000 - kSecondsFrom1601To1970));
  if (const std::tm* local = std::localtime(&seconds)) std::cout << std::asctime(local);
  std::cout << LineEnd;
}

void PrintUtf16(Bytes units) {
  for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
    const u32 unit = Le16At(units, i);
    const u32 next = Le16At(units, i + 2);
    if (unit == 0 || (unit >= 0x20 && unit <= 0x7E)) {
      std::cout.put(static_cast<char>(unit));
    } else if (unit >= 0xD800 && unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
      PrintUtf8(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      i += 2;
    } else if (unit < 0xA0 || (unit >= 0xD800 && unit <= 0xDFFF)) {
      std::cout.put('?');
    } else {
      PrintUtf8(unit);
    }
  }
}

}  // namespace trovisk
