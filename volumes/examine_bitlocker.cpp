#include "volumes/examinations.h"

namespace trovisk {

VolumeFindings ExamineBitLocker(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
