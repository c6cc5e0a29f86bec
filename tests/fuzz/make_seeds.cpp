// Writes the fuzzer's first inputs: make_seeds FOLDER

#include <fstream>
#include <iostream>

#include "tests/fuzz/seeds.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds FOLDER\n";
    return 2;
  }
  for (const auto& seed : trovisk::test::Seeds()) {
    const auto bytes = seed.Bytes();
    std::ofstream file(std::string(argv[1]) + "/" + seed.name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
      std::cerr << "make_seeds: cannot write " << seed.name << '\n';
      return 1;
    }
  }
  return 0;
}
