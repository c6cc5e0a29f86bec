// The regular part of a report as a table: one row per line, each a label, a field, a format and what stands
// behind the value.

#ifndef TROVISK_FRAME_REPORT_FIELD_TABLE_H
#define TROVISK_FRAME_REPORT_FIELD_TABLE_H

#include <span>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// A value and what the report calls it.
struct ValueName {
  u64 value;
  std::string_view name;
};

// The value's name in the table; none: the value is not listed.
std::string_view NameOf(u64 value, std::span<const ValueName> names);

// How a field is shown, and how many bytes it takes.
struct Format {
  enum class Kind {
    kLittleEndian,  // decimal numbers
    kBigEndian,
    kHexBytes,          // in stored order, two digits each
    kReversedHexBytes,  // from the last byte to the first: a little-endian number in full width
    kBracketedHexBytes,
    kChars,
    kGuid,
    kStoredGuid,
    kVolumeSerial,
    kMediaType,  // the name of a media descriptor byte
    kBigEndianFileTime,
    kNamed,
  };
  Kind kind;
  std::size_t length;
  std::span<const ValueName> names = {};
  std::string_view unnamed = {};
};

inline constexpr Format kU8{Format::Kind::kLittleEndian, 1};
inline constexpr Format kLe16{Format::Kind::kLittleEndian, 2};
inline constexpr Format kLe32{Format::Kind::kLittleEndian, 4};
inline constexpr Format kLe64{Format::Kind::kLittleEndian, 8};
inline constexpr Format kBe16{Format::Kind::kBigEndian, 2};
inline constexpr Format kBe32{Format::Kind::kBigEndian, 4};
inline constexpr Format kBe64{Format::Kind::kBigEndian, 8};
inline constexpr Format kGuidText{Format::Kind::kGuid, 16};              // PrintGuid
inline constexpr Format kStoredGuidText{Format::Kind::kStoredGuid, 16};  // PrintStoredGuid
inline constexpr Format kMediaType{Format::Kind::kMediaType, 1};
inline constexpr Format kBeFileTime{Format::Kind::kBigEndianFileTime, 8};  // PrintFileTime

constexpr Format HexBytes(std::size_t length) {
  return {Format::Kind::kHexBytes, length};
}
constexpr Format ReversedHexBytes(std::size_t length) {
  return {Format::Kind::kReversedHexBytes, length};
}
constexpr Format BracketedHexBytes(std::size_t length) {
  return {Format::Kind::kBracketedHexBytes, length};
}
// PrintChars over so many bytes.
constexpr Format Chars(std::size_t length) {
  return {Format::Kind::kChars, length};
}
// PrintVolumeSerial of four or eight bytes.
constexpr Format VolumeSerial(std::size_t length) {
  return {Format::Kind::kVolumeSerial, length};
}
// The name of a big-endian number. One that is not listed: unnamed and the bytes from the last to the first.
constexpr Format Named(std::size_t length, std::span<const ValueName> names, std::string_view unnamed) {
  return {Format::Kind::kNamed, length, names, unnamed};
}

struct FieldRow {
  std::string_view label;
  std::size_t offset;  // bytes from the start of the structure
  Format format;
  std::string_view suffix = {};
};

// For a static_assert beside a table: every field has a length and lies inside a structure of so many bytes.
constexpr bool FieldsFit(std::span<const FieldRow> rows, std::size_t size) {
  for (const FieldRow& row : rows) {
    if (row.format.length == 0 || row.offset + row.format.length > size) return false;
  }
  return true;
}

// Each row's label, value, suffix and a line end. Of a field beyond the structure's end what lies inside.
void PrintFields(Bytes structure, std::span<const FieldRow> rows);

}  // namespace trovisk

#endif
