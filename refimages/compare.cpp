#include "refimages/catalogue.h"

namespace trovisk {

const BootCodeRow& RowOf(BootCode code) {
  return BootCodeCatalogue()[static_cast<std::size_t>(code)];
}

Bytes StretchOf(BootCode code, SectorView sector) {
  const BootCodeRow& row = RowOf(code);
  return SliceAt(sector, row.offset, row.length);
}

bool Matches(BootCode code, SectorView sector) {
  const BootCodeRow& row = RowOf(code);
  return row.digest && Sha256(StretchOf(code, sector)) == *row.digest;
}

}  // namespace trovisk
