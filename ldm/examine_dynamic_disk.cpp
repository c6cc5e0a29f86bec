#include "ldm/dynamic_disk.h"

namespace trovisk {

std::optional<DynamicDisk> ExamineDynamicDisk(u64 /*sector*/, u64 /*lastOnDisk*/,
                                              std::vector<Check>& /*checks*/) {
  return std::nullopt;
}

}  // namespace trovisk
