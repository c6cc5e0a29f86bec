#include "volumes/volumes_state.h"

#include "frame/decoders.h"

namespace trovisk {

ReFsVolumeContext refsVolume;

void ResetVolumesState() {
  refsVolume = {};
}

}  // namespace trovisk
