// The digests of the known boot code.

#include "refimages/catalogue.h"

namespace trovisk {
namespace {

constexpr u8 Nibble(char digit) {
  return static_cast<u8>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

// The SHA-256 from its 64 hexadecimal digits, as digests are written everywhere.
constexpr BootCodeDigest Digest(u64 start, const char (&digits)[65]) {
  BootCodeDigest digest{start, {}};
  for (std::size_t i = 0; i < digest.whole.size(); ++i) {
    digest.whole[i] = static_cast<u8>(Nibble(digits[2 * i]) << 4 | Nibble(digits[2 * i + 1]));
  }
  return digest;
}

constexpr BootCodeRow kCatalogue[] = {
    {BootCode::kMbrMsDos330, 0x000, 139,
     Digest(0xb913d5d9642465c7, "0a4c81c1dfbebc45e85625a39a77e472e8605bce50f114141e77c417cacf7c6d")},
    {BootCode::kMbrWindows95B, 0x000, 218,
     Digest(0x62ed429d2eac1d12, "9408702cbbffeb0704073f628fe0141ddb774794329edefac9a5d3454f0995e3")},
    {BootCode::kMbrWindows95BContinued, 0x0E0, 47,
     Digest(0x0822322ab4156e25, "59fefafd2e5c5baf0c452f326196deb90309211452cfec76fe1c47200ca30268")},
    {BootCode::kMbrWindows2000, 0x000, 300,
     Digest(0xaf6dbbfe3330edb0, "b5ed343494f0326a08aa6abf7cc9aa4d96207532cf0d2b39453c6eb7bede19e3")},
    {BootCode::kMbrUsbKey, 0x000, 135, std::nullopt},
    {BootCode::kMbrWindowsVista, 0x000, 354,
     Digest(0x5ecfce3462254c14, "4799e8c92d32bca8e5103110a322523adb7a3909324132bd9abab8f3345e094a")},
    {BootCode::kMbrWindows2008R2, 0x000, 355,
     Digest(0x5e7084d81c254c14, "088995559ab317af9b3291408da689651e8353f62e0a478d92eb0b5a947063fd")},
    {BootCode::kFatMsWin41, 0x03E, 326,
     Digest(0xa17089ec7f64a16e, "1774e7967fe6c90830e94ba531ecacd57584a8813b3ae7ef2b6afebe7dac85a9")},
    {BootCode::kFatMsDos50, 0x03E, 355,
     Digest(0x2aa242cf108a5224, "9106141ffdff0405ed78588d316c51e7562aac1d997be760f41d0264d5c1dca0")},
    {BootCode::kFat32MsWin41, 0x05A, 292,
     Digest(0x5bf0e037871af76b, "abd1199ed23df35cabd71047427667ef743a65806e5b0e5a7d305a268eae349f")},
    {BootCode::kFat32MsDos50, 0x05A, 278,
     Digest(0x36e7602269c27b89, "671ea90c6b0dec3a0b392ac006fe4d89d78a9fb7d3c966863d8c0ad65df62dc4")},
    {BootCode::kFat32Vista, 0x05A, 271,
     Digest(0x6b33eb6be8a5322d, "30a28fbf0f20875735fa4e00d2c1d0ed94bcc47c7c0ee7d647a5d9bddc6be1f2")},
    {BootCode::kFat32Windows8, 0x05A, 275,
     Digest(0xcd307a2281894f0d, "13f58537a4a0190997b96126230f4af16671a20cb825401e5d6b4d2f2d0f35b9")},
    {BootCode::kNtfsW1999, 0x054, 303,
     Digest(0xe496db7170efdb91, "fdbfcbb906e9c08e5c388cdc94e55df69b89377427369385dd127055e2ba8849")},
    {BootCode::kNtfsVista, 0x054, 300,
     Digest(0xdbcfc9a53210e958, "fea632b2dc6c65e1defebbf5219e9d40decca4ae3bd079850c3fdcaba2d6044b")},
    {BootCode::kNtfsWindows7, 0x054, 312,
     Digest(0x6acfc9a53210e958, "68f98d0e2fbad1197c2ad18426c2ead86e3255d9e40d00621a7cb26f8dd8040f")},
    {BootCode::kNtfsWindows8Beta, 0x054, 312, std::nullopt},
    {BootCode::kNtfsWindows8, 0x054, 310,
     Digest(0x6acfc9a53210e958, "8ee6cab3c70e892279a55b3db3d9a0a3f7dbf837341ec8d5fbda591c8e7e4e62")},
    {BootCode::kExFat, 0x078, 244,
     Digest(0x3b14aa6f85b07b1d, "3e7952fa96e1eefaf05d6dd1f68e1e015513cea47e89f6ab832fbb2f27157abc")},
};

}  // namespace

std::span<const BootCodeRow> BootCodeCatalogue() {
  return kCatalogue;
}

}  // namespace trovisk
