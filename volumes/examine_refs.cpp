// The examination of a ReFS volume.
//
// Starts from the boot record in the volume's first sector or, where that is not whole, from its backup in
// the last sector of the partition. Little-endian. Layout: as published by researchers of the file system,
// whose makers have not described it; the boot record's header and its checksum: Microsoft, "File system
// recognition structure". Checked: the boot record's checksum, the total of sectors against the
// partition, the backup against the boot record; from version 3 on the signatures of the superblock and of
// the two checkpoints that it names, and which of these is the newer one. Not checked: the checksums of
// metadata pages, what the checkpoints lead to. Two copies of the superblock are described near the volume's
// end; where they are not seen, that is not held against it.

#include <algorithm>
#include <bit>

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"
#include "volumes/refs_layout.h"

namespace trovisk {
namespace {

constexpr std::string_view kBackupName = "ReFS backup boot record";
constexpr u64 kSectorCountLimit = u64{1} << 47;  // times the largest sector: 2^63
constexpr u64 kLargestCluster = u64{1} << 24;
constexpr u64 kPageStart = 512;
constexpr std::size_t kCheckpoints = 2;

// In bytes, but for the count. Nothing here overflows: the numbers are bounded.
struct Geometry {
  u64 bytesPerSector = 0;
  u64 bytesPerCluster = 0;
  u64 sectors = 0;

  u64 Size() const { return sectors * bytesPerSector; }
  u64 Clusters() const { return Size() / bytesPerCluster; }
};

Geometry Compute(SectorView boot) {
  return {.bytesPerSector = Le32<kReFsSectorSize>(boot),
          .bytesPerCluster = u64{Le32<kReFsSectorSize>(boot)} * Le32<kReFsSectorsPerCluster>(boot),
          .sectors = Le64<kReFsSectorCount>(boot)};
}

std::string Complaint(SectorView boot) {
  const Geometry geometry = Compute(boot);
  const u64 bytesPerSector = geometry.bytesPerSector;
  if (!EqualsText(Part<kOemName, 4>(boot), "ReFS")) {
    return "the name '" + SafeAscii(Part<kOemName, 8>(boot)) + "'";
  }
  if (!EqualsText(Part<kReFsIdentifier, 4>(boot), "FSRS")) {
    return "the identifier '" + SafeAscii(Part<kReFsIdentifier, 4>(boot)) + "'";
  }
  if (!std::has_single_bit(bytesPerSector) || bytesPerSector < 512 || bytesPerSector > 65536) {
    return std::to_string(bytesPerSector) + " bytes per sector";
  }
  if (!std::has_single_bit(geometry.bytesPerCluster) || geometry.bytesPerCluster > kLargestCluster) {
    return std::to_string(Le32<kReFsSectorsPerCluster>(boot)) + " sectors per cluster";
  }
  if (geometry.sectors == 0 || geometry.sectors >= kSectorCountLimit) {
    return std::to_string(geometry.sectors) + " sectors";
  }
  return {};
}

// Over the bytes behind the jump, as many as the header states, without the checksum's own.
Check CheckChecksum(u64 sector, SectorView boot) {
  constexpr std::string_view kName = "ReFS boot record checksum";
  const u64 size = Le16<kReFsHeaderSize>(boot);
  if (size < kReFsChecksum + 2 || size > boot.size()) {
    return NotChecked(sector, kName, "it is of " + std::to_string(size) + " bytes");
  }
  u16 sum = 0;
  for (u64 i = kOemName; i < size; ++i) {
    if (i == kReFsChecksum || i == kReFsChecksum + 1) continue;
    sum = static_cast<u16>((u32{sum} << 15 | u32{sum} >> 1) + U8At(boot, i));
  }
  return CheckEqual(sector, kName, Hex16(Le16<kReFsChecksum>(boot)), Hex16(sum));
}

void CheckBackup(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry,
                 SectorView boot) {
  constexpr std::string_view kExpected = "the bytes of the boot record";
  const u64 offset = geometry.Size() - geometry.bytesPerSector;
  const u64 sector = DiskSectorAt(place, offset);
  const auto backup = ReadVolumeRecord(place, offset);
  findings.checks.push_back(backup ? CheckCopy(sector, kBackupName, boot, *backup, kExpected)
                                   : Unreadable(sector, kBackupName, kExpected));
}

using Page = std::optional<std::array<u8, kPageStart>>;

bool HasSignature(const Page& page, std::string_view signature) {
  return page && EqualsText(Part<kReFsPageSignature, 4>(SectorView(*page)), signature);
}

// The first bytes of the metadata page in a cluster.
Page ReadPage(const VolumePlace& place, const Geometry& geometry, u64 cluster) {
  const auto offset = Product(cluster, geometry.bytesPerCluster);
  return offset ? ReadVolumeRecord(place, *offset) : std::nullopt;
}

// Reads the page, with its area and a check of its signature.
Page ExaminePage(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry,
                 std::string_view area, u64 cluster, std::string_view signature) {
  const std::string name = "ReFS " + std::string(area) + " signature";
  const auto offset = Product(cluster, geometry.bytesPerCluster);
  if (!offset || cluster >= geometry.Clusters()) {
    findings.checks.push_back({place.sector, name, Verdict::kBad, "cluster " + std::to_string(cluster),
                               "below " + std::to_string(geometry.Clusters())});
    return std::nullopt;
  }
  AddArea(findings, place, area, *offset, geometry.bytesPerCluster);
  const u64 sector = DiskSectorAt(place, *offset);
  Page page = ReadPage(place, geometry, cluster);
  findings.checks.push_back(page ? CheckMagic(sector, name, SliceAt(*page, kReFsPageSignature, 4), signature)
                                 : Unreadable(sector, name, signature));
  if (!HasSignature(page, signature)) page.reset();
  return page;
}

// The clusters that the superblock names; 0: it does not.
std::array<u64, kCheckpoints> CheckpointClusters(SectorView superblock) {
  std::array<u64, kCheckpoints> clusters{};
  const u64 offset = Le32<kReFsReferencesOffset>(superblock);
  const u64 count = Le32<kReFsReferenceCount>(superblock);
  for (std::size_t i = 0; i < kCheckpoints && i < count; ++i)
    clusters[i] = Le64At(superblock, offset + i * kReFsReferenceSize);
  return clusters;
}

void ExamineCheckpoints(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry,
                        SectorView superblock) {
  constexpr std::string_view kName = "ReFS newer checkpoint";
  const auto clusters = CheckpointClusters(superblock);
  std::array<Page, kCheckpoints> pages;
  for (std::size_t i = 0; i < kCheckpoints; ++i) {
    const std::string area = "checkpoint " + std::to_string(i + 1);
    pages[i] = ExaminePage(findings, place, geometry, area, clusters[i], "CHKP");
  }
  if (!pages[0] || !pages[1]) {
    findings.checks.push_back(NotChecked(place.sector, kName, "there are not two of them"));
    return;
  }
  const u64 first = Le64<kReFsCheckpointClock>(SectorView(*pages[0]));
  const u64 second = Le64<kReFsCheckpointClock>(SectorView(*pages[1]));
  const bool secondIsNewer = second > first;
  const u64 sector = DiskSectorAt(place, clusters[secondIsNewer ? 1 : 0] * geometry.bytesPerCluster);
  if (first == second) {
    findings.checks.push_back(NotChecked(sector, kName, "their virtual clocks are equal"));
    return;
  }
  std::string found = secondIsNewer ? "checkpoint 2" : "checkpoint 1";
  found.append(", virtual clock ").append(std::to_string(std::max(first, second)));
  findings.checks.push_back({sector, std::string(kName), Verdict::kGood, found,
                             "later than " + std::to_string(std::min(first, second))});
}

// In the third and second cluster from the volume's end.
void ExamineSuperblockCopies(VolumeFindings& findings, const VolumePlace& place, const Geometry& geometry) {
  const u64 clusters = geometry.Clusters();
  for (const u64 fromEnd : {3U, 2U}) {
    const std::string area = "superblock copy " + std::to_string(4 - fromEnd);
    if (clusters <= kReFsSuperblockCluster + fromEnd) continue;
    const u64 offset = (clusters - fromEnd) * geometry.bytesPerCluster;
    if (!HasSignature(ReadPage(place, geometry, clusters - fromEnd), "SUPB")) continue;
    AddArea(findings, place, area, offset, geometry.bytesPerCluster);
  }
}

}  // namespace

bool IsReFsBootRecord(SectorView boot) {
  return Complaint(boot).empty();
}

VolumeFindings ExamineReFs(const VolumePlace& place) {
  VolumeFindings findings;
  findings.type = "ReFS";
  const auto found = FindBootSector(findings, place,
                                    {.name = "ReFS boot record",
                                     .backupName = kBackupName,
                                     .complaint = Complaint,
                                     .isBackup = IsReFsBootRecord,
                                     .backups = PlacesOfLastSector(place)});
  if (!found) return findings;
  const SectorView boot(found->bytes);
  const Geometry geometry = Compute(boot);
  const u64 sector = DiskSectorAt(place, found->offset);
  const u64 major = U8<kReFsVersionMajor>(boot);
  findings.type.append(" ").append(std::to_string(major)).append(".");
  findings.type.append(std::to_string(U8<kReFsVersionMinor>(boot)));
  findings.sectors = DiskSectors(geometry.Size());
  AddArea(findings, place, "boot record", 0, geometry.bytesPerSector);
  AddArea(findings, place, "backup boot record", geometry.Size() - geometry.bytesPerSector,
          geometry.bytesPerSector);
  findings.checks.push_back(CheckChecksum(sector, boot));
  findings.checks.push_back(
      CheckVolumeSize(sector, "ReFS total sectors", findings.sectors, SectorsAt(place)));
  if (found->offset == 0) CheckBackup(findings, place, geometry, boot);
  if (major < kReFsFirstVersionWithSuperblock) return findings;

  const Page superblock =
      ExaminePage(findings, place, geometry, "superblock", kReFsSuperblockCluster, "SUPB");
  ExamineSuperblockCopies(findings, place, geometry);
  if (superblock) ExamineCheckpoints(findings, place, geometry, SectorView(*superblock));
  return findings;
}

}  // namespace trovisk
