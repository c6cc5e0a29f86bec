// ReFS checkpoint: a consistent state of a volume of version 3 or later, with the way to its tables.
//
// Stands in a cluster that the superblock names; there are two, written in turn. Only the page's first 508
// bytes are read. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it.
// Not checked: the signature; offsets and lengths, which end where the bytes read end. The table references
// are not followed.

#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "volumes/refs_layout.h"
#include "volumes/refs_page.h"

namespace trovisk {
namespace {

constexpr std::size_t kRecordSize = 508;
using CheckpointView = FixedBytes<kRecordSize>;

constexpr std::size_t kUnknownFlag1 = 0x50;          // u16
constexpr std::size_t kUnknownFlag2 = 0x52;          // u16
constexpr std::size_t kVersionMajor = 0x54;          // u16
constexpr std::size_t kVersionMinor = 0x56;          // u16
constexpr std::size_t kSelfDescriptorOffset = 0x58;  // u32, bytes from the start of the page
constexpr std::size_t kSelfDescriptorLength = 0x5C;  // u32, bytes
constexpr std::size_t kAllocatorClock = 0x68;        // u64
constexpr std::size_t kOldestLogRecord = 0x70;       // u64
constexpr std::size_t kUnknown = 0x78;               // u64
constexpr std::size_t kBufferOffset = 0x88;          // u32
constexpr std::size_t kBufferLength = 0x8C;          // u32
constexpr std::size_t kPointerCount = 0x90;          // u32
constexpr std::size_t kPointers = 0x94;              // u32 each, bytes from the start of the page

constexpr FieldRow kPointerFields[] = {
    {"Ptr To Object ID Table Ref             : ", kPointers + 0x00, kLe32},
    {"Ptr To Medium Allocator Table Ref      : ", kPointers + 0x04, kLe32},
    {"Ptr To Container Allocator Table Ref   : ", kPointers + 0x08, kLe32},
    {"Ptr To Schema Table Ref                : ", kPointers + 0x0C, kLe32},
    {"Ptr To Parent Child Table Ref          : ", kPointers + 0x10, kLe32},
    {"Ptr To Object ID Table Ref (duplicate) : ", kPointers + 0x14, kLe32},
    {"Ptr To Block Reference Count Table Ref : ", kPointers + 0x18, kLe32},
    {"Ptr To Container Table Ref             : ", kPointers + 0x1C, kLe32},
    {"Ptr To Container Table Ref (duplicate) : ", kPointers + 0x20, kLe32},
    {"Ptr to Schema Table Ref (duplicate)    : ", kPointers + 0x24, kLe32},
    {"Ptr To Container Index Table Ref       : ", kPointers + 0x28, kLe32},
    {"Ptr To Integrity State Table Ref       : ", kPointers + 0x2C, kLe32},
    {"Ptr To Small Allocator Table Ref       : ", kPointers + 0x30, kLe32},
};
constexpr FieldRow kFlagFields[] = {
    {"Unknown Flag#1              : 0x", kUnknownFlag1, ReversedHexBytes(2)},
    {"Unknown Flag#2              : 0x", kUnknownFlag2, ReversedHexBytes(2)},
};
constexpr FieldRow kDescriptorLengthField[] = {
    {"Length Of Self-Descriptor   : ", kSelfDescriptorLength, kLe32},
};
constexpr FieldRow kClockFields[] = {
    {"Checkpoint Virtual Clock    : ", kReFsCheckpointClock, kLe64},
    {"Allocator Virtual Clock     : ", kAllocatorClock, kLe64},
};
constexpr FieldRow kCountFields[] = {
    {"Unknown Buffer Length       : ", kBufferLength, kLe32},
    {"Pointer Count               : ", kPointerCount, kLe32},
};
static_assert(FieldsFit(kFlagFields, kRecordSize) && FieldsFit(kDescriptorLengthField, kRecordSize) &&
              FieldsFit(kClockFields, kRecordSize) && FieldsFit(kCountFields, kRecordSize) &&
              FieldsFit(kPointerFields, kRecordSize));

void PrintHexLineKeepingBase(std::string_view label, Bytes field, u64 value, std::size_t width) {
  PrintNotedLine(label, field, [&] { PrintHexKeepingBase(value, width); });
}

// The offset leaves the report in hexadecimal, and the numbers behind it come out so until a field returns to
// decimal: the first byte of the self-descriptor, where there is one. The hexadecimal fields further down
// keep the base that they find.
void PrintReport(CheckpointView page) {
  report << LineEnd;
  PrintHeading("ReFS CHKP");
  PrintReFsPageHeader(Part<0, kReFsPageHeaderSize>(page), "");
  PrintFields(page, kFlagFields);
  PrintNotedLine("ReFS Version                : ", Part<kVersionMajor, 4>(page),
                 [&] { report << Le16<kVersionMajor>(page) << "." << Le16<kVersionMinor>(page); });
  PrintNotedLine("Offset To Self-Descriptor   : 0x", Part<kSelfDescriptorOffset, 4>(page),
                 [&] { PrintHexStayingHex(Le32<kSelfDescriptorOffset>(page), 8); });
  PrintFields(page, kDescriptorLengthField);
  PrintSelfDescriptor(page, Le32<kSelfDescriptorOffset>(page), Le32<kSelfDescriptorLength>(page));

  PrintFields(page, kClockFields);
  PrintHexLineKeepingBase("Oldest Log Record Reference : 0x", Part<kOldestLogRecord, 8>(page),
                          Le64<kOldestLogRecord>(page), 16);
  PrintHexLineKeepingBase("Unknown                     : 0x", Part<kUnknown, 8>(page), Le64<kUnknown>(page),
                          8);
  PrintHexLineKeepingBase("Unknown Buffer Offset       : 0x", Part<kBufferOffset, 4>(page),
                          Le32<kBufferOffset>(page), 8);
  PrintFields(page, kCountFields);
  report << LineEnd;
  PrintFields(page, kPointerFields);
  report << LineEnd << LineEnd;
}

}  // namespace

u64 DecodeReFsCheckpoint(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord<kRecordSize>(description, sector, print);
  if (!record) return kEndPass;
  if (print) PrintReport(CheckpointView(*record));
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
