// Which volume a boot sector belongs to, by its own signatures, whatever its boot code.

#ifndef TROVISK_MAP_VOLUME_KIND_H
#define TROVISK_MAP_VOLUME_KIND_H

#include "frame/examination.h"

namespace trovisk {

enum class VolumeKind : u8 {
  kNone,
  kFat,
  kNtfs,
  kExFat,
  kReFs,
  kBitLocker,
  kBitLockerToGo,  // its boot sector is FAT's, and so is its decoder; its examination is BitLocker's
};

// The first 512 bytes of a volume. The end mark is not asked for where the signature is strong without it:
// the examination judges it.
VolumeKind KindOfBootSector(SectorView boot);

// What the backup boot sector of a volume says, at the places that are published: in the sectors 6 (FAT32)
// and 12 (exFAT), and in the last one of the partition (NTFS, ReFS). To be asked last, where the first sector
// says nothing and no other content was seen: a former volume's backup outlives it.
VolumeKind KindByBackup(const VolumePlace& place);

// Whether such a backup belongs to a volume that begins there: a partition's stands at the same places of a
// disk, where one ends with it.
bool IsBackedUp(const VolumePlace& place);

// The examination of such a volume; nothing for kNone.
VolumeFindings ExamineVolume(VolumeKind kind, const VolumePlace& place);

}  // namespace trovisk

#endif
