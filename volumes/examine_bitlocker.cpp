// The examination of a BitLocker volume.
//
// Starts from the boot sector in the volume's first sector; there is no backup of it. Little-endian. Layout:
// as in volumes/bitlocker_layout.h. Windows 7 and later, and BitLocker To Go, state where the three metadata
// blocks are; Windows Vista states the cluster of the first one, which states the places of the others.
// Checked: the boot sector's end mark; each block's signature and version. Not checked: what the blocks hold
// behind their header, their checksums among it, whether the three agree, the volume's length.

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/bitlocker_layout.h"
#include "volumes/examinations.h"

namespace trovisk {
namespace {

constexpr std::size_t kBlocks = 3;
constexpr u64 kMostBlockSize = 65536;

// Where the blocks are, in bytes from the boot sector; none: nothing says.
using BlockOffsets = std::array<std::optional<u64>, kBlocks>;

struct Layout {
  std::string_view type;
  u64 version = 0;  // of the metadata blocks
  BlockOffsets blocks;
};

BlockOffsets OffsetsAt(Bytes record, u64 position) {
  BlockOffsets offsets;
  for (std::size_t i = 0; i < kBlocks; ++i)
    offsets[i] = Le64At(record, position + 8 * i);
  return offsets;
}

bool IsBlock(SectorView record) {
  return EqualsText(Part<kFveSignature, 8>(record), kBitLockerSignature);
}

BlockOffsets VistaOffsets(const VolumePlace& place, SectorView boot) {
  const u64 cluster = u64{Le16<kBpbBytesPerSector>(boot)} * U8<kBpbSectorsPerCluster>(boot);
  const auto first = Product(Le64<kNtfsMftMirror>(boot), cluster);
  if (!first || cluster == 0) return {};
  const auto block = ReadVolumeRecord(place, *first);
  BlockOffsets offsets;
  if (block && IsBlock(SectorView(*block))) offsets = OffsetsAt(*block, kFveBlockOffsets);
  offsets[0] = first;
  return offsets;
}

Layout LayoutOf(const VolumePlace& place, SectorView boot) {
  if (!IsBitLockerBootSector(boot)) return {"BitLocker To Go", 2, OffsetsAt(boot, kToGoMetadata)};
  if (U8<kJump + 1>(boot) == kBitLockerJumpVista) {
    return {"BitLocker (Windows Vista)", 1, VistaOffsets(place, boot)};
  }
  return {"BitLocker (Windows 7 and later)", 2, OffsetsAt(boot, kBitLockerMetadata)};
}

std::string Shown(std::string_view signature, u64 version) {
  return std::string(signature) + ", version " + std::to_string(version);
}

void ExamineBlock(VolumeFindings& findings, const VolumePlace& place, const Layout& layout,
                  std::size_t index) {
  const std::string number = std::to_string(index + 1);
  const std::string name = "BitLocker metadata block " + number;
  const std::string area = "FVE metadata block " + number;
  const std::string expected = Shown(kBitLockerSignature, layout.version);
  const auto offset = layout.blocks.at(index);
  if (!offset) {
    findings.checks.push_back(NotChecked(place.sector, name, "nothing says where it is"));
    return;
  }
  const u64 sector = DiskSectorAt(place, *offset);
  const auto record = ReadVolumeRecord(place, *offset);
  if (!record) {
    AddArea(findings, place, area, *offset, 512);
    findings.checks.push_back(Unreadable(sector, name, expected));
    return;
  }
  const SectorView block(*record);
  const u64 size = kFveMetadataSize + u64{Le32<kFveMetadataSize>(block)};
  const bool known = IsBlock(block) && size <= kMostBlockSize;
  AddArea(findings, place, area, *offset, known ? size : 512);
  Check check = CheckEqual(
      sector, name, Shown(SafeAscii(Part<kFveSignature, 8>(block)), Le16<kFveVersion>(block)), expected);
  if (AllZero(block)) {
    check.verdict = Verdict::kMissing;
    check.found = "zeros";
  }
  findings.checks.push_back(check);
}

}  // namespace

bool IsBitLockerBootSector(SectorView boot) {
  return EqualsText(Part<kOemName, 8>(boot), kBitLockerSignature);
}

bool IsBitLockerToGoBootSector(SectorView boot) {
  const auto guid = Part<kToGoGuid, 16>(boot);
  return !IsBitLockerBootSector(boot) && (kBitLockerVolume == guid || kBitLockerUsedSpaceVolume == guid);
}

VolumeFindings ExamineBitLocker(const VolumePlace& place) {
  VolumeFindings findings;
  findings.type = "BitLocker";
  const auto record = ReadVolumeRecord(place, 0);
  if (!record) {
    findings.checks.push_back(Unreadable(place.sector, "BitLocker end mark", "0x55AA"));
    return findings;
  }
  const SectorView boot(*record);
  const Layout layout = LayoutOf(place, boot);
  findings.type = layout.type;
  findings.checks.push_back(CheckBootEndMark(place.sector, "BitLocker end mark", boot));
  for (std::size_t i = 0; i < kBlocks; ++i)
    ExamineBlock(findings, place, layout, i);
  return findings;
}

}  // namespace trovisk
