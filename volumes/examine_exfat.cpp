// The examination of an exFAT volume.
//
// Starts from the boot sector in the volume's first sector or, where that is not whole, from its backup in
// the volume's sector 12. Little-endian. Layout, limits and checksum: Microsoft, "exFAT file system
// specification", main and backup boot regions.
// Checked: the boot sector's end mark, that FATs and cluster heap follow one another in the volume and the
// FAT holds all clusters, the volume's length against the partition, the checksums of both boot regions, the
// backup region against the main one. Not checked: the partition offset, which systems ignore, the end marks
// of the extended boot sectors, the FAT, the root directory with the volume's label.

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"
#include "volumes/exfat_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kZeros = 0x00B;  // where FAT has its parameters
constexpr std::size_t kZerosEnd = 0x040;

// In the volume's sectors.
constexpr u64 kRegionSize = 12;
constexpr u64 kChecksumSector = 11;
constexpr u64 kBackupRegion = 12;
constexpr u64 kFirstFat = 24;  // the first place where it can be

constexpr u64 kLengthLimit = u64{1} << 51;  // times the largest sector: 2^63

constexpr std::string_view kBackupName = "exFAT backup boot sector";

// In the volume's sectors, but for the first and the last two. Nothing here overflows: the length is bounded.
struct Geometry {
  u64 bytesPerSector = 0;
  u64 length = 0;
  u64 fatOffset = 0;
  u64 fatLength = 0;
  u64 heapOffset = 0;
  u64 heapLength = 0;
  u64 clusters = 0;
  u64 fats = 0;
};

Geometry Compute(SectorView boot) {
  Geometry geometry;
  geometry.bytesPerSector = u64{1} << U8<kExFatSectorShift>(boot);
  geometry.length = Le64<kExFatVolumeLength>(boot);
  geometry.fatOffset = Le32<kExFatFatOffset>(boot);
  geometry.fatLength = Le32<kExFatFatLength>(boot);
  geometry.heapOffset = Le32<kExFatClusterHeapOffset>(boot);
  geometry.clusters = Le32<kExFatClusterCount>(boot);
  geometry.heapLength = geometry.clusters << U8<kExFatClusterShift>(boot);
  geometry.fats = U8<kExFatFatCount>(boot);
  return geometry;
}

std::string Complaint(SectorView boot) {
  const u64 sectorShift = U8<kExFatSectorShift>(boot);
  const u64 clusterShift = U8<kExFatClusterShift>(boot);
  const u64 fats = U8<kExFatFatCount>(boot);
  if (!EqualsText(Part<kOemName, 8>(boot), "EXFAT   ")) {
    return "the name '" + SafeAscii(Part<kOemName, 8>(boot)) + "'";
  }
  if (!AllZero(Part<kZeros, kZerosEnd - kZeros>(boot))) return "FAT parameters where zeros must be";
  if (sectorShift < 9 || sectorShift > 12) return "a sector shift of " + std::to_string(sectorShift);
  if (clusterShift > 25 - sectorShift) return "a cluster shift of " + std::to_string(clusterShift);
  if (fats != 1 && fats != 2) return std::to_string(fats) + " FATs";
  if (const u64 length = Le64<kExFatVolumeLength>(boot); length == 0 || length >= kLengthLimit) {
    return "a volume length of " + std::to_string(length);
  }
  return {};
}

// What does not fit in the order of the areas; empty: nothing.
std::string Misfit(const Geometry& geometry) {
  constexpr u64 kReservedClusters = 2;
  constexpr u64 kEntrySize = 4;
  if (geometry.fatOffset < kFirstFat) return "FAT in the boot regions";
  if (geometry.fatLength * geometry.bytesPerSector < (geometry.clusters + kReservedClusters) * kEntrySize) {
    return "FAT too small for the clusters";
  }
  if (geometry.heapOffset < geometry.fatOffset + geometry.fats * geometry.fatLength) {
    return "cluster heap in the FAT";
  }
  if (geometry.clusters == 0) return "no clusters";
  if (geometry.heapOffset + geometry.heapLength > geometry.length) {
    return "cluster heap beyond the end of the volume";
  }
  return {};
}

void AddAreas(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry) {
  const auto add = [&](std::string_view name, u64 first, u64 count) {
    AddArea(findings, place, name, first * geometry.bytesPerSector, count * geometry.bytesPerSector);
  };
  add("boot region", 0, kRegionSize);
  add("backup boot region", kBackupRegion, kRegionSize);
  if (geometry.fats == 1) {
    add("FAT", geometry.fatOffset, geometry.fatLength);
  } else {
    add("FAT 1", geometry.fatOffset, geometry.fatLength);
    add("FAT 2", geometry.fatOffset + geometry.fatLength, geometry.fatLength);
  }
  add("cluster heap", geometry.heapOffset, geometry.heapLength);
}

// The fields that change while the volume is in use belong neither to the checksum nor to what the backup
// must repeat.
bool IsVolatile(u64 offset) {
  return offset == kExFatVolumeFlags || offset == kExFatVolumeFlags + 1 || offset == kExFatPercentInUse;
}

u64 Checksum(Bytes sectors) {
  u32 sum = 0;
  for (u64 i = 0; i < sectors.size(); ++i) {
    if (!IsVolatile(i)) sum = (sum << 31 | sum >> 1) + sectors[i];
  }
  return sum;
}

// The checksum fills the sector behind what it is of, over and over.
Check CheckRegion(u64 sector, std::string_view name, const std::optional<std::vector<u8>>& region,
                  u64 bytesPerSector) {
  if (!region) return Unreadable(sector, name, "the checksum of 11 sectors");
  const u64 covered = kChecksumSector * bytesPerSector;
  const u64 expected = Checksum(SliceAt(*region, 0, covered));
  u64 found = Le32At(*region, covered);
  for (u64 i = covered; i < region->size() && found == expected; i += 4)
    found = Le32At(*region, i);
  return CheckEqual(sector, name, Hex32(found), Hex32(expected));
}

void CheckRegions(VolumeFindings& findings, const VolumePlace& place, u64 bytesPerSector, bool primary) {
  const u64 backupOffset = kBackupRegion * bytesPerSector;
  const u64 backupSector = DiskSectorAt(place, backupOffset);
  auto main = ReadVolumeBytes(place, 0, kRegionSize * bytesPerSector);
  auto backup = ReadVolumeBytes(place, backupOffset, kRegionSize * bytesPerSector);
  findings.checks.push_back(CheckRegion(place.sector, "exFAT boot checksum", main, bytesPerSector));
  findings.checks.push_back(CheckRegion(backupSector, "exFAT backup boot checksum", backup, bytesPerSector));
  if (!primary || !main || !backup) return;
  for (const std::size_t offset : {kExFatVolumeFlags, kExFatVolumeFlags + 1, kExFatPercentInUse})
    (*main)[offset] = (*backup)[offset] = 0;
  findings.checks.push_back(
      CheckCopy(backupSector, "exFAT backup boot region", *main, *backup, "the bytes of the boot region"));
}

}  // namespace

bool IsExFatBootSector(SectorView boot) {
  return Complaint(boot).empty();
}

VolumeFindings ExamineExFat(const VolumePlace& place) {
  VolumeFindings findings;
  findings.type = "exFAT";
  const auto found = FindBootSector(findings, place,
                                    {.name = "exFAT boot sector",
                                     .backupName = kBackupName,
                                     .complaint = Complaint,
                                     .isBackup = IsExFatBootSector,
                                     .backups = PlacesOfSector(kBackupRegion)});
  if (!found) return findings;
  const SectorView boot(found->bytes);
  const Geometry geometry = Compute(boot);
  const u64 sector = DiskSectorAt(place, found->offset);
  findings.sectors = DiskSectors(geometry.length * geometry.bytesPerSector);
  AddAreas(findings, place, geometry);
  findings.checks.push_back(CheckBootEndMark(sector, "exFAT end mark", boot));
  const std::string misfit = Misfit(geometry);
  findings.checks.push_back({sector, "exFAT geometry", misfit.empty() ? Verdict::kGood : Verdict::kBad,
                             misfit.empty() ? "FAT, then cluster heap" : misfit, "FAT, then cluster heap"});
  findings.checks.push_back(
      CheckVolumeSize(sector, "exFAT volume length", findings.sectors, SectorsAt(place)));
  CheckRegions(findings, place, geometry.bytesPerSector, found->offset == 0);
  return findings;
}

}  // namespace trovisk
