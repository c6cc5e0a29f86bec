// The disks of this machine on Linux: their numbers, and what sysfs tells of them.

#include <fstream>

#include "frame/disk/disk_list.h"
#include "frame/disk/disk_numbers.h"

namespace trovisk {
namespace {

// Empty where there is no such file: sysfs need not be mounted, and many disks have no model.
std::string FirstLineOf(const std::string& path) {
  std::string line;
  std::ifstream file(path);
  std::getline(file, line);
  return line;
}

}  // namespace

std::vector<ListedDisk> ListDisks() {
  std::vector<ListedDisk> disks;
  for (const std::string& name : NumberedDisksOfThisMachine()) {
    const std::string folder = SysfsFolder(name);
    disks.push_back({.number = disks.size(),
                     .device = Printable("/dev/" + name),
                     .bytes = BytesOfUnits(FirstLineOf(folder + "/size")),
                     .model = Printable(FirstLineOf(folder + "/device/model"))});
  }
  return disks;
}

}  // namespace trovisk
