// A disk as the examinations see it, and what they say of it as text.

#ifndef TROVISK_TESTS_MAP_EXAMINED_H
#define TROVISK_TESTS_MAP_EXAMINED_H

#include <string>
#include <string_view>

#include "frame/examination.h"
#include "frame/global.h"
#include "map/model.h"
#include "tests/disks/disk.h"
#include "tests/support/program.h"

namespace trovisk::test {

// Writes the disk as an image and opens it, for as long as this stands.
class OpenedDisk {
 public:
  explicit OpenedDisk(const Disk& image) : path_(ScratchPath("examined.img")) {
    image.Write(path_);
    disk.Reset();
    EXPECT_TRUE(disk.Open(L"the image", (path_ + "@" + std::to_string(image.SectorSize())).c_str()));
  }
  OpenedDisk(const OpenedDisk&) = delete;
  OpenedDisk& operator=(const OpenedDisk&) = delete;
  ~OpenedDisk() { disk.Reset(); }

 private:
  std::string path_;
};

// What an examination says of the volume in a partition of that disk; sectors: of the partition.
template <typename Examination>
VolumeFindings Examined(Examination examine, const Disk& image, u64 sector, u64 sectors) {
  const OpenedDisk opened(image);
  return examine({.sector = sector, .sectors = sectors, .lastOnDisk = image.Sectors() - 1});
}

// "sector 63 good: found, expected"; several of that name: a line each; none: "no such check".
inline std::string Judged(const VolumeFindings& findings, std::string_view name) {
  std::string text;
  for (const Check& check : findings.checks) {
    if (check.name != name) continue;
    if (!text.empty()) text += "\n";
    text.append("sector ").append(std::to_string(check.sector)).append(" ");
    text.append(NameOfVerdict(check.verdict)).append(": ").append(check.found).append(", ");
    text.append(check.expected);
  }
  return text.empty() ? "no such check" : text;
}

// "63-63 reserved" and so on, a line each.
inline std::string AreasOf(const VolumeFindings& findings) {
  std::string text;
  for (const Area& area : findings.areas) {
    text.append(std::to_string(area.first)).append("-").append(std::to_string(area.last)).append(" ");
    text.append(area.name).append("\n");
  }
  return text;
}

// The names of the checks that are not good, a line each.
inline std::string NotGood(const VolumeFindings& findings) {
  std::string text;
  for (const Check& check : findings.checks) {
    if (check.verdict != Verdict::kGood) text.append(check.name).append("\n");
  }
  return text;
}

}  // namespace trovisk::test

#endif
