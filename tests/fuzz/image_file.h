// A disk of the fuzzer as a file, which the program reads as it reads every image file.

#ifndef TROVISK_TESTS_FUZZ_IMAGE_FILE_H
#define TROVISK_TESTS_FUZZ_IMAGE_FILE_H

#include "tests/fuzz/fuzz_device.h"

namespace trovisk::test {

// Writes the disk to the process's one image file, and opens that.
ErrorCode OpenImageFile(const FuzzDisk& disk, Device& device);

}  // namespace trovisk::test

#endif
