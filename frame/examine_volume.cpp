#include "frame/examine_volume.h"

#include <algorithm>

#include "frame/global.h"

namespace trovisk {
namespace {

constexpr u64 kNowhere = ~u64{0};
constexpr u64 kMostBytes = u64{1} << 20;
constexpr std::size_t kEndMarkOffset = 0x1FE;

}  // namespace

std::optional<u64> Product(u64 left, u64 right) {
  if (left != 0 && right > ~u64{0} / left) return std::nullopt;
  return left * right;
}

u64 DiskSectors(u64 bytes) {
  const u64 size = disk.bytesPerSector;
  if (size == 0) return 0;
  return bytes / size + (bytes % size != 0 ? 1 : 0);
}

std::optional<u64> SectorsAt(const VolumePlace& place) {
  if (place.sectors != 0) return place.sectors;
  if (place.lastOnDisk == kNowhere || place.lastOnDisk < place.sector) return std::nullopt;
  return place.lastOnDisk - place.sector + 1;
}

std::vector<u64> PlacesOfSector(u64 sector) {
  std::vector<u64> places(kVolumeSectorSizes.begin(), kVolumeSectorSizes.end());
  for (u64& place : places)
    place *= sector;
  return places;
}

std::vector<u64> PlacesOfLastSector(const VolumePlace& place) {
  std::vector<u64> places;
  const u64 bytes = Product(SectorsAt(place).value_or(0), disk.bytesPerSector).value_or(0);
  for (const u64 size : kVolumeSectorSizes) {
    if (bytes > size) places.push_back(bytes - size);
  }
  return places;
}

u64 DiskSectorAt(const VolumePlace& place, u64 offset) {
  const u64 size = disk.bytesPerSector;
  if (size == 0 || offset / size > kNowhere - place.sector) return kNowhere;
  return place.sector + offset / size;
}

std::optional<std::vector<u8>> ReadVolumeBytes(const VolumePlace& place, u64 offset, u64 count) {
  const u64 size = disk.bytesPerSector;
  if (size == 0 || count == 0 || count > kMostBytes) return std::nullopt;
  const u64 first = DiskSectorAt(place, offset);
  const u64 skipped = offset % size;
  const u64 sectors = DiskSectors(skipped + count);
  if (first > place.lastOnDisk || sectors - 1 > place.lastOnDisk - first) return std::nullopt;
  auto bytes = ReadSectors(first, sectors);
  if (!bytes) return std::nullopt;
  const auto begin = bytes->begin() + static_cast<std::ptrdiff_t>(skipped);
  return std::vector<u8>(begin, begin + static_cast<std::ptrdiff_t>(count));
}

std::optional<std::array<u8, 512>> ReadVolumeRecord(const VolumePlace& place, u64 offset) {
  std::array<u8, 512> record{};
  const auto bytes = ReadVolumeBytes(place, offset, record.size());
  if (!bytes) return std::nullopt;
  std::copy(bytes->begin(), bytes->end(), record.begin());
  return record;
}

void AddArea(VolumeFindings& findings, const VolumePlace& place, std::string_view name, u64 offset,
             u64 bytes) {
  if (bytes == 0 || bytes - 1 > ~u64{0} - offset) return;
  const u64 first = DiskSectorAt(place, offset);
  const u64 last = DiskSectorAt(place, offset + bytes - 1);
  if (first == kNowhere || last == kNowhere) return;
  findings.areas.push_back({first, last, std::string(name)});
}

std::optional<BootSector> FindBootSector(VolumeFindings& findings, const VolumePlace& place,
                                         const BootSectorSearch& search) {
  Check check{place.sector, std::string(search.name), Verdict::kGood, "whole", "whole"};
  std::optional<BootSector> whole;
  if (const auto boot = ReadVolumeRecord(place, 0)) {
    const std::string complaint = search.complaint(SectorView(*boot));
    if (complaint.empty()) {
      whole = {.bytes = *boot};
    } else if (AllZero(*boot)) {
      check.verdict = Verdict::kMissing;
      check.found = "zeros";
    } else {
      check.verdict = Verdict::kBad;
      check.found = complaint;
    }
  } else {
    check.verdict = Verdict::kMissing;
    check.found = "unreadable";
  }
  findings.checks.push_back(check);
  for (const u64 offset : search.backups) {
    if (whole) break;
    const auto backup = ReadVolumeRecord(place, offset);
    if (!backup || !search.isBackup(SectorView(*backup))) continue;
    whole = {.bytes = *backup, .offset = offset};
    findings.checks.push_back(
        {DiskSectorAt(place, offset), std::string(search.backupName), Verdict::kGood, "whole", "whole"});
  }
  return whole;
}

Check CheckBootEndMark(u64 sector, std::string_view name, SectorView boot) {
  return CheckEqual(sector, name, Hex16(Be16<kEndMarkOffset>(boot)), Hex16(0x55AA));
}

Check CheckVolumeSize(u64 sector, std::string_view name, u64 volume, std::optional<u64> most) {
  if (!most) return NotChecked(sector, name, "neither a partition nor the disk says how much room there is");
  return {sector, std::string(name), volume <= *most ? Verdict::kGood : Verdict::kBad, std::to_string(volume),
          "at most " + std::to_string(*most)};
}

Check CheckCopy(u64 sector, std::string_view name, Bytes original, Bytes copy, std::string_view expected) {
  Check check{sector, std::string(name), Verdict::kGood, std::string(expected), std::string(expected)};
  if (AllZero(copy) && !AllZero(original)) {
    check.verdict = Verdict::kMissing;
    check.found = "zeros";
    return check;
  }
  for (u64 i = 0; i < original.size(); ++i) {
    if (i < copy.size() && original[i] == copy[i]) continue;
    check.verdict = Verdict::kBad;
    check.found = "other bytes from " + HexOffset(i) + " on";
    break;
  }
  return check;
}

Check CheckMagic(u64 sector, std::string_view name, Bytes found, std::string_view expected) {
  Check check = CheckEqual(sector, name, SafeAscii(found), std::string(expected));
  if (AllZero(found)) {
    check.verdict = Verdict::kMissing;
    check.found = "zeros";
  }
  return check;
}

std::string Hex8(u64 value) {
  return "0x" + Hex32(value).substr(8);
}

std::string Hex16(u64 value) {
  return "0x" + Hex32(value).substr(6);
}

std::string HexOffset(u64 offset) {
  return "0x" + Hex32(offset).substr(offset > 0xFFF ? 6 : 7);
}

Check Unreadable(u64 sector, std::string_view name, std::string_view expected) {
  return {sector, std::string(name), Verdict::kMissing, "unreadable", std::string(expected)};
}

Check NotChecked(u64 sector, std::string_view name, std::string_view why) {
  return {sector, std::string(name), Verdict::kNotChecked, "", std::string(why)};
}

}  // namespace trovisk
