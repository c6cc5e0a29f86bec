// Runs inputs of the fuzzer once each, without the fuzzer:
//
//   replay                    the seeds
//   replay FILE_OR_FOLDER...  what stands in files

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/fuzz_run.h"
#include "tests/fuzz/seeds.h"

namespace {

int ReplaySeeds() {
  const auto seeds = trovisk::test::Seeds();
  for (const auto& seed : seeds)
    trovisk::test::FuzzRun(seed.Bytes(), trovisk::test::Effort::kEverything);
  std::printf("%zu seeds\n", seeds.size());
  return 0;
}

void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> text{std::istreambuf_iterator<char>(file), {}};
  const std::vector<trovisk::u8> bytes(text.begin(), text.end());
  trovisk::test::FuzzRun(bytes, trovisk::test::Effort::kEverything);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return ReplaySeeds();
  std::vector<std::filesystem::path> paths;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      paths.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
      paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& path : paths)
    Replay(path);
  std::printf("%zu inputs\n", paths.size());
  return paths.empty() ? 1 : 0;
}
