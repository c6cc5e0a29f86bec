// VBLK records of components, partitions, disks and disk groups.
//
// Fields in the order of the disk, big-endian, each where the one before it ends. Layout: the Linux-NTFS
// project's LDM documentation, "VBLK". Nothing is checked: lengths are trusted up to the sector's end.

#include "ldm/vblk_records.h"

#include <algorithm>

#include "frame/report/verbs.h"
#include "ldm/vblk_fields.h"

namespace trovisk {
namespace {

// The flags of these two types are compared as a whole.
constexpr u8 kComponentStriped = 0x10;
constexpr u8 kPartitionIndexed = 0x08;

// The room that a disk's first form leaves for the alternate name and what follows it.
constexpr u64 kAlternateNameEnd = 92;

}  // namespace

void PrintComponent(Bytes data, u8 flags) {
  FieldCursor fields(data, FirstField(flags));
  report << LineEnd;
  PrintHeading("VBLK Component (0x32)", "\t");
  PrintIdentifierLine("\tObject Id.          : 0x", fields.Sized());
  PrintTextLine("\tName                : [ ", fields.Sized());
  PrintTextLine("\tVolume State        : [ ", fields.Sized());
  PrintNumberLine("\tComponent Type      : ", fields.Number(1));
  fields.Skip(4);
  PrintNumberLine("\tNumber of Children  : ", fields.SizedNumber());
  PrintNumberLine("\tLog Commit Id.      : ", fields.Number(8));
  fields.Skip(8);
  PrintIdentifierLine("\tParent's Object Id. : 0x", fields.Sized());
  if (flags == kComponentStriped) {
    fields.Skip(1);
    const u8 length = fields.Byte();
    PrintNumberLine("\tStripe Size         : ", fields.Number(length), " (sectors)");
    fields.Skip(length);  // the number of columns is looked for as far behind the stripe size as this is long
    PrintNumberLine("\tNumber Of Columns   : ", fields.SizedNumber());
  }
  report << LineEnd;
}

void PrintPartition(Bytes data, u8 flags) {
  FieldCursor fields(data, FirstField(flags));
  report << LineEnd;
  PrintHeading("VBLK Partition", "\t");
  PrintIdentifierLine("\tObject Id.          : 0x", fields.Sized());
  PrintTextLine("\tName                : [ ", fields.Sized());
  fields.Skip(4);
  PrintNumberLine("\tLog Commit Id.      : ", fields.Number(8));
  PrintNumberLine("\tStart (Disk Offset) :", fields.Number(8));
  PrintNumberLine("\tVolume Offset       : ", fields.Number(8));
  PrintSizeLine("\tSize                : ", fields.SizedNumber());
  PrintIdentifierLine("\tParent's Object Id. : 0x", fields.Sized());
  PrintIdentifierLine("\tDisk's Object Id.   : 0x", fields.Sized());
  if (flags == kPartitionIndexed) PrintNumberLine("\tComponent Part Idx  : ", fields.SizedNumber());
  report << LineEnd;
}

void PrintDiskForm1(Bytes data, u8 /*flags*/) {
  FieldCursor fields(data, 0);
  report << LineEnd;
  PrintHeading("VBLK Disk (0x34)", "\t");
  PrintIdentifierLine("\tObject Id.         : 0x", fields.Sized());
  PrintTextLine("\tName               : [ ", fields.Sized());
  PrintTextLine("\tDisk Id.           : { ", fields.Sized(), " }");
  const u64 namePosition = fields.Position() + 1;
  const u64 room = kAlternateNameEnd - std::min(namePosition, kAlternateNameEnd);
  PrintTextLine("\tAlternate Name     : [ ", SliceAt(fields.Sized(), 0, room));
  if (fields.Position() <= kAlternateNameEnd) {
    fields.Skip(4);
    PrintNumberLine("\tLog Commit Id.     : ", fields.Number(8));
  }
  report << LineEnd;
}

void PrintDiskForm2(Bytes data, u8 /*flags*/) {
  FieldCursor fields(data, 0);
  report << LineEnd;
  PrintHeading("VBLK Disk (0x44)", "\t");
  PrintIdentifierLine("\tObject Id.         : 0x", fields.Sized());
  PrintTextLine("\tName               : [ ", fields.Sized());
  PrintGuidLine("\tDisk Id.           : { ", fields.Take(16));
  PrintGuidLine("\tDisk Id.           : { ", fields.Take(16));
  fields.Skip(3);
  PrintNumberLine("\tId.?               : ", fields.Number(2));
  PrintNumberLine("\tLog Commit Id.     : ", fields.Number(8));
  report << LineEnd;
}

void PrintDiskGroupForm1(Bytes data, u8 /*flags*/) {
  FieldCursor fields(data, 0);
  report << LineEnd;
  PrintHeading("VBLK Disk Group (0x35)", "\t");
  PrintIdentifierLine("\tObject Id.         : 0x", fields.Sized());
  PrintTextLine("\tName               : [ ", fields.Sized());
  PrintTextLine("\tDisk Group Id.     : { ", fields.Sized(), " }");
  fields.Skip(4);
  PrintNumberLine("\tLog Commit Id.     : ", fields.Number(8));
  const VblkNumber count = fields.Number(1);  // of bytes that follow, all 0xFF
  PrintNumberLine("\tUnknown            : 0xFF x ", count);
  fields.Skip(count.value);
  PrintNumberLine("\tUnknown            : 0xFF x ", fields.Number(1));
  report << LineEnd;
}

void PrintDiskGroupForm2(Bytes data, u8 /*flags*/) {
  FieldCursor fields(data, 0);
  report << LineEnd;
  PrintHeading("VBLK Disk Group (0x45)", "\t");
  PrintIdentifierLine("\tObject Id.         : 0x", fields.Sized());
  PrintTextLine("\tName               : [ ", fields.Sized());
  PrintGuidLine("\tDisk Group Id.     : { ", fields.Take(16));
  PrintGuidLine("\tDisk Set Id.       : { ", fields.Take(16));
  fields.Skip(4);
  PrintNumberLine("\tLog Commit Id.     : ", fields.Number(8));
  const VblkNumber count = fields.Number(1);  // of bytes that follow, all 0xFF
  PrintNumberLine("\tUnknown            : 0xFF x ", count);
  fields.Skip(count.value);
  const VblkNumber secondCount = fields.Number(1);  // of bytes that follow, all alike
  const bool zeros = fields.Byte() == 0;
  PrintNumberLine(zeros ? "\tUnknown            : 0x00 x " : "\tUnknown            : 0xFF x ", secondCount);
  report << LineEnd;
}

}  // namespace trovisk
