#include "ldm/vblk_fields.h"

#include "frame/global.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"

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
  report << label;
  {
    const NotedField noted(label, text);
    PrintChars(text);
  }
  report << suffix << LineEnd;
}

void PrintIdentifierLine(std::string_view label, Bytes identifier) {
  report << label;
  {
    const NotedField noted(label, identifier);
    PrintHexBytes(identifier);
  }
  report << LineEnd;
}

void PrintNumberLine(std::string_view label, u64 number, std::string_view suffix) {
  report << label << number << suffix << LineEnd;
}

void PrintGuidLine(std::string_view label, Bytes guid) {
  report << label;
  {
    const NotedField noted(label, guid);
    PrintStoredGuid(guid);
  }
  report << " }" << LineEnd;
}

void PrintSizeLine(std::string_view label, u64 sectors) {
  report << label << "0x";
  PrintHex(sectors, 0);
  report << " (" << (disk.bytesPerSector * sectors >> 20) << " MiB)" << LineEnd;
}

}  // namespace trovisk
