// Makes the sample disks: make_samples FOLDER

#include <iostream>
#include <string>

#include "tests/disks/samples.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_samples FOLDER\n";
    return 2;
  }
  const std::string folder = argv[1];
  trovisk::test::GptSample().Write(folder + "/sample-gpt.img");
  trovisk::test::MbrSample().Write(folder + "/sample-mbr.img");
  trovisk::test::DynamicSample().Write(folder + "/sample-dynamic.img");
  return 0;
}
