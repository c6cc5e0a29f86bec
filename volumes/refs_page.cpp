// ReFS metadata pages: the page header and the page reference.
//
// The header stands at the start of every metadata page of version 3 and later, a page reference wherever
// one page names another, and in the page itself as its self-descriptor. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it.
// Not checked: signatures, checksums, offsets and lengths.

#include "volumes/refs_page.h"

#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "volumes/refs_layout.h"

namespace trovisk {
namespace {

// Page header.
constexpr std::size_t kUnknown = 0x04;          // u32
constexpr std::size_t kVolumeSignature = 0x0C;  // u32
constexpr std::size_t kAllocatorClock = 0x10;   // u64
constexpr std::size_t kTreeClock = 0x18;        // u64
constexpr std::size_t kPageLcns = 0x20;         // four u64
constexpr std::size_t kTableIdHigh = 0x40;      // u64
constexpr std::size_t kTableIdLow = 0x48;       // u64

constexpr FieldRow kHeaderFields[] = {
    {"Page Signature              : [", kReFsPageSignature, Chars(4), "]"},
    {"Unknown                     : 0x", kUnknown, ReversedHexBytes(4)},
    {"Volume Signature            : 0x", kVolumeSignature, ReversedHexBytes(4)},
    {"Virtual Allocator Clock     : ", kAllocatorClock, kLe64},
    {"Tree Update Clock           : ", kTreeClock, kLe64},
};
static_assert(FieldsFit(kHeaderFields, kReFsPageHeaderSize));

// Page reference.
constexpr u64 kReferenceLcns = 0x00;   // four u64
constexpr u64 kChecksumType = 0x22;    // u8
constexpr u64 kChecksumOffset = 0x23;  // u8, from kChecksumBase
constexpr u64 kChecksumLength = 0x24;  // u16, bytes
constexpr u64 kChecksumBase = 0x20;
constexpr u32 kShortestReference = 48;

constexpr u8 kCrc32C = 1;
constexpr u8 kCrc64 = 2;

constexpr std::size_t kLcns = 4;

constexpr ValueName kChecksumTypes[] = {
    {kCrc32C, "CRC32-C"},
    {kCrc64, "CRC64-ECMA-182"},
};

void PrintChecksumType(u8 type) {
  const std::string_view name = NameOf(type, kChecksumTypes);
  if (name.empty()) {
    report << "Unknown - " << type;
  } else {
    report << name;
  }
}

// A number where type and length go together, else byte by byte. The length counts as a signed number.
void PrintChecksum(Bytes reference, u8 type, u64 position, u16 length) {
  constexpr u16 kLargestSigned = 0x7FFF;
  if (type == kCrc32C && length == 4) {
    PrintHex(Le32At(reference, position), 8);
  } else if (type == kCrc64 && length == 8) {
    PrintHex(Le64At(reference, position), 16);
  } else if (length <= kLargestSigned) {
    PrintReversedHexBytes(SliceAt(reference, position, length));
  }
}

}  // namespace

void PrintReFsPageHeader(FixedBytes<kReFsPageHeaderSize> header, std::string_view lcnPrefix) {
  PrintFields(header, kHeaderFields);
  for (std::size_t i = 0; i < kLcns; ++i) {
    const Bytes lcn = SliceAt(header, kPageLcns + 8 * i, 8);
    report << "Logical Cluster Number #" << i << "   : ";
    PrintNotedLine(lcnPrefix, lcn, [&] { PrintHex(Le64At(lcn, 0), 16); });
  }
  PrintNotedLine("Table Identifier            : ", Part<kTableIdHigh, 16>(header), [&] {
    PrintHex(Le64<kTableIdHigh>(header), 16);
    report << "-";
    PrintHex(Le64<kTableIdLow>(header), 16);
  });
}

void PrintSelfDescriptor(Bytes page, u32 offset, u32 length) {
  constexpr u32 kLargestSigned = 0x7FFFFFFF;
  report << "Self Descriptor             : 0x";
  if (length <= kLargestSigned) PrintHexBytes(SliceAt(page, offset, length));
  report << LineEnd;
  if (length >= kShortestReference) PrintPageReference(FromAt(page, offset));
}

void PrintPageReference(Bytes reference) {
  report << LineEnd;
  for (std::size_t i = 0; i < kLcns; ++i) {
    const u64 position = kReferenceLcns + 8 * i;
    report << "            LCN#" << i;
    PrintNotedLine("           : 0x", SliceAt(reference, position, 8),
                   [&] { PrintHex(Le64At(reference, position), 16); });
  }
  const u8 type = U8At(reference, kChecksumType);
  const u8 offset = U8At(reference, kChecksumOffset);
  const u16 length = Le16At(reference, kChecksumLength);
  PrintNotedLine("            Checkum Type    : ", SliceAt(reference, kChecksumType, 1),  // sic
                 [&] { PrintChecksumType(type); });
  PrintNotedLine("            Checkum Offset  : 0x", SliceAt(reference, kChecksumOffset, 1),  // sic
                 [&] { PrintHexByte(offset); });
  PrintNotedLine("            Checksum Length : ", SliceAt(reference, kChecksumLength, 2),
                 [&] { report << length; });
  const u64 checksum = kChecksumBase + offset;
  PrintNotedLine("            Checksum        : 0x", SliceAt(reference, checksum, length),
                 [&] { PrintChecksum(reference, type, checksum, length); });
  report << LineEnd;
}

}  // namespace trovisk
