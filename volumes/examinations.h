// The examinations of volumes: what their boot sectors state, and whether it holds together. Each reads the
// volume's own sectors and is called where the volume's signature was seen, at its start or in its backup.

#ifndef TROVISK_VOLUMES_EXAMINATIONS_H
#define TROVISK_VOLUMES_EXAMINATIONS_H

#include "frame/examination.h"

namespace trovisk {

// Whether a sector is a boot sector of such a volume: by the name in it and, where it states what can be
// insane, by that. The end mark is not asked for.
bool IsNtfsBootSector(SectorView boot);
bool IsExFatBootSector(SectorView boot);
bool IsReFsBootRecord(SectorView boot);
bool IsBitLockerBootSector(SectorView boot);
// The boot sector of the FAT volume that other systems see in place of the encrypted one.
bool IsBitLockerToGoBootSector(SectorView boot);

VolumeFindings ExamineNtfs(const VolumePlace& place);
VolumeFindings ExamineExFat(const VolumePlace& place);
VolumeFindings ExamineReFs(const VolumePlace& place);
VolumeFindings ExamineBitLocker(const VolumePlace& place);

}  // namespace trovisk

#endif
