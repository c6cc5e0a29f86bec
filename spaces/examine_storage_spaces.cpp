#include "spaces/storage_spaces.h"

namespace trovisk {

std::optional<StorageSpaces> ExamineStorageSpaces(const VolumePlace& /*place*/,
                                                  std::vector<Check>& /*checks*/) {
  return std::nullopt;
}

VolumeFindings ExamineStorageReplica(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
