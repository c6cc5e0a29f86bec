#include "frame/report/field_table.h"

#include "frame/report/names.h"
#include "frame/report/report.h"
#include "frame/report/verbs.h"

namespace trovisk {
namespace {

// The field as a number; its first byte is the least or the most significant.
u64 LittleEndian(Bytes field) {
  u64 value = 0;
  for (std::size_t i = field.size(); i-- > 0;)
    value = value << 8 | field[i];
  return value;
}
u64 BigEndian(Bytes field) {
  u64 value = 0;
  for (const u8 byte : field)
    value = value << 8 | byte;
  return value;
}

void PrintNamed(Bytes field, const Format& format) {
  const std::string_view name = NameOf(BigEndian(field), format.names);
  if (!name.empty()) {
    report << name;
    return;
  }
  report << format.unnamed;
  PrintReversedHexBytes(field);
}

void PrintField(Bytes field, const Format& format) {
  switch (format.kind) {
    case Format::Kind::kLittleEndian:
      report << LittleEndian(field);
      break;
    case Format::Kind::kBigEndian:
      report << BigEndian(field);
      break;
    case Format::Kind::kHexBytes:
      PrintHexBytes(field);
      break;
    case Format::Kind::kReversedHexBytes:
      PrintReversedHexBytes(field);
      break;
    case Format::Kind::kBracketedHexBytes:
      PrintBracketedHexBytes(field);
      break;
    case Format::Kind::kChars:
      PrintChars(field);
      break;
    case Format::Kind::kGuid:
      PrintGuid(field.first<16>());
      break;
    case Format::Kind::kStoredGuid:
      PrintStoredGuid(field);
      break;
    case Format::Kind::kVolumeSerial:
      PrintVolumeSerial(field);
      break;
    case Format::Kind::kMediaType:
      report << MediaTypeName(field[0]);
      break;
    case Format::Kind::kBigEndianFileTime:
      PrintFileTime(BigEndian(field));
      break;
    case Format::Kind::kNamed:
      PrintNamed(field, format);
      break;
  }
}

}  // namespace

std::string_view NameOf(u64 value, std::span<const ValueName> names) {
  for (const ValueName& row : names) {
    if (row.value == value) return row.name;
  }
  return {};
}

void PrintFields(Bytes structure, std::span<const FieldRow> rows) {
  for (const FieldRow& row : rows) {
    report << row.label;
    PrintField(structure.subspan(row.offset, row.format.length), row.format);
    report << row.suffix << LineEnd;
  }
}

}  // namespace trovisk
