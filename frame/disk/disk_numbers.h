// Disk numbers where the system has none of its own: the place of a disk in the kernel's list.

#ifndef TROVISK_FRAME_DISK_DISK_NUMBERS_H
#define TROVISK_FRAME_DISK_DISK_NUMBERS_H

#include <iosfwd>
#include <string>
#include <vector>

namespace trovisk {

// The names of the disks that are counted, in the order of the list, which is that of their discovery.
// partitions: the text of /proc/partitions. isPartition: whether the block device of that name is a part of
// another one. Loop, ram, zram, floppy, optical and device-mapper devices are not counted.
std::vector<std::string> NumberedDisks(std::istream& partitions,
                                       bool (*isPartition)(const std::string& name));

// Where sysfs, if it is mounted, tells of the block device of that name, which may hold a '/'.
std::string SysfsFolder(const std::string& name);

// The disks of this machine, by number. The system's file implements it.
std::vector<std::string> NumberedDisksOfThisMachine();

}  // namespace trovisk

#endif
