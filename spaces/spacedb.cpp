// SPACEDB, the header that opens the metadata of a Storage Spaces partition.
//
// Stands in the partition's first sector; its first 512 bytes whatever the sector size. Big-endian, but for
// one number. There is no published description: the layout is what is known from disks, and so in part
// unknown.
// Checked: signature. Not checked: revision, CRC.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "frame/filetime.h"
#include "frame/global.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

constexpr std::size_t kSignature = 0x00;    // "SPACEDB "
constexpr std::size_t kRevision = 0x08;     // 4 bytes
constexpr std::size_t kCrc32 = 0x0C;        // 4 bytes
constexpr std::size_t kUnknown10 = 0x10;    // 8 bytes
constexpr std::size_t kFileTime = 0x18;     // u64, FILETIME
constexpr std::size_t kStorageGuid = 0x20;  // 16 bytes, in the order in which they are printed
constexpr std::size_t kSpaceDbGuid = 0x30;  // 16 bytes, likewise
constexpr std::size_t kNumber = 0x40;       // u64, little-endian
constexpr std::size_t kZeroes = 0x48;       // 8 bytes
constexpr std::size_t kUnknown50 = 0x50;    // 8 bytes
constexpr std::size_t kTimeStamp = 0x58;    // u64, FILETIME; 0: none

// From this sector to the catalogue header, whatever the sector size.
constexpr u64 kSectorsToSdbc = 8;

constexpr FieldRow kBeforeFileTime[] = {
    {"CRC32 Checksum              : 0x", kCrc32, Format::kHexBytes, 4},
    {"Unknown                     : 0x", kUnknown10, Format::kHexBytes, 8},
};
constexpr FieldRow kGuids[] = {
    {.label = "Storage GUID                : { ",
     .offset = kStorageGuid,
     .format = Format::kStoredGuid,
     .suffix = " }"},
    {.label = "This SPACEDB GUID           : { ",
     .offset = kSpaceDbGuid,
     .format = Format::kStoredGuid,
     .suffix = " }"},
};
constexpr FieldRow kBehindNumber[] = {
    {"Zeroes                      : 0x", kZeroes, Format::kHexBytes, 8},
    {"Unknown                     : 0x", kUnknown50, Format::kHexBytes, 8},
};
static_assert(FieldsFit(kBeforeFileTime, 512) && FieldsFit(kGuids, 512) && FieldsFit(kBehindNumber, 512));

// Day, month, year and time of day in UTC.
void PrintCalendarTime(u64 fileTime) {
  SystemTime time;
  if (!FileTimeToSystemTime(fileTime, time)) {
    std::cout << "n/a";
    return;
  }
  PrintTwoDigits(time.day);
  std::cout << "/";
  PrintTwoDigits(time.month);
  std::cout << "/";
  PrintPadded(time.year, 4);
  std::cout << " ";
  PrintTwoDigits(time.hour);
  std::cout << ":";
  PrintTwoDigits(time.minute);
  std::cout << ":";
  PrintTwoDigits(time.second);
}

void PrintReport(SectorView header) {
  std::cout << "Magic Number                : [SPACEDB ]" << LineEnd << "Revision                    : ";
  PrintRevision(Part<kRevision, 4>(header));
  std::cout << LineEnd;
  PrintFields(header, kBeforeFileTime);
  std::cout << "Unknown FILETIME            : ";
  PrintCalendarTime(Be64<kFileTime>(header));
  std::cout << LineEnd;
  PrintFields(header, kGuids);
  const u64 number = Le64<kNumber>(header);
  std::cout << "Unknown                     : 0x";
  PrintHex(number, 16);
  std::cout << "(" << number << ")" << LineEnd;
  PrintFields(header, kBehindNumber);
  std::cout << "Timestamp                   : ";
  if (const u64 timeStamp = Be64<kTimeStamp>(header); timeStamp != 0) {
    PrintFileTime(timeStamp);
  } else {
    std::cout << "n/a";
  }
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeSpaceDb(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  const SectorView header(record);
  if (!EqualsText(Part<kSignature, 8>(header), "SPACEDB ")) {
    ErrorLine() << "**** No SPACEDB magic found ****\n";
    DumpAsRawSector(sector, print);
    return kEndPass;
  }
  if (print) PrintReport(header);
  if (!ShowAsRawSector(sector, print)) return kEndPass;
  AddTocEntry(disk, sector + kSectorsToSdbc, DecodeSdbc, L"SDBC Sector");
  return sector + 1;
}

}  // namespace trovisk
