// What the examinations of volumes share: positions in bytes from the volume's start, since its own sectors
// may be larger or smaller than the disk's.

#ifndef TROVISK_FRAME_EXAMINE_VOLUME_H
#define TROVISK_FRAME_EXAMINE_VOLUME_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/examination.h"

namespace trovisk {

// The product, or none where it does not fit.
std::optional<u64> Product(u64 left, u64 right);

// How many sectors of the disk so many bytes take, the last one perhaps in part.
u64 DiskSectors(u64 bytes);

// The sectors of the disk that a volume there can take: those of the partition, where none says those to the
// end of the disk. None where that is unknown too.
std::optional<u64> SectorsAt(const VolumePlace& place);

// Bytes per sector that a volume can have, whatever the disk's are.
inline constexpr std::array<u64, 4> kVolumeSectorSizes = {512, 1024, 2048, 4096};

// Where a sector of the volume begins, for each of these sizes: bytes from the volume's start.
std::vector<u64> PlacesOfSector(u64 sector);

// Where the last sector of the place begins, for each of these sizes likewise.
std::vector<u64> PlacesOfLastSector(const VolumePlace& place);

// The bytes from an offset of the volume on, at most 1 MiB. None where they cannot be read as a whole; what
// lies beyond the end of the disk is not tried.
std::optional<std::vector<u8>> ReadVolumeBytes(const VolumePlace& place, u64 offset, u64 count);

// The 512 bytes of a boot sector or another record there.
std::optional<std::array<u8, 512>> ReadVolumeRecord(const VolumePlace& place, u64 offset);

// The sector of the disk in which an offset of the volume lies; all ones where there is none.
u64 DiskSectorAt(const VolumePlace& place, u64 offset);

// Adds the area of so many bytes of the volume; nothing where it is empty or lies where no sector can be.
void AddArea(VolumeFindings& findings, const VolumePlace& place, std::string_view name, u64 offset,
             u64 bytes);

// A boot sector that is whole: the volume's own or a backup.
struct BootSector {
  std::array<u8, 512> bytes{};
  u64 offset = 0;  // bytes from the start of the volume; not 0: a backup
};

// What an examination needs to find one.
struct BootSectorSearch {
  std::string_view name;                      // of the check, e.g. "NTFS boot sector"
  std::string_view backupName;                // of the backup's, where it is the one
  std::string (*complaint)(SectorView boot);  // what keeps it from being whole; empty: nothing
  bool (*isBackup)(SectorView boot);          // whether a sector is one
  std::vector<u64> backups;                   // where there may be one, bytes from the volume's start
};

// The volume's boot sector or, where that is unreadable or not whole, the first backup that is; checks say
// so.
std::optional<BootSector> FindBootSector(VolumeFindings& findings, const VolumePlace& place,
                                         const BootSectorSearch& search);

// The end mark of a boot sector.
Check CheckBootEndMark(u64 sector, std::string_view name, SectorView boot);

// The volume's length against what holds it: volume and most in sectors of the disk.
Check CheckVolumeSize(u64 sector, std::string_view name, u64 volume, std::optional<u64> most);

// A copy against what it is of; says where the first difference is. Zeros in place of it are no copy:
// missing. expected: whose bytes it should have.
Check CheckCopy(u64 sector, std::string_view name, Bytes original, Bytes copy, std::string_view expected);

// A signature of printable characters. Zeros in place of it: missing.
Check CheckMagic(u64 sector, std::string_view name, Bytes found, std::string_view expected);

// Two and four digits, and three or four for an offset, capitals, behind "0x".
std::string Hex8(u64 value);
std::string Hex16(u64 value);
std::string HexOffset(u64 offset);

// A check of something that cannot be read.
Check Unreadable(u64 sector, std::string_view name, std::string_view expected);

// A check that is not made, and why.
Check NotChecked(u64 sector, std::string_view name, std::string_view why);

}  // namespace trovisk

#endif
