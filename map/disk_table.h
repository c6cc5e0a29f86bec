// The disks of this machine as text.

#ifndef TROVISK_MAP_DISK_TABLE_H
#define TROVISK_MAP_DISK_TABLE_H

#include <string>
#include <vector>

#include "frame/disk/disk_list.h"

namespace trovisk {

// A table for a person; else a line for each disk, columns separated by tabs, below one that names them.
std::string DisksAsText(const std::vector<ListedDisk>& disks, bool forPerson);

}  // namespace trovisk

#endif
