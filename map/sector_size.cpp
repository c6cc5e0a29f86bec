#include "map/sector_size.h"

#include "frame/examine_volume.h"
#include "frame/global.h"
#include "gpt/gpt_header_layout.h"
#include "map/volume_kind.h"
#include "refimages/boot_sector.h"
#include "volumes/exfat_layout.h"
#include "volumes/refs_layout.h"

namespace trovisk {
namespace {

// Partitions beyond so many are not asked: each costs a read for every size.
constexpr std::size_t kMostAsked = 16;

struct OtherSize {
  u64 size = 0;  // bytes
  std::string reason;
};

// The sector size that a boot sector states, in bytes.
u64 StatedSize(VolumeKind kind, SectorView boot) {
  switch (kind) {
    case VolumeKind::kExFat:
      return u64{1} << (U8<kExFatSectorShift>(boot) % 64);
    case VolumeKind::kReFs:
      return Le32<kReFsSectorSize>(boot);
    default:
      return Le16<kBpbBytesPerSector>(boot);
  }
}

std::string SizeAndReason(const OtherSize& other) {
  const std::string size = std::to_string(other.size);
  return size + ": " + other.reason + "; PATH@" + size + " opens an image so";
}

bool IsGptHeader(const std::optional<std::array<u8, 512>>& record) {
  return record && EqualsText(SliceAt(*record, 0, 8), "EFI PART") &&
         Le64At(*record, gpt_header::kOwnLba) == 1;
}

std::optional<OtherSize> SizeByGpt(const VolumePlace& disk) {
  for (const u64 size : kVolumeSectorSizes) {
    if (size != trovisk::disk.bytesPerSector && IsGptHeader(ReadVolumeRecord(disk, size)))
      return OtherSize{size, "a GPT header at byte " + std::to_string(size)};
  }
  return std::nullopt;
}

std::optional<OtherSize> SizeByPartition(const VolumePlace& disk, u64 first) {
  const u64 own = trovisk::disk.bytesPerSector;
  for (const u64 size : kVolumeSectorSizes) {
    if (size == own || first > (u64{1} << 50)) continue;
    const auto boot = ReadVolumeRecord(disk, first * size);
    if (!boot) continue;
    const VolumeKind kind = KindOfBootSector(SectorView(*boot));
    if (kind != VolumeKind::kNone && StatedSize(kind, SectorView(*boot)) == size)
      return OtherSize{size, "a boot sector at byte " + std::to_string(first * size)};
  }
  return std::nullopt;
}

bool HasVolume(const VolumePlace& disk, u64 first) {
  const auto boot = ReadVolumeRecord(disk, first * trovisk::disk.bytesPerSector);
  return boot && KindOfBootSector(SectorView(*boot)) != VolumeKind::kNone;
}

std::optional<OtherSize> SizeByPartitions(const VolumePlace& disk, const std::vector<Extent>& partitions) {
  std::size_t asked = 0;
  std::optional<OtherSize> other;
  for (const Extent& partition : partitions) {
    if ((partition.flags & (kFlagContainer | kFlagReversed | kFlagEmpty)) != 0) continue;
    if (++asked > kMostAsked) break;
    if (HasVolume(disk, partition.first)) return std::nullopt;  // the size is right
    if (!other) other = SizeByPartition(disk, partition.first);
  }
  return other;
}

}  // namespace

void CheckSectorSize(PartitionTables& tables, u64 lastOnDisk) {
  const VolumePlace whole{
      .sector = 0, .sectors = lastOnDisk == ~u64{0} ? 0 : lastOnDisk + 1, .lastOnDisk = lastOnDisk};
  const bool hasGpt =
      (tables.primary && tables.primary->present) || (tables.backup && tables.backup->present);
  std::optional<OtherSize> other;
  if (!hasGpt) other = SizeByGpt(whole);
  if (!other && !hasGpt && !tables.bareVolume) other = SizeByPartitions(whole, tables.partitions);
  if (!other) return;
  tables.checks.push_back(
      {0, "sector size", Verdict::kBad, std::to_string(disk.bytesPerSector), SizeAndReason(*other)});
}

}  // namespace trovisk
