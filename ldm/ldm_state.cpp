#include "ldm/ldm_state.h"

#include "frame/decoders.h"

namespace trovisk {

u64 LdmConfigStartSector = 0;
u64 LdmVblkEndSector = 0;
u64 LdmKlogStartSector = 0;

void ResetLdmState() {
  LdmConfigStartSector = 0;
  LdmVblkEndSector = 0;
  LdmKlogStartSector = 0;
}

}  // namespace trovisk
