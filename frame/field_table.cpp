#include "frame/field_table.h"

#include <iostream>

#include "frame/fields.h"
#include "frame/names.h"

namespace trovisk {
namespace {

void PrintField(Bytes field, Format format) {
  switch (format) {
    case Format::kU8:
      std::cout << unsigned{U8At(field, 0)};
      break;
    case Format::kLe16:
      std::cout << Le16At(field, 0);
      break;
    case Format::kLe32:
      std::cout << Le32At(field, 0);
      break;
    case Format::kLe64:
      std::cout << Le64At(field, 0);
      break;
    case Format::kBe16:
      std::cout << Be16At(field, 0);
      break;
    case Format::kBe32:
      std::cout << Be32At(field, 0);
      break;
    case Format::kBe64:
      std::cout << Be64At(field, 0);
      break;
    case Format::kHexBytes:
      PrintHexBytes(field);
      break;
    case Format::kReversedHexBytes:
      PrintReversedHexBytes(field);
      break;
    case Format::kChars:
      PrintChars(field);
      break;
    case Format::kGuid:
      PrintGuid(field.first<16>());
      break;
    case Format::kStoredGuid:
      PrintStoredGuid(field);
      break;
    case Format::kMediaType:
      std::cout << ToNarrow(MediaTypeName(U8At(field, 0)));
      break;
    case Format::kVolumeSerial:
      PrintVolumeSerial(field.first<8>());
      break;
  }
}

}  // namespace

void PrintFields(Bytes structure, std::span<const FieldRow> rows) {
  for (const FieldRow& row : rows) {
    std::cout << row.label;
    PrintField(structure.subspan(row.offset, FieldLength(row)), row.format);
    std::cout << row.suffix << LineEnd;
  }
}

}  // namespace trovisk
