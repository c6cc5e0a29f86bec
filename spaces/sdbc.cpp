// SDBC, the header of the storage database of a Storage Spaces partition: the pool and its last transactions.
//
// Stands 8 sectors behind the partition's SPACEDB; its first 512 bytes whatever the sector size. Big-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown.
// Checked: signature. Not checked: revision, CRC.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "spaces/pool_types.h"
#include "spaces/sdbc_layout.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

using namespace sdbc;

constexpr FieldRow kMagicNumber[] = {
    {"Magic Number                : [", kSignature, Chars(8), "]"},
};
constexpr FieldRow kFields[] = {
    {"CRC32 Checksum              : 0x", kCrc32, HexBytes(4)},
    {"Spaceport GUID              : { ", kSpaceportGuid, kStoredGuidText, " }"},
    {"Unknown                     : 0x", kUnknown20, HexBytes(8)},
    {"Unknown                     : 0x", kUnknown28, HexBytes(3)},
    {"Storage Pool Type           : ", kPoolType, Named(1, kPoolTypes, "0x")},
    {"Unknown                     : 0x", kUnknown2C, HexBytes(4)},
    {"Unknown                     : 0x", kUnknown30, HexBytes(8)},
    {"Last Transaction Number #1  : 0x", kLastTransaction1, HexBytes(8)},
    {"Last Transaction Number #2  : 0x", kLastTransaction2, HexBytes(8)},
    {"Timestamp                   : ", kTimeStamp, kBeFileTime},
};
static_assert(FieldsFit(kMagicNumber, 512) && FieldsFit(kFields, 512));

void PrintReport(SectorView header) {
  PrintFields(header, kMagicNumber);
  PrintRevisionLine(Part<kRevision, 4>(header));
  PrintFields(header, kFields);
}

}  // namespace

u64 DecodeSdbc(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView header(*buffer);
  if (!CheckSignature(Part<kSignature, 8>(header), "SDBC    ", "SDBC")) {
    DumpAsRawSector(sector, print);
    return kEndPass;
  }
  if (print) PrintReport(header);
  if (!ShowAsRawSector(sector, print)) return kEndPass;
  AddTocEntry(disk, sector + 1, DecodeSdbb, L"SDBB Sector");
  return sector + 1;
}

}  // namespace trovisk
