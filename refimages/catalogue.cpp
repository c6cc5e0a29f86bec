// The digests of the known boot code.

#include "refimages/catalogue.h"

namespace trovisk {
namespace {

constexpr u8 Nibble(char digit) {
  return static_cast<u8>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

// The SHA-256 from its 64 hexadecimal digits, as digests are written everywhere.
constexpr BootCodeDigest Digest(u64 sample, const char (&digits)[65]) {
  BootCodeDigest digest{sample, {}};
  for (std::size_t i = 0; i < digest.whole.size(); ++i) {
    digest.whole[i] = static_cast<u8>(Nibble(digits[2 * i]) << 4 | Nibble(digits[2 * i + 1]));
  }
  return digest;
}

constexpr BootCodeRow kCatalogue[] = {
    {BootCode::kMbrMsDos330, 0x000, 139,
     Digest(0x4d3ee7d7df11e24d, "0a4c81c1dfbebc45e85625a39a77e472e8605bce50f114141e77c417cacf7c6d")},
    {BootCode::kMbrWindows95B, 0x000, 218,
     Digest(0x5db3c5dd948e4452, "9408702cbbffeb0704073f628fe0141ddb774794329edefac9a5d3454f0995e3")},
    {BootCode::kMbrWindows95BContinued, 0x0E0, 47,
     Digest(0x6b4943e4a76fabb1, "59fefafd2e5c5baf0c452f326196deb90309211452cfec76fe1c47200ca30268")},
    {BootCode::kMbrWindows2000, 0x000, 300,
     Digest(0x8d4520c715b7ab4a, "b5ed343494f0326a08aa6abf7cc9aa4d96207532cf0d2b39453c6eb7bede19e3")},
    {BootCode::kMbrUsbKey, 0x000, 135, std::nullopt},
    {BootCode::kMbrWindowsVista, 0x000, 354,
     Digest(0x282ad583452876fb, "4799e8c92d32bca8e5103110a322523adb7a3909324132bd9abab8f3345e094a")},
    {BootCode::kMbrWindows2008R2, 0x000, 355,
     Digest(0xadb17ac6013afc18, "088995559ab317af9b3291408da689651e8353f62e0a478d92eb0b5a947063fd")},
    {BootCode::kFatMsWin41, 0x03E, 326,
     Digest(0x9e5407d3e2e8257e, "1774e7967fe6c90830e94ba531ecacd57584a8813b3ae7ef2b6afebe7dac85a9")},
    {BootCode::kFatMsDos50, 0x03E, 355,
     Digest(0x8cebab9e97c75fdf, "9106141ffdff0405ed78588d316c51e7562aac1d997be760f41d0264d5c1dca0")},
    {BootCode::kFat32MsWin41, 0x05A, 292,
     Digest(0x634479477ce515f9, "abd1199ed23df35cabd71047427667ef743a65806e5b0e5a7d305a268eae349f")},
    {BootCode::kFat32MsDos50, 0x05A, 278,
     Digest(0x0492d4f0321c0a21, "671ea90c6b0dec3a0b392ac006fe4d89d78a9fb7d3c966863d8c0ad65df62dc4")},
    {BootCode::kFat32Vista, 0x05A, 271,
     Digest(0x517571f3a13258df, "30a28fbf0f20875735fa4e00d2c1d0ed94bcc47c7c0ee7d647a5d9bddc6be1f2")},
    {BootCode::kFat32Windows8, 0x05A, 275,
     Digest(0xf31a868cb913aa10, "13f58537a4a0190997b96126230f4af16671a20cb825401e5d6b4d2f2d0f35b9")},
    {BootCode::kNtfsW1999, 0x054, 303,
     Digest(0x30c0e6a8092bd667, "fdbfcbb906e9c08e5c388cdc94e55df69b89377427369385dd127055e2ba8849")},
    {BootCode::kNtfsVista, 0x054, 300,
     Digest(0xa3ca649707aeaf6a, "fea632b2dc6c65e1defebbf5219e9d40decca4ae3bd079850c3fdcaba2d6044b")},
    {BootCode::kNtfsWindows7, 0x054, 312,
     Digest(0x673afd58b49434b0, "68f98d0e2fbad1197c2ad18426c2ead86e3255d9e40d00621a7cb26f8dd8040f")},
    {BootCode::kNtfsWindows8Beta, 0x054, 312, std::nullopt},
    {BootCode::kNtfsWindows8, 0x054, 310,
     Digest(0x3f14e743582102df, "8ee6cab3c70e892279a55b3db3d9a0a3f7dbf837341ec8d5fbda591c8e7e4e62")},
    {BootCode::kExFat, 0x078, 244,
     Digest(0x304d568cb5ae59ff, "3e7952fa96e1eefaf05d6dd1f68e1e015513cea47e89f6ab832fbb2f27157abc")},
};

}  // namespace

std::span<const BootCodeRow> BootCodeCatalogue() {
  return kCatalogue;
}

}  // namespace trovisk
