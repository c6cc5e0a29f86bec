#include "frame/disk/disk_numbers.h"

#include <algorithm>
#include <istream>
#include <sstream>
#include <string_view>

namespace trovisk {
namespace {

// Whether the name is that of a whole device of a kind that is no disk: one of these and a number.
bool IsUncounted(std::string_view name) {
  for (const std::string_view kind : {"loop", "ram", "zram", "fd", "sr", "dm-"}) {
    if (name.starts_with(kind) && name.find_first_not_of("0123456789", kind.size()) == name.npos) return true;
  }
  return false;
}

}  // namespace

std::vector<std::string> NumberedDisks(std::istream& partitions,
                                       bool (*isPartition)(const std::string& name)) {
  std::vector<std::string> disks;
  std::string line;
  while (std::getline(partitions, line)) {
    std::istringstream fields(line);
    unsigned long long major = 0;  // the heading and the empty line below it do not begin with a number
    unsigned long long minor = 0;
    unsigned long long blocks = 0;
    std::string name;
    if (fields >> major >> minor >> blocks >> name && !IsUncounted(name) && !isPartition(name)) {
      disks.push_back(name);
    }
  }
  return disks;
}

std::string SysfsFolder(const std::string& name) {
  std::string entry = name;
  std::replace(entry.begin(), entry.end(), '/', '!');
  return "/sys/class/block/" + entry;
}

}  // namespace trovisk
