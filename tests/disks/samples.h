// The sample disks: one structure of each kind that the program decodes, and all of them sound. Their boot
// code is invented, so only a program that knows that code names it; to any other the volumes that are
// recognised by their code alone (NTFS, exFAT) are unknown boot sectors. On larger sectors each structure
// stands at the start of the sector of the same number.

#ifndef TROVISK_TESTS_DISKS_SAMPLES_H
#define TROVISK_TESTS_DISKS_SAMPLES_H

#include "tests/disks/disk.h"

namespace trovisk::test {

// A GPT disk with one partition of each kind.
Disk GptSample(u32 sectorSize = 512);

// An MBR disk with FAT12, FAT16 and FAT32 volumes, and an extended partition that holds NTFS and BitLocker
// volumes.
Disk MbrSample(u32 sectorSize = 512);

// An MBR disk of dynamic volumes.
Disk DynamicSample(u32 sectorSize = 512);

}  // namespace trovisk::test

#endif
