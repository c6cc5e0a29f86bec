// The examination of an NTFS volume.
//
// Starts from the boot sector in the volume's first sector or, where that is not whole, from its backup in
// the last sector of the partition. Little-endian. Layout: the BIOS parameter block of NTFS as Microsoft's
// Windows documentation and the Linux-NTFS project describe it: the volume counts one sector less than it
// takes, since the backup stands behind the last one. Checked: the boot sector's end mark and geometry, the
// total of sectors against the partition, the backup against the boot sector, that $MFT and $MFTMirr lie in
// the volume and begin with "FILE", that their first records agree. Not checked: the boot code in the sectors
// behind the first one, and what the records say.

#include <algorithm>
#include <bit>

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"

namespace trovisk {
namespace {

constexpr u64 kBootFileSize = 8192;  // of $Boot, whatever the sector size
constexpr std::string_view kBackupName = "NTFS backup boot sector";

// In bytes, but for the total. Nothing here overflows: the total is bounded.
struct Geometry {
  u64 bytesPerSector = 0;
  u64 bytesPerCluster = 0;
  u64 bytesPerRecord = 0;  // of $MFT; 0: insane
  u64 totalSectors = 0;

  u64 Clusters() const { return totalSectors / (bytesPerCluster / bytesPerSector); }
  u64 Size() const { return totalSectors * bytesPerSector; }
};

constexpr u64 kTotalSectorsLimit = u64{1} << 51;  // times the largest sector: 2^63

// Up to 0x80 it is the number itself, from 0xF0 on the negative exponent of two; between them nothing is
// published.
u64 SectorsPerCluster(u8 stored) {
  if (stored >= 0xF0) return u64{1} << (0x100U - stored);
  return std::has_single_bit(stored) ? stored : 0;
}

// The low byte is a number of clusters or, negative, the exponent of two of the bytes.
u64 BytesPerRecord(u8 stored, u64 bytesPerCluster) {
  constexpr u64 kMost = 65536;
  const u64 bytes = stored < 0x80 ? stored * bytesPerCluster : u64{1} << ((0x100U - stored) % 64);
  return bytes <= kMost && bytes >= 256 ? bytes : 0;
}

Geometry Compute(SectorView boot) {
  Geometry geometry;
  geometry.bytesPerSector = Le16<kBpbBytesPerSector>(boot);
  geometry.bytesPerCluster = geometry.bytesPerSector * SectorsPerCluster(U8<kBpbSectorsPerCluster>(boot));
  geometry.bytesPerRecord = BytesPerRecord(U8<kNtfsFileRecordSegment>(boot), geometry.bytesPerCluster);
  geometry.totalSectors = Le64<kNtfsTotalSectors>(boot);
  return geometry;
}

std::string Complaint(SectorView boot) {
  const Geometry geometry = Compute(boot);
  const u64 bytesPerSector = geometry.bytesPerSector;
  if (!EqualsText(Part<kOemName, 8>(boot), "NTFS    ")) {
    return "the name '" + SafeAscii(Part<kOemName, 8>(boot)) + "'";
  }
  if (!std::has_single_bit(bytesPerSector) || bytesPerSector < 256 || bytesPerSector > 4096) {
    return std::to_string(bytesPerSector) + " bytes per sector";
  }
  if (geometry.bytesPerCluster == 0) {
    return std::to_string(U8<kBpbSectorsPerCluster>(boot)) + " sectors per cluster";
  }
  if (U8<kBpbFatCount>(boot) != 0 || Le16<kBpbFatSize16>(boot) != 0) return "the FATs of another file system";
  if (geometry.totalSectors == 0 || geometry.totalSectors >= kTotalSectorsLimit) {
    return std::to_string(geometry.totalSectors) + " total sectors";
  }
  return {};
}

// Bytes of the volume that the first record of $MFT or its mirror takes; none where the cluster is no place.
std::optional<u64> OffsetOfCluster(const Geometry& geometry, u64 cluster) {
  const auto offset = Product(cluster, geometry.bytesPerCluster);
  if (!offset || *offset >= u64{1} << 63) return std::nullopt;
  return offset;
}

// $MFT or $MFTMirr.
struct TableFile {
  std::string_view name;
  u64 cluster = 0;
  std::optional<u64> offset;
  std::optional<std::vector<u8>> record = {};  // the first one
};

TableFile OpenTable(const VolumePlace& place, const Geometry& geometry, std::string_view name, u64 cluster) {
  TableFile table{.name = name, .cluster = cluster, .offset = OffsetOfCluster(geometry, cluster)};
  if (table.offset && geometry.bytesPerRecord != 0) {
    table.record = ReadVolumeBytes(place, *table.offset, geometry.bytesPerRecord);
  }
  return table;
}

void CheckTable(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry,
                const TableFile& table) {
  const std::string name = "NTFS " + std::string(table.name);
  const bool inside = table.cluster != 0 && table.cluster < geometry.Clusters();
  findings.checks.push_back({place.sector, name + " place", inside ? Verdict::kGood : Verdict::kBad,
                             "cluster " + std::to_string(table.cluster),
                             "from 1 to " + std::to_string(geometry.Clusters() - 1)});
  const u64 sector = table.offset ? DiskSectorAt(place, *table.offset) : ~u64{0};
  if (sector == ~u64{0} || geometry.bytesPerRecord == 0) {
    findings.checks.push_back(
        NotChecked(place.sector, name + " signature", "no place or record size that there can be"));
    return;
  }
  AddArea(findings, place, table.name, *table.offset,
          std::max(geometry.bytesPerCluster, geometry.bytesPerRecord));
  findings.checks.push_back(
      table.record ? CheckMagic(sector, name + " signature", SliceAt(*table.record, 0, 4), "FILE")
                   : Unreadable(sector, name + " signature", "FILE"));
}

void CheckMirror(VolumeFindings& findings, const VolumePlace& place, const TableFile& mft,
                 const TableFile& mirror) {
  constexpr std::string_view kName = "NTFS $MFTMirr first record";
  const u64 sector = mirror.offset ? DiskSectorAt(place, *mirror.offset) : place.sector;
  findings.checks.push_back(mft.record && mirror.record
                                ? CheckCopy(sector, kName, *mft.record, *mirror.record, "the bytes of $MFT's")
                                : NotChecked(sector, kName, "one of the two is unreadable"));
}

void CheckSize(VolumeFindings& findings, const VolumePlace& place, u64 sector, const Geometry& geometry) {
  constexpr std::string_view kName = "NTFS total sectors";
  auto most = SectorsAt(place);
  const u64 backup = DiskSectors(geometry.bytesPerSector);
  if (most) most = *most > backup ? *most - backup : 0;
  findings.checks.push_back(CheckVolumeSize(sector, kName, DiskSectors(geometry.Size()), most));
}

void CheckBackup(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry,
                 SectorView boot) {
  constexpr std::string_view kExpected = "the bytes of the boot sector";
  const u64 sector = DiskSectorAt(place, geometry.Size());
  const auto backup = ReadVolumeRecord(place, geometry.Size());
  findings.checks.push_back(backup ? CheckCopy(sector, kBackupName, boot, *backup, kExpected)
                                   : Unreadable(sector, kBackupName, kExpected));
}

}  // namespace

bool IsNtfsBootSector(SectorView boot) {
  return Complaint(boot).empty();
}

VolumeFindings ExamineNtfs(const VolumePlace& place) {
  VolumeFindings findings;
  findings.type = "NTFS";
  const auto found = FindBootSector(findings, place,
                                    {.name = "NTFS boot sector",
                                     .backupName = kBackupName,
                                     .complaint = Complaint,
                                     .isBackup = IsNtfsBootSector,
                                     .backups = PlacesOfLastSector(place)});
  if (!found) return findings;
  const SectorView boot(found->bytes);
  const Geometry geometry = Compute(boot);
  const u64 sector = DiskSectorAt(place, found->offset);
  // With the backup behind the last one.
  findings.sectors = DiskSectors(geometry.Size() + geometry.bytesPerSector);
  AddArea(findings, place, "boot code", 0, kBootFileSize);
  AddArea(findings, place, "backup boot sector", geometry.Size(), geometry.bytesPerSector);
  findings.checks.push_back(CheckBootEndMark(sector, "NTFS end mark", boot));
  CheckSize(findings, place, sector, geometry);
  if (found->offset == 0) CheckBackup(findings, place, geometry, boot);

  const TableFile mft = OpenTable(place, geometry, "$MFT", Le64<kNtfsMft>(boot));
  const TableFile mirror = OpenTable(place, geometry, "$MFTMirr", Le64<kNtfsMftMirror>(boot));
  CheckTable(findings, place, geometry, mft);
  CheckTable(findings, place, geometry, mirror);
  CheckMirror(findings, place, mft, mirror);
  return findings;
}

}  // namespace trovisk
