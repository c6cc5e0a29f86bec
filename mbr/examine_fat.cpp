#include "mbr/examine_fat.h"

namespace trovisk {

VolumeFindings ExamineFat(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
