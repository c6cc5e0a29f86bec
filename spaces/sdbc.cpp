// SDBC, the header of the storage database of a Storage Spaces partition: the pool and its last transactions.
//
// Stands 8 sectors behind the partition's SPACEDB; its first 512 bytes whatever the sector size. Big-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown.
// Checked: signature. Not checked: revision, CRC.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

constexpr std::size_t kSignature = 0x00;         // "SDBC" and four blanks
constexpr std::size_t kRevision = 0x08;          // 4 bytes
constexpr std::size_t kCrc32 = 0x0C;             // 4 bytes
constexpr std::size_t kSpaceportGuid = 0x10;     // 16 bytes, in the order in which they are printed
constexpr std::size_t kUnknown20 = 0x20;         // 8 bytes
constexpr std::size_t kUnknown28 = 0x28;         // 3 bytes
constexpr std::size_t kPoolType = 0x2B;          // u8
constexpr std::size_t kUnknown2C = 0x2C;         // 4 bytes
constexpr std::size_t kUnknown30 = 0x30;         // 8 bytes
constexpr std::size_t kLastTransaction1 = 0x38;  // 8 bytes
constexpr std::size_t kLastTransaction2 = 0x40;  // 8 bytes
constexpr std::size_t kTimeStamp = 0x48;         // u64, FILETIME

constexpr FieldRow kBeforePoolType[] = {
    {"CRC32 Checksum              : 0x", kCrc32, Format::kHexBytes, 4},
    {.label = "Spaceport GUID              : { ",
     .offset = kSpaceportGuid,
     .format = Format::kStoredGuid,
     .suffix = " }"},
    {"Unknown                     : 0x", kUnknown20, Format::kHexBytes, 8},
    {"Unknown                     : 0x", kUnknown28, Format::kHexBytes, 3},
};
constexpr FieldRow kBehindPoolType[] = {
    {"Unknown                     : 0x", kUnknown2C, Format::kHexBytes, 4},
    {"Unknown                     : 0x", kUnknown30, Format::kHexBytes, 8},
    {"Last Transaction Number #1  : 0x", kLastTransaction1, Format::kHexBytes, 8},
    {"Last Transaction Number #2  : 0x", kLastTransaction2, Format::kHexBytes, 8},
};
static_assert(FieldsFit(kBeforePoolType, 512) && FieldsFit(kBehindPoolType, 512));

void PrintPoolType(u8 type) {
  switch (type) {
    case 0x1B:
      std::cout << "Unallocated";
      break;
    case 0x1C:
    case 0x20:
      std::cout << "Simple";
      break;
    case 0x23:
    case 0x29:
      std::cout << "Two-Way Mirror";
      break;
    case 0x2A:
    case 0x2D:
      std::cout << "Parity";
      break;
    case 0x33:
      std::cout << "Three-Way Mirror";
      break;
    default:
      std::cout << "0x";
      PrintHexByte(type);
      break;
  }
}

void PrintReport(SectorView header) {
  std::cout << "Magic Number                : [SDBC    ]" << LineEnd << "Revision                    : ";
  PrintRevision(Part<kRevision, 4>(header));
  std::cout << LineEnd;
  PrintFields(header, kBeforePoolType);
  std::cout << "Storage Pool Type           : ";
  PrintPoolType(U8<kPoolType>(header));
  std::cout << LineEnd;
  PrintFields(header, kBehindPoolType);
  std::cout << "Timestamp                   : ";
  PrintFileTime(Be64<kTimeStamp>(header));
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeSdbc(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  const SectorView header(record);
  if (!EqualsText(Part<kSignature, 8>(header), "SDBC    ")) {
    ErrorLine() << "**** No SDBC magic found ****\n";
    DumpAsRawSector(sector, print);
    return kEndPass;
  }
  if (print) PrintReport(header);
  if (!ShowAsRawSector(sector, print)) return kEndPass;
  AddTocEntry(disk, sector + 1, DecodeSdbb, L"SDBB Sector");
  return sector + 1;
}

}  // namespace trovisk
