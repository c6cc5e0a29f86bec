// SPACEDB, the header that opens the metadata of a Storage Spaces partition.
//
// Stands in the partition's first sector; its first 512 bytes whatever the sector size. Big-endian, but for
// one number. There is no published description: the layout is what is known from disks, and so in part
// unknown.
// Checked: signature. Not checked: revision, CRC.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/filetime.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "spaces/spacedb_layout.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

using namespace spacedb;

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
  PrintNotedLine("Unknown FILETIME            : ", Part<kFileTime, 8>(header),
                 [&] { PrintCalendarTime(Be64<kFileTime>(header)); });
  PrintFields(header, kGuids);
  PrintNotedLine("Unknown                     : 0x", Part<kNumber, 8>(header), [&] {
    const u64 number = Le64<kNumber>(header);
    PrintHex(number, 16);
    report << "(" << number << ")";
  });
  PrintFields(header, kBehindNumber);
  PrintNotedLine("Timestamp                   : ", Part<kTimeStamp, 8>(header), [&] {
    if (const u64 timeStamp = Be64<kTimeStamp>(header); timeStamp != 0) {
      PrintFileTime(timeStamp);
    } else {
      report << "n/a";
    }
  });
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
