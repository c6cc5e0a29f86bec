// A disk that a test has built, open as the program's disk; and what is asked of the checks that an
// examination makes.

#ifndef TROVISK_TESTS_MAP_OPENED_DISK_H
#define TROVISK_TESTS_MAP_OPENED_DISK_H

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "frame/examination.h"
#include "frame/global.h"
#include "frame/report/report.h"
#include "tests/disks/disk.h"
#include "tests/support/child.h"

namespace trovisk::test {

class OpenedDisk {
 public:
  explicit OpenedDisk(const Disk& built) {
    const std::string path = ScratchPath("opened.img");
    built.Write(path);
    errors.DirectTo(&complaints_);
    trovisk::disk.Reset();
    const std::string argument = path + "@" + std::to_string(built.SectorSize());
    EXPECT_TRUE(trovisk::disk.Open(L"opened", argument.c_str())) << complaints_;
  }
  OpenedDisk(const OpenedDisk&) = delete;
  OpenedDisk& operator=(const OpenedDisk&) = delete;
  ~OpenedDisk() {
    trovisk::disk.Reset();
    errors.DirectTo(nullptr);
  }

 private:
  std::string complaints_;
};

// "sector 6: bad: found instead of expected", in the order in which they were made; of one name.
inline std::vector<std::string> ChecksNamed(const std::vector<Check>& checks, std::string_view name) {
  std::vector<std::string> words;
  for (const Check& check : checks) {
    if (check.name != name) continue;
    const std::string where = "sector " + std::to_string(check.sector) + ": ";
    if (check.verdict == Verdict::kGood) {
      words.push_back(where + "good: " + check.found);
    } else {
      constexpr std::string_view kVerdicts[] = {"good", "bad", "missing", "not checked"};
      words.push_back(where + std::string(kVerdicts[static_cast<std::size_t>(check.verdict)]) + ": " +
                      check.found + " instead of " + check.expected);
    }
  }
  return words;
}

// The names of the checks that are bad or missing, each once.
inline std::vector<std::string> Failed(const std::vector<Check>& checks) {
  std::vector<std::string> names;
  for (const Check& check : checks) {
    const bool failed = check.verdict == Verdict::kBad || check.verdict == Verdict::kMissing;
    if (failed && std::ranges::find(names, check.name) == names.end()) names.push_back(check.name);
  }
  return names;
}

using Texts = std::vector<std::string>;

}  // namespace trovisk::test

#endif
