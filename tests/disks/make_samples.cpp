// Makes the sample disks: make_samples FOLDER

#include <iostream>
#include <string>

#include "tests/disks/mbr.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_samples FOLDER\n";
    return 2;
  }
  const std::string folder = argv[1];
  trovisk::test::Disk disk(8192);
  trovisk::test::PutBootRecord(
      disk, 0, {.diskSignature = 0x1234ABCD, .entries = {{.type = 0x07, .first = 63, .count = 4096}}});
  disk.Write(folder + "/sample-mbr.img");
  return 0;
}
