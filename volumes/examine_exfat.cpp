#include "volumes/examinations.h"

namespace trovisk {

VolumeFindings ExamineExFat(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
