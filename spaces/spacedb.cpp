// SPACEDB, the header that opens the metadata of a Storage Spaces partition.
//
// Stands in the partition's first sector; its first 512 bytes whatever the sector size. Big-endian, but for
// one number. There is no published description: the layout is what is known from disks, and so in part
// unknown.
// Checked: signature. Not checked: revision, CRC.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/filetime.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
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

// From this sector to the SDBC, whatever the sector size.
constexpr u64 kSectorsToSdbc = 8;

constexpr FieldRow kMagicNumber[] = {
    {"Magic Number                : [", kSignature, Chars(8), "]"},
};
constexpr FieldRow kBeforeFileTime[] = {
    {"CRC32 Checksum              : 0x", kCrc32, HexBytes(4)},
    {"Unknown                     : 0x", kUnknown10, HexBytes(8)},
};
constexpr FieldRow kGuids[] = {
    {"Storage GUID                : { ", kStorageGuid, kStoredGuidText, " }"},
    {"This SPACEDB GUID           : { ", kSpaceDbGuid, kStoredGuidText, " }"},
};
constexpr FieldRow kBehindNumber[] = {
    {"Zeroes                      : 0x", kZeroes, HexBytes(8)},
    {"Unknown                     : 0x", kUnknown50, HexBytes(8)},
};
static_assert(FieldsFit(kMagicNumber, 512) && FieldsFit(kBeforeFileTime, 512) && FieldsFit(kGuids, 512) &&
              FieldsFit(kBehindNumber, 512));

// Day, month, year and time of day in UTC.
void PrintCalendarTime(u64 fileTime) {
  SystemTime time;
  if (!FileTimeToSystemTime(fileTime, time)) {
    report << "n/a";
    return;
  }
  PrintTwoDigits(time.day);
  report << "/";
  PrintTwoDigits(time.month);
  report << "/";
  PrintPadded(time.year, 4);
  report << " ";
  PrintTwoDigits(time.hour);
  report << ":";
  PrintTwoDigits(time.minute);
  report << ":";
  PrintTwoDigits(time.second);
}

void PrintReport(SectorView header) {
  PrintFields(header, kMagicNumber);
  PrintRevisionLine(Part<kRevision, 4>(header));
  PrintFields(header, kBeforeFileTime);
  report << "Unknown FILETIME            : ";
  PrintCalendarTime(Be64<kFileTime>(header));
  report << LineEnd;
  PrintFields(header, kGuids);
  const u64 number = Le64<kNumber>(header);
  report << "Unknown                     : 0x";
  PrintHex(number, 16);
  report << "(" << number << ")" << LineEnd;
  PrintFields(header, kBehindNumber);
  report << "Timestamp                   : ";
  if (const u64 timeStamp = Be64<kTimeStamp>(header); timeStamp != 0) {
    PrintFileTime(timeStamp);
  } else {
    report << "n/a";
  }
  report << LineEnd;
}

}  // namespace

u64 DecodeSpaceDb(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView header(*buffer);
  if (!CheckSignature(Part<kSignature, 8>(header), "SPACEDB ", "SPACEDB")) {
    DumpAsRawSector(sector, print);
    return kEndPass;
  }
  if (print) PrintReport(header);
  if (!ShowAsRawSector(sector, print)) return kEndPass;
  AddTocEntry(disk, sector + kSectorsToSdbc, DecodeSdbc, L"SDBC Sector");
  return sector + 1;
}

}  // namespace trovisk
