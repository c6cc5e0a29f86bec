// Until its decoder is written: the sector is named and shown raw.

#include "frame/decoders.h"

namespace trovisk {

u64 DecodeSdbc(WideText description, u64 sector, bool print) {
  return DumpLabelledRawSector(description, sector, print);
}

}  // namespace trovisk
