// Some rows of the catalogue of known boot code, in the shipped program and in the tests' own alike:
// each place where boot code begins, the shortest and the longest stretch.

#ifndef TROVISK_TESTS_SUPPORT_BOOT_CODE_ROWS_H
#define TROVISK_TESTS_SUPPORT_BOOT_CODE_ROWS_H

#include "refimages/catalogue.h"

namespace trovisk::test {

inline constexpr std::size_t kBootCodes = 19;

struct ExpectedStretch {
  BootCode code;
  std::size_t offset;
  std::size_t length;
};

inline constexpr ExpectedStretch kSomeStretches[] = {
    {BootCode::kMbrWindows95B, 0x000, 218}, {BootCode::kMbrWindows95BContinued, 0x0E0, 47},
    {BootCode::kFatMsDos50, 0x03E, 355},    {BootCode::kFat32MsWin41, 0x05A, 292},
    {BootCode::kNtfsWindows8, 0x054, 310},  {BootCode::kExFat, 0x078, 244},
};

}  // namespace trovisk::test

#endif
