#include "refimages/boot_sector.h"

#include "frame/report/report.h"

namespace trovisk {

bool HasEndMark(SectorView boot) {
  return Le16<kEndMark>(boot) == 0xAA55;
}

bool CheckEndMark(SectorView boot, std::string_view structure, u64 sector) {
  if (HasEndMark(boot)) return true;
  report << "Not a valid " << structure << " end marker @ sector # " << sector << LineEnd;
  return false;
}

}  // namespace trovisk
