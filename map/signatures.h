// Contents of partitions that have no decoder: other systems' file systems, and what holds further volumes.

#ifndef TROVISK_MAP_SIGNATURES_H
#define TROVISK_MAP_SIGNATURES_H

#include "frame/examination.h"

namespace trovisk {

struct ForeignContent {
  std::string type;   // "ext4", "LUKS2", "md RAID 1.2", ...
  std::string label;  // UTF-8, safe to show; empty: it has none, or not beside its signature
  u64 sectors = 0;    // as it states, in sectors of the disk; 0: not stated
  u64 sector = 0;     // absolute: where its signature stands
};

// The content of that place by its signature; none where no known one is there. Reads sectors of the place
// alone, at most 300 KiB of them; what cannot be read counts as zeros.
std::optional<ForeignContent> NameContent(const VolumePlace& place);

// The same of md RAID alone, whose superblock may stand beside the boot sector of the volume that the RAID
// holds, or of a former one.
std::optional<ForeignContent> NameRaidMember(const VolumePlace& place);

}  // namespace trovisk

#endif
