#include "volumes/examinations.h"

namespace trovisk {

VolumeFindings ExamineReFs(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
