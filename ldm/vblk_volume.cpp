// VBLK records of volumes.
//
// Fields in the order of the disk, big-endian, each where the one before it ends; four of them are there only
// when a flag is set. Layout: the Linux-NTFS project's LDM documentation, "VBLK". Nothing is checked:
// lengths are trusted up to the sector's end.

#include "frame/report/field_table.h"
#include "frame/report/names.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "ldm/vblk_fields.h"
#include "ldm/vblk_records.h"

namespace trovisk {
namespace {

constexpr u8 kHasDriveHint = 0x02;
constexpr u8 kHasId1 = 0x08;
constexpr u8 kHasId2 = 0x20;
constexpr u8 kHasChildSize = 0x80;

constexpr u64 kStateSize = 14;  // the one text without a length byte

// A list behind a length byte; no line when that is zero.
void PrintAttributes(FieldCursor& fields) {
  const u8 count = fields.Byte();
  if (count == 0) return;
  const Bytes attributes = fields.Take(count);
  PrintNotedLine("\tAttributes         :", attributes, [&] {
    for (const u8 attribute : attributes) {
      report << " 0x";
      PrintHexByte(attribute);
    }
  });
}

constexpr ValueName kVolumeTypes[] = {{0x03, "[ Normal ]"}, {0x04, "[ RAID ]"}};
constexpr ValueName kVolumeFlags[] = {{0x11, "[ Normal ]"}, {0x13, "[ RAID ]"}};

// byte: of the record, where it was not cut off.
void PrintNamedByte(std::string_view label, VblkNumber byte, std::span<const ValueName> names) {
  const u8 value = static_cast<u8>(byte.value);
  PrintNotedLine(label, byte.bytes, [&] {
    if (const std::string_view name = NameOf(value, names); !name.empty()) {
      report << name;
    } else {
      report << "0x";
      PrintHexByte(value);
    }
  });
}

// A number behind a length byte; no line when that is zero.
void PrintUnknownNumber(FieldCursor& fields) {
  const u8 length = fields.Byte();
  if (length == 0) return;
  const VblkNumber number = fields.Number(length);
  PrintNotedLine("\tUnknown            : 0x", number.bytes, [&] { PrintHex(number.value, 0); });
}

void PrintPartitionType(VblkNumber stored) {
  const u8 type = static_cast<u8>(stored.value);
  PrintNotedLine("\tPartition Type     : 0x", stored.bytes, [&] {
    PrintHexByte(type);
    report << " (" << PartitionTypeName(type) << ")";
  });
}

// In sectors of 512 bytes, whatever the disk's are.
void PrintChildSize(VblkNumber sectors) {
  PrintNotedLine("\tSize (if childen) : ", sectors.bytes,
                 [&] { report << sectors.value << "(" << (sectors.value << 9 >> 20) << " MiB)"; });
}

}  // namespace

void PrintVolume(Bytes data, u8 flags) {
  FieldCursor fields(data, FirstField(flags));
  report << LineEnd;
  PrintHeading("VBLK Volume", "\t");
  PrintIdentifierLine("\tObject Id.         : 0x", fields.Sized());
  PrintTextLine("\tName               : [ ", fields.Sized());
  PrintTextLine("\tVolume Type        : [ ", fields.Sized());
  PrintAttributes(fields);
  PrintTextLine("\tVolume State       : [ ", fields.Take(kStateSize));
  PrintNamedByte("\tVolume Type        : ", fields.Number(1), kVolumeTypes);
  fields.Skip(1);
  PrintNumberLine("\tVolume Number      : ", fields.Number(1));
  fields.Skip(3);
  PrintNamedByte("\tFlags              : ", fields.Number(1), kVolumeFlags);
  PrintNumberLine("\tNumber Of Children : ", fields.SizedNumber());
  PrintNumberLine("\tLog Commit Id.     : ", fields.Number(8));
  PrintNumberLine("\tDuplicate?         : ", fields.Number(8));
  PrintSizeLine("\tSize               : ", fields.SizedNumber());
  PrintUnknownNumber(fields);
  fields.Skip(3);
  PrintPartitionType(fields.Number(1));
  PrintGuidLine("\tVolume Id.         : { ", fields.Take(16));
  if ((flags & kHasId1) != 0) PrintIdentifierLine("\tId1?               : 0x", fields.Sized());
  if ((flags & kHasId2) != 0) PrintIdentifierLine("\tId2?               : 0x", fields.Sized());
  if ((flags & kHasChildSize) != 0) PrintChildSize(fields.SizedNumber());
  if ((flags & kHasDriveHint) != 0) PrintTextLine("\tDrive Hint         : [ ", fields.Sized());
  if (FirstField(flags) == 0) report << LineEnd;
  PrintGuidLine("\tVolume Id2.        : { ", fields.Take(16));
  const VblkNumber unknown = fields.Number(1);
  PrintNotedLine(
      "\tUnknown.           : 0x", unknown.bytes, [&] { PrintHexByte(static_cast<u8>(unknown.value)); },
      " }");
  report << LineEnd;
}

}  // namespace trovisk
