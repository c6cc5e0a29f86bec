// Puts the objects of a dynamic disk's database together.

#ifndef TROVISK_LDM_EXAMINE_VOLUMES_H
#define TROVISK_LDM_EXAMINE_VOLUMES_H

#include <vector>

#include "frame/examination.h"
#include "ldm/dynamic_disk.h"
#include "ldm/examine_records.h"

namespace trovisk {

// Fills in disks, volumes and orphans. Which disk is this one and where it starts are taken from what dynamic
// says already. databaseSector: that good answers are about.
void LinkLdmObjects(const LdmObjects& objects, u64 databaseSector, DynamicDisk& dynamic,
                    std::vector<Check>& checks);

// Whether the parts of the volumes hold together and lie where they may.
void JudgeVolumes(const LdmObjects& objects, u64 databaseSector, DynamicDisk& dynamic,
                  std::vector<Check>& checks);

}  // namespace trovisk

#endif
