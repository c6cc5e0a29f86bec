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

VblkNumber FieldCursor::Number(u64 width) {
  VblkNumber number{.bytes = SliceAt(data_, position_, width)};
  for (u64 i = 0; i < width; ++i)
    number.value = number.value << 8 | Byte();
  return number;
}

void PrintTextLine(std::string_view label, Bytes text, std::string_view suffix) {
  PrintNotedLine(
      label, text, [&] { PrintChars(text); }, suffix);
}

void PrintIdentifierLine(std::string_view label, Bytes identifier) {
  PrintNotedLine(label, identifier, [&] { PrintHexBytes(identifier); });
}

void PrintNumberLine(std::string_view label, VblkNumber number, std::string_view suffix) {
  PrintNotedLine(
      label, number.bytes, [&] { report << number.value; }, suffix);
}

void PrintGuidLine(std::string_view label, Bytes guid) {
  PrintNotedLine(
      label, guid, [&] { PrintStoredGuid(guid); }, " }");
}

void PrintSizeLine(std::string_view label, VblkNumber sectors) {
  PrintNotedLine(label, sectors.bytes, [&] {
    report << "0x";
    PrintHex(sectors.value, 0);
    report << " (" << (disk.bytesPerSector * sectors.value >> 20) << " MiB)";
  });
}

}  // namespace trovisk
