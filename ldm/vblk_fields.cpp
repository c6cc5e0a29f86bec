#include "ldm/vblk_fields.h"

#include <iostream>

#include "frame/fields.h"
#include "frame/global.h"

namespace trovisk {

Bytes FieldCursor::Take(u64 count) {
  const Bytes taken = SliceAt(data_, position_, count);
  position_ += count;
  return taken;
}

u64 FieldCursor::Number(u64 width) {
  u64 value = 0;
  for (u64 i = 0; i < width; ++i)
    value = value << 8 | Byte();
  return value;
}

void PrintTextLine(std::string_view label, Bytes text, std::string_view suffix) {
  std::cout << label;
  PrintChars(text);
  std::cout << suffix << LineEnd;
}

void PrintIdentifierLine(std::string_view label, Bytes identifier) {
  std::cout << label;
  PrintHexBytes(identifier);
  std::cout << LineEnd;
}

void PrintNumberLine(std::string_view label, u64 number, std::string_view suffix) {
  std::cout << label << number << suffix << LineEnd;
}

void PrintGuidLine(std::string_view label, Bytes guid) {
  std::cout << label;
  PrintStoredGuid(guid);
  std::cout << " }" << LineEnd;
}

void PrintSizeLine(std::string_view label, u64 sectors) {
  std::cout << label << "0x";
  PrintHex(sectors, 0);
  std::cout << " (" << (disk.bytesPerSector * sectors >> 20) << " MiB)" << LineEnd;
}

}  // namespace trovisk
