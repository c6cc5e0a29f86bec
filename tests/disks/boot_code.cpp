#include "tests/disks/boot_code.h"

namespace trovisk::test {

std::vector<u8> InventedCode(BootCode code) {
  std::vector<u8> bytes(RowOf(code).length);
  u8 value = static_cast<u8>(0x11 + 0x0D * static_cast<int>(code));
  for (u8& byte : bytes) {
    byte = value;
    value = static_cast<u8>(value + 7);
  }
  return bytes;
}

void PutInventedCode(Sector& sector, BootCode code) {
  sector.Bytes(RowOf(code).offset, InventedCode(code));
}

}  // namespace trovisk::test
