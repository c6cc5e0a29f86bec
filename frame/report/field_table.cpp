#include "frame/report/field_table.h"

#include <algorithm>
#include <array>

#include "frame/report/field_notes.h"
#include "frame/report/names.h"
#include "frame/report/report.h"
#include "frame/report/verbs.h"

namespace trovisk {
namespace {

// The field, zeros where its structure ends before it.
template <std::size_t Size>
std::array<u8, Size> Filled(Bytes field) {
  std::array<u8, Size> filled{};
  std::copy_n(field.begin(), std::min(Size, field.size()), filled.begin());
  return filled;
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
      PrintGuid(Filled<16>(field));
      break;
    case Format::Kind::kStoredGuid:
      PrintStoredGuid(field);
      break;
    case Format::Kind::kVolumeSerial:
      PrintVolumeSerial(field);
      break;
    case Format::Kind::kMediaType:
      report << MediaTypeName(U8At(field, 0));
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
    const Bytes field = SliceAt(structure, row.offset, row.format.length);
    const u64 begin = report.Size();
    PrintField(field, row.format);
    if (fieldNotes != nullptr) fieldNotes->NoteField(row.label, begin, report.Size(), field);
    report << row.suffix << LineEnd;
  }
}

}  // namespace trovisk
