// The regular part of a report as a table: one row per line, each a label, a field and a format.

#ifndef TROVISK_FRAME_FIELD_TABLE_H
#define TROVISK_FRAME_FIELD_TABLE_H

#include <span>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

enum class Format {
  kU8,  // decimal numbers, by width and byte order
  kLe16,
  kLe32,
  kLe64,
  kBe16,
  kBe32,
  kBe64,
  kHexBytes,          // length bytes in stored order, two digits each
  kReversedHexBytes,  // length bytes from the last to the first: a little-endian number in full width
  kChars,             // PrintCharsN over length bytes
  kGuid,              // PrintGuid
  kStoredGuid,        // PrintStoredGuid
  kMediaType,         // the name of a media descriptor byte
  kVolumeSerial,      // PrintVolumeSerial
};

struct FieldRow {
  std::string_view label;
  std::size_t offset;  // bytes from the start of the structure
  Format format;
  std::size_t length = 0;  // bytes, for the formats that do not imply it
  std::string_view suffix = {};
};

constexpr std::size_t FieldLength(const FieldRow& row) {
  switch (row.format) {
    case Format::kU8:
    case Format::kMediaType:
      return 1;
    case Format::kLe16:
    case Format::kBe16:
      return 2;
    case Format::kLe32:
    case Format::kBe32:
      return 4;
    case Format::kLe64:
    case Format::kBe64:
    case Format::kVolumeSerial:
      return 8;
    case Format::kGuid:
    case Format::kStoredGuid:
      return 16;
    case Format::kHexBytes:
    case Format::kReversedHexBytes:
    case Format::kChars:
      break;
  }
  return row.length;
}

// For a static_assert beside a table: every field has a length and lies inside a structure of so many bytes.
constexpr bool FieldsFit(std::span<const FieldRow> rows, std::size_t size) {
  for (const FieldRow& row : rows) {
    const std::size_t length = FieldLength(row);
    if (length == 0 || row.offset + length > size) return false;
  }
  return true;
}

// Each row's label, value, suffix and a line end.
void PrintFields(Bytes structure, std::span<const FieldRow> rows);

}  // namespace trovisk

#endif
