#include "volumes/examinations.h"

namespace trovisk {

VolumeFindings ExamineNtfs(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
