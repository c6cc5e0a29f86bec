// Boot code that the tests invent: the program's test build recognises it where the shipped one recognises
// the code of the vendors' releases.

#ifndef TROVISK_TESTS_DISKS_BOOT_CODE_H
#define TROVISK_TESTS_DISKS_BOOT_CODE_H

#include <vector>

#include "refimages/catalogue.h"
#include "tests/disks/disk.h"

namespace trovisk::test {

// The invented bytes of one piece of boot code, as many as the catalogue's row has. Byte i is
// (0x11 + 0x0D * code + 7 * i) mod 256, so that a listing can be foretold by hand.
std::vector<u8> InventedCode(BootCode code);

// Puts the code at its place in a boot sector.
void PutInventedCode(Sector& sector, BootCode code);

}  // namespace trovisk::test

#endif
