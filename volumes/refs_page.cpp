// ReFS metadata pages: the page header and the page reference.
//
// The header stands at the start of every metadata page of version 3 and later, a page reference wherever
// one page names another, and in the page itself as its self-descriptor. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it.
// Not checked: signatures, checksums, offsets and lengths.

#include "volumes/refs_page.h"

#include <iostream>

#include "frame/fields.h"

namespace trovisk {
namespace {

// Page header.
constexpr std::size_t kSignature = 0x00;        // 4 bytes
constexpr std::size_t kUnknown = 0x04;          // u32
constexpr std::size_t kVolumeSignature = 0x0C;  // u32
constexpr std::size_t kAllocatorClock = 0x10;   // u64
constexpr std::size_t kTreeClock = 0x18;        // u64
constexpr std::size_t kPageLcns = 0x20;         // four u64
constexpr std::size_t kTableIdHigh = 0x40;      // u64
constexpr std::size_t kTableIdLow = 0x48;       // u64

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

void PrintChecksumType(u8 type) {
  std::cout << "            Checkum Type    : ";
  switch (type) {
    case kCrc32C:
      std::cout << "CRC32-C";
      break;
    case kCrc64:
      std::cout << "CRC64-ECMA-182";
      break;
    default:
      std::cout << "Unknown - " << unsigned{type};
      break;
  }
  std::cout << LineEnd;
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
  std::cout << "Page Signature              : [";
  PrintChars(Part<kSignature, 4>(header));
  std::cout << "]" << LineEnd << "Unknown                     : 0x";
  PrintHex(Le32<kUnknown>(header), 8);
  std::cout << LineEnd << "Volume Signature            : 0x";
  PrintHex(Le32<kVolumeSignature>(header), 8);
  std::cout << LineEnd << "Virtual Allocator Clock     : " << Le64<kAllocatorClock>(header) << LineEnd
            << "Tree Update Clock           : " << Le64<kTreeClock>(header) << LineEnd;
  for (std::size_t i = 0; i < kLcns; ++i) {
    std::cout << "Logical Cluster Number #" << i << "   : " << lcnPrefix;
    PrintHex(Le64At(Part<kPageLcns, kLcns * 8>(header), 8 * i), 16);
    std::cout << LineEnd;
  }
  std::cout << "Table Identifier            : ";
  PrintHex(Le64<kTableIdHigh>(header), 16);
  std::cout << "-";
  PrintHex(Le64<kTableIdLow>(header), 16);
  std::cout << LineEnd;
}

void PrintSelfDescriptor(Bytes page, u32 offset, u32 length) {
  constexpr u32 kLargestSigned = 0x7FFFFFFF;
  std::cout << "Self Descriptor             : 0x";
  if (length <= kLargestSigned) PrintHexBytes(SliceAt(page, offset, length));
  std::cout << LineEnd;
  if (length >= kShortestReference) PrintPageReference(FromAt(page, offset));
}

void PrintPageReference(Bytes reference) {
  std::cout << LineEnd;
  for (std::size_t i = 0; i < kLcns; ++i) {
    std::cout << "            LCN#" << i << "           : 0x";
    PrintHex(Le64At(reference, kReferenceLcns + 8 * i), 16);
    std::cout << LineEnd;
  }
  const u8 type = U8At(reference, kChecksumType);
  const u8 offset = U8At(reference, kChecksumOffset);
  const u16 length = Le16At(reference, kChecksumLength);
  PrintChecksumType(type);
  std::cout << "            Checkum Offset  : 0x";
  PrintHexByte(offset);
  std::cout << LineEnd << "            Checksum Length : " << length << LineEnd
            << "            Checksum        : 0x";
  PrintChecksum(reference, type, kChecksumBase + offset, length);
  std::cout << LineEnd << LineEnd;
}

}  // namespace trovisk
