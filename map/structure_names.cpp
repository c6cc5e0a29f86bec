#include "map/structure_names.h"

#include <algorithm>
#include <iterator>

#include "frame/decoders.h"

namespace trovisk {
namespace {

constexpr StructureKind kKinds[] = {
    {DumpRawSector, "raw_sector"},
    {DumpLabelledRawSector, "raw_sector"},
    {DumpSector512, "raw_sector"},
    {DecodeMasterBootRecord, "mbr"},
    {DecodeExtendedBootRecord, "ebr"},
    {DecodeFatBootSector, "fat_boot_sector", false, true},
    {DecodeFat32FsInfo, "fat32_fsinfo"},
    {DecodeNtfsBootSector, "ntfs_boot_sector", false, true},
    {DecodeNtfsBackupBootSector, "ntfs_backup_boot_sector"},
    {DecodeNtfsBootCode, "ntfs_boot_code"},
    {DecodeBitLockerBootSector, "bitlocker_boot_sector", false, true},
    {DecodeExFatBootSector, "exfat_boot_sector", false, true},
    {DecodeReFsBootRecord, "refs_boot_record", false, true},
    {DecodeReFsBackupBootRecord, "refs_backup_boot_record"},
    {DecodeReFsSuperblock, "refs_superblock", false, false, true},
    {DecodeReFsCheckpoint, "refs_checkpoint"},
    {DecodeGptHeader, "gpt_header"},
    {DecodeGptEntries, "gpt_entries"},
    {DecodePrivhead, "ldm_privhead"},
    {DecodeTocBlock, "ldm_tocblock", true},
    {DecodeVmdb, "ldm_vmdb"},
    {DecodeVblk, "ldm_vblk"},
    {DecodeKlog, "ldm_klog"},
    {DecodeSpaceDb, "spaces_spacedb"},
    {DecodeSdbc, "spaces_sdbc"},
    {DecodeSdbb, "spaces_sdbb", true},
    {DecodeDpomSector, "replica_dpom"},
    {DecodeDpodSector, "replica_dpod", true, false, false, true},
};

constexpr StructureKind kOther{nullptr, "other"};

}  // namespace

const StructureKind& KindOf(SectorDecoder decoder) {
  const auto* const found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                         [&](const StructureKind& kind) { return kind.decoder == decoder; });
  return found == std::end(kKinds) ? kOther : *found;
}

bool IsValid(SectorDecoder decoder, const Reading& reading) {
  if (reading.complained && KindOf(decoder).optional) return reading.readable;
  return reading.next > reading.sector && reading.next != kEndPass && !reading.complained;
}

}  // namespace trovisk
