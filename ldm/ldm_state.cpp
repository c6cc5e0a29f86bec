#include "ldm/ldm_state.h"

namespace trovisk {

u64 LdmConfigStartSector = 0;
u64 LdmVblkEndSector = 0;
u64 LdmKlogStartSector = 0;

}  // namespace trovisk
