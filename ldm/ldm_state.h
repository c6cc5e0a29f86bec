// What one structure of a dynamic disk's configuration tells the decoders of the next. Each value is that of
// the structure decoded last, in either pass; all are zero before the first. ResetLdmState puts them back.

#ifndef TROVISK_LDM_LDM_STATE_H
#define TROVISK_LDM_LDM_STATE_H

#include "frame/bytes.h"

namespace trovisk {

// Absolute first sector of the configuration area; PRIVHEAD to TOCBLOCK.
extern u64 LdmConfigStartSector;

// Absolute last sector of the configuration region, where the VBLK records end; TOCBLOCK to VBLK.
extern u64 LdmVblkEndSector;

// Absolute first sector of the log region; TOCBLOCK to KLOG.
extern u64 LdmKlogStartSector;

}  // namespace trovisk

#endif
