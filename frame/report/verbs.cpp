#include "frame/report/verbs.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "frame/report/in_place.h"
#include "frame/report/noted_field.h"
#include "frame/report/put.h"

namespace trovisk {
namespace {

void PrintUtf8(u32 codePoint) {
  const auto put = [](u32 byte) { report << static_cast<char>(byte); };
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

bool IsPrintable(char character) {
  return character >= 0x20 && character <= 0x7E;
}

ReportSettings& Settings() {
  return InPlace::Settings();
}

}  // namespace

std::string ToNarrow(WideText text) {
  return Narrow(text);
}

// More than any description has.
constexpr std::size_t kMostDescription = 256;

// Formatted in place: in a range dump every sector has this line.
void PrintSectorHeader(WideText description, u64 sector, std::string_view start) {
  description = description.substr(0, kMostDescription);
  char* out =
      PutText(InPlace::Room(start.size() + kNumberText + description.size() * kNarrowText + 4), start);
  out = PutNumber(out, sector, Settings());
  out = PutText(out, " [");
  out = PutNarrow(out, description);
  InPlace::Take(PutText(out, "]\n"));
}

void PrintTocRow(u64 sector, std::string_view description) {
  constexpr std::size_t kColumn = 10;
  char* out = PutNumber(InPlace::Room(), sector, Settings(), kColumn);
  *out++ = '\t';
  out = PutText(out, description.substr(0, kMostDescription * kNarrowText));
  *out++ = '\n';
  InPlace::Take(out);
}

void PrintAsStored(std::string_view characters) {
  for (const char character : characters)
    report << (IsPrintable(character) || !report.MustBeSafe() ? character : '?');
}

void PrintRawByte(u8 byte) {
  const char character = static_cast<char>(byte);
  report << (IsPrintable(character) || !report.IsCaught() ? character : '?');
}

void PrintHeading(std::string_view title, std::string_view indent) {
  PrintHeading(title, title.size(), indent);
}

void PrintHeading(std::string_view title, std::size_t hyphens, std::string_view indent) {
  report << indent << title << LineEnd << indent << std::string(hyphens, '-') << LineEnd;
}

void PrintChars(Bytes text) {
  for (const u8 byte : text) {
    if (byte == 0) return;
    if (byte >= 0x20 && byte <= 0x7E) {
      report << static_cast<char>(byte);
    } else if (byte == '\r') {
      report << "<CR>";
    } else if (byte == '\n') {
      report << "<LF>";
    } else {
      report << "<0x";
      PrintHexByte(byte);
      report << ">";
    }
  }
}

void PrintCharsN(Bytes text, i64 count) {
  if (count > 0) PrintChars(SliceAt(text, 0, static_cast<u64>(count)));
}

void PrintPadded(u64 value, std::size_t width) {
  std::array<char, kNumberText> digits;
  const char* const end = PutNumber(digits.data(), value, Settings());
  const auto count = static_cast<std::size_t>(end - digits.data());
  constexpr std::string_view kZeros = "0000000000000000";
  if (count < width) report << kZeros.substr(0, width - count);
  report << std::string_view(digits.data(), count);
}

void PrintHexStayingHex(u64 value, std::size_t width) {
  Settings() = {.hexadecimal = true, .capitals = true};
  PrintPadded(value, width);
}

void PrintHex(u64 value, std::size_t width) {
  PrintHexStayingHex(value, width);
  Settings().hexadecimal = false;
}

void PrintHexKeepingBase(u64 value, std::size_t width) {
  const bool hexadecimal = Settings().hexadecimal;
  PrintHexStayingHex(value, width);
  Settings().hexadecimal = hexadecimal;
}

void PrintFraction(double value) {
  std::array<char, 32> digits;
  const int count = std::snprintf(digits.data(), digits.size(), "%g", value);
  report << std::string_view(digits.data(), static_cast<std::size_t>(count));
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
    report << "[0x";
    PrintHexByte(byte);
    report << "]";
  }
}

void PrintVolumeSerial(Bytes serial) {
  PrintReversedHexBytes(serial);
  report << " (";
  PrintReversedHexBytes(SliceAt(serial, 2, 2));
  report << "-";
  PrintReversedHexBytes(SliceAt(serial, 0, 2));
  report << ")";
}

void PrintSpacedHexBytes(Bytes bytes, std::string_view indent) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i != 0 && i % 16 == 0) report << LineEnd << indent;
    PrintHexByte(bytes[i]);
    report << " ";
  }
}

void PrintCodeSection(std::string_view title, std::size_t hyphens, Bytes code) {
  report << LineEnd;
  PrintHeading(title, hyphens, "\t");
  report << LineEnd;
  report << "\t";
  PrintSpacedHexBytes(code, "\t");
  report << LineEnd << LineEnd;
}

void PrintErrorMessage(std::size_t number, std::string_view separator, Bytes text) {
  report << "Error Message#" << number;
  const auto end = std::find(text.begin(), text.end(), u8{0});
  const Bytes shown = text.first(static_cast<std::size_t>(end - text.begin()));
  PrintNotedLine(
      separator, shown, [&] { PrintChars(text); }, " ]");
}

void PrintGuid(FixedBytes<16> guid) {
  Settings().hexadecimal = true;
  PrintPadded(Le32<0>(guid), 8);
  report << "-";
  PrintPadded(Le16<4>(guid), 4);
  report << "-";
  PrintPadded(Le16<6>(guid), 4);
  report << "-";
  for (std::size_t i = 8; i < 16; ++i) {
    if (i == 10) report << "-";
    PrintTwoDigits(guid[i]);
  }
  Settings().hexadecimal = false;
}

void PrintStoredGuid(Bytes guid) {
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) report << "-";
    PrintHexByte(U8At(guid, i));
  }
}

void PrintFileTime(u64 fileTime) {
  constexpr u64 kSecondsFrom1601To1970 = 11'644'473'600;
  const auto seconds =
      static_cast<std::time_t>(static_cast<u32>(fileTime / 10'000'000 - kSecondsFrom1601To1970));
  if (const std::tm* local = std::localtime(&seconds)) report << std::asctime(local);
  report << LineEnd;
}

void PrintUtf16(Bytes units) {
  for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
    const u32 unit = Le16At(units, i);
    const u32 next = Le16At(units, i + 2);
    if (unit == 0 || (unit >= 0x20 && unit <= 0x7E)) {
      report << static_cast<char>(unit);
    } else if (unit >= 0xD800 && unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
      PrintUtf8(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      i += 2;
    } else if (unit < 0xA0 || (unit >= 0xD800 && unit <= 0xDFFF)) {
      report << '?';
    } else {
      PrintUtf8(unit);
    }
  }
}

}  // namespace trovisk
