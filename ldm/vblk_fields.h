// The fields of a VBLK record's data, which follow each other without padding, many of them in a length that
// the record states.

#ifndef TROVISK_LDM_VBLK_FIELDS_H
#define TROVISK_LDM_VBLK_FIELDS_H

#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// A number, and its bytes as far as the sector has them.
struct VblkNumber {
  u64 value = 0;
  Bytes bytes;
};

// A position that moves over a record's data. The data runs from the slot's first data byte to the end of the
// sector, since a field's length is trusted and may lead into the following slots; beyond the sector a number
// has zero bytes, a text and a list end.
class FieldCursor {
 public:
  FieldCursor(Bytes data, u64 position) : data_(data), position_(position) {}

  u64 Position() const { return position_; }  // from the first data byte
  void Skip(u64 count) { position_ += count; }

  u8 Byte() { return U8At(data_, position_++); }
  Bytes Take(u64 count);
  VblkNumber Number(u64 width);  // big-endian; of more than eight bytes the last eight count

  // The same behind a length byte of their own.
  Bytes Sized() { return Take(Byte()); }
  VblkNumber SizedNumber() { return Number(Byte()); }

 private:
  Bytes data_;
  u64 position_;
};

// A record's lines. The label brings the opening bracket or "0x" along; a text or GUID is closed by the
// suffix.
void PrintTextLine(std::string_view label, Bytes text, std::string_view suffix = " ]");
void PrintIdentifierLine(std::string_view label, Bytes identifier);
void PrintNumberLine(std::string_view label, VblkNumber number, std::string_view suffix = "");
void PrintGuidLine(std::string_view label, Bytes guid);

// The size of a partition or volume: sectors in hexadecimal, and in MiB.
void PrintSizeLine(std::string_view label, VblkNumber sectors);

}  // namespace trovisk

#endif
