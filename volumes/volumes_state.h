// What the boot record of a ReFS volume tells the decoder of its superblock. ResetVolumesState puts it back.

#ifndef TROVISK_VOLUMES_VOLUMES_STATE_H
#define TROVISK_VOLUMES_VOLUMES_STATE_H

#include "frame/bytes.h"

namespace trovisk {

// The ReFS volume whose boot record was decoded last; both zero before the first.
struct ReFsVolumeContext {
  u64 volumeSector = 0;       // absolute sector of the volume's boot record
  u32 sectorsPerCluster = 0;  // as that boot record states it
};

extern ReFsVolumeContext refsVolume;

}  // namespace trovisk

#endif
