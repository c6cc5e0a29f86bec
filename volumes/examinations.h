// The examinations of volumes: what their boot sectors state, and whether it holds together. Each reads the
// volume's own sectors and is called where the volume's signature was seen.

#ifndef TROVISK_VOLUMES_EXAMINATIONS_H
#define TROVISK_VOLUMES_EXAMINATIONS_H

#include "frame/examination.h"

namespace trovisk {

VolumeFindings ExamineNtfs(const VolumePlace& place);
VolumeFindings ExamineExFat(const VolumePlace& place);
VolumeFindings ExamineReFs(const VolumePlace& place);
VolumeFindings ExamineBitLocker(const VolumePlace& place);

}  // namespace trovisk

#endif
