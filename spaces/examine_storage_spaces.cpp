// SPACEDB, SDBC and SDBB: the storage database of a Storage Spaces partition.
//
// The SPACEDB opens the partition, the SDBC stands 8 sectors behind it, the SDBB sectors follow up to the
// first sector with a record that has no signature. Of each the first 512 bytes, whatever the sector size.
// Big-endian. There is no published description: the layout is what is known from disks, and so in part
// unknown. What the types of entries mean is not: they are named by their numbers. Checked: signatures, and
// that each entry has all its parts once. Not checked: the checksums, as it is not known what they cover.

#include <algorithm>
#include <utility>

#include "frame/global.h"
#include "spaces/examine_entries.h"
#include "spaces/pool_types.h"
#include "spaces/sdbb_layout.h"
#include "spaces/sdbc_layout.h"
#include "spaces/spacedb_layout.h"
#include "spaces/storage_spaces.h"

namespace trovisk {
namespace {

constexpr u64 kPieceBytes = u64{1} << 16;
// 2^18 records; the databases that are known have some thousands.
constexpr u64 kMostSectors = u64{1} << 15;

// The sector, where it begins with the signature; judges that it does.
std::optional<std::vector<u8>> ReadSigned(u64 sector, std::string_view name, std::string_view signature,
                                          const VolumePlace& place, std::vector<Check>& checks) {
  const bool onDisk = sector >= place.sector && sector <= place.lastOnDisk;
  auto bytes = onDisk ? ReadSectors(sector, 1) : std::nullopt;
  const bool good =
      bytes && bytes->size() >= 512 && EqualsText(SliceAt(*bytes, 0, signature.size()), signature);
  const std::string text(name);
  checks.push_back({sector, text, good ? Verdict::kGood : Verdict::kMissing, good ? text : "no " + text,
                    "the signature of the " + text});
  if (!good) bytes.reset();
  return bytes;
}

void NoteChecksum(u64 sector, std::string_view name, u64 stated, std::vector<Check>& checks) {
  checks.push_back({sector, std::string(name) + " CRC-32", Verdict::kNotChecked, Hex32(stated),
                    "it is not published what the checksum covers"});
}

bool IsSdbb(Bytes sector) {
  for (u64 i = 0; i < sdbb::kRecords; ++i) {
    if (!EqualsText(SliceAt(sector, i * sdbb::kRecordSize, 4), "SDBB")) return false;
  }
  return true;
}

// Takes the records of the sectors from first on; how many sectors there are.
u64 TakeSectors(u64 first, u64 last, SpacesEntries& entries, std::vector<Check>& checks) {
  const u64 bytesPerSector = disk.bytesPerSector;
  const u64 most = std::max<u64>(kPieceBytes / bytesPerSector, 1);
  u64 sector = first;
  while (sector <= last) {
    const u64 count = std::min(most, last - sector + 1);
    u64 read = count;
    auto bytes = ReadSectors(sector, count);
    if (!bytes && count > 1) {  // so that the readable ones among them are read
      read = 1;
      bytes = ReadSectors(sector, 1);
    }
    if (!bytes) {
      checks.push_back({sector, "SDBB", Verdict::kMissing, "unreadable", "records, or the end of them"});
      break;
    }
    for (u64 i = 0; i < read; ++i, ++sector) {
      const Bytes one = SliceAt(*bytes, i * bytesPerSector, sdbb::kRecords * sdbb::kRecordSize);
      if (!IsSdbb(one)) return sector - first;
      entries.TakeSector(sector, one);
    }
  }
  return sector - first;
}

void ExamineSdbbs(u64 first, const VolumePlace& place, StorageSpaces& spaces, std::vector<Check>& checks) {
  const u64 last = std::min(spaces.partitionLast, place.lastOnDisk);
  SpacesEntries entries;
  u64 count = 0;
  if (first <= last && disk.bytesPerSector >= 512) {
    count = TakeSectors(first, first + std::min(last - first, kMostSectors - 1), entries, checks);
  }
  checks.push_back({first, "SDBB", count != 0 ? Verdict::kGood : Verdict::kMissing,
                    std::to_string(count) + " sectors", "records behind the SDBC"});
  if (count == 0) return;
  spaces.areas.push_back({first, first + (count - 1), "SDBB"});
  if (count == kMostSectors) {
    spaces.remarks.push_back("Only the first " + std::to_string(count) + " sectors of records were read.");
  }
  entries.Finish(first, spaces, checks);
}

}  // namespace

std::optional<StorageSpaces> ExamineStorageSpaces(const VolumePlace& place, std::vector<Check>& checks) {
  const auto header = ReadSigned(place.sector, "SPACEDB", "SPACEDB ", place, checks);
  if (!header) return std::nullopt;
  StorageSpaces spaces;
  spaces.sector = place.sector;
  spaces.partitionLast = place.lastOnDisk;
  if (place.sectors != 0 && place.sectors - 1 <= ~place.sector) {
    spaces.partitionLast = place.sector + (place.sectors - 1);
  }
  spaces.diskGuid = StoredGuidText(SliceAt(*header, spacedb::kSpaceDbGuid, 16));
  spaces.poolGuid = StoredGuidText(SliceAt(*header, spacedb::kStorageGuid, 16));
  spaces.areas.push_back({place.sector, place.sector, "SPACEDB"});
  NoteChecksum(place.sector, "SPACEDB", Be32At(*header, spacedb::kCrc32), checks);

  const u64 sector = place.sector + spacedb::kSectorsToSdbc;
  const auto database = ReadSigned(sector, "SDBC", "SDBC    ", place, checks);
  if (!database) return spaces;
  spaces.areas.push_back({sector, sector, "SDBC"});
  spaces.spaceportGuid = StoredGuidText(SliceAt(*database, sdbc::kSpaceportGuid, 16));
  spaces.poolType = NameOf(U8At(*database, sdbc::kPoolType), kPoolTypes);
  NoteChecksum(sector, "SDBC", Be32At(*database, sdbc::kCrc32), checks);
  ExamineSdbbs(sector + 1, place, spaces, checks);
  return spaces;
}

}  // namespace trovisk
