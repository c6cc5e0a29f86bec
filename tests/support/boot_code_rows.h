// The rows that the catalogue of known boot code is to have.

#ifndef TROVISK_TESTS_SUPPORT_BOOT_CODE_ROWS_H
#define TROVISK_TESTS_SUPPORT_BOOT_CODE_ROWS_H

#include <string_view>

#include "refimages/catalogue.h"

namespace trovisk::test {

struct ExpectedBootCode {
  BootCode code;
  std::size_t offset;
  std::size_t length;
  std::string_view digest;  // empty: not known yet
};

inline constexpr ExpectedBootCode kBootCodeRows[] = {
    {BootCode::kMbrMsDos330, 0x000, 139, "0a4c81c1dfbebc45e85625a39a77e472e8605bce50f114141e77c417cacf7c6d"},
    {BootCode::kMbrWindows95B, 0x000, 218,
     "9408702cbbffeb0704073f628fe0141ddb774794329edefac9a5d3454f0995e3"},
    {BootCode::kMbrWindows95BContinued, 0x0E0, 47,
     "59fefafd2e5c5baf0c452f326196deb90309211452cfec76fe1c47200ca30268"},
    {BootCode::kMbrWindows2000, 0x000, 300,
     "b5ed343494f0326a08aa6abf7cc9aa4d96207532cf0d2b39453c6eb7bede19e3"},
    {BootCode::kMbrUsbKey, 0x000, 135, ""},
    {BootCode::kMbrWindowsVista, 0x000, 354,
     "4799e8c92d32bca8e5103110a322523adb7a3909324132bd9abab8f3345e094a"},
    {BootCode::kMbrWindows2008R2, 0x000, 355,
     "088995559ab317af9b3291408da689651e8353f62e0a478d92eb0b5a947063fd"},
    {BootCode::kFatMsWin41, 0x03E, 326, "1774e7967fe6c90830e94ba531ecacd57584a8813b3ae7ef2b6afebe7dac85a9"},
    {BootCode::kFatMsDos50, 0x03E, 355, "9106141ffdff0405ed78588d316c51e7562aac1d997be760f41d0264d5c1dca0"},
    {BootCode::kFat32MsWin41, 0x05A, 292, "abd1199ed23df35cabd71047427667ef743a65806e5b0e5a7d305a268eae349f"},
    {BootCode::kFat32MsDos50, 0x05A, 278, "671ea90c6b0dec3a0b392ac006fe4d89d78a9fb7d3c966863d8c0ad65df62dc4"},
    {BootCode::kFat32Vista, 0x05A, 271, "30a28fbf0f20875735fa4e00d2c1d0ed94bcc47c7c0ee7d647a5d9bddc6be1f2"},
    {BootCode::kFat32Windows8, 0x05A, 275,
     "13f58537a4a0190997b96126230f4af16671a20cb825401e5d6b4d2f2d0f35b9"},
    {BootCode::kNtfsW1999, 0x054, 303, "fdbfcbb906e9c08e5c388cdc94e55df69b89377427369385dd127055e2ba8849"},
    {BootCode::kNtfsVista, 0x054, 300, "fea632b2dc6c65e1defebbf5219e9d40decca4ae3bd079850c3fdcaba2d6044b"},
    {BootCode::kNtfsWindows7, 0x054, 312, "68f98d0e2fbad1197c2ad18426c2ead86e3255d9e40d00621a7cb26f8dd8040f"},
    {BootCode::kNtfsWindows8Beta, 0x054, 312, ""},
    {BootCode::kNtfsWindows8, 0x054, 310, "8ee6cab3c70e892279a55b3db3d9a0a3f7dbf837341ec8d5fbda591c8e7e4e62"},
    {BootCode::kExFat, 0x078, 244, "3e7952fa96e1eefaf05d6dd1f68e1e015513cea47e89f6ab832fbb2f27157abc"},
};

}  // namespace trovisk::test

#endif
