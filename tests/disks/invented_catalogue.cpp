// The catalogue of the tests' program: the stretches of the shipped one, recognised by the digests of the
// boot code that the tests invent. Every row has a digest, so every class can be reached.

#include <array>

#include "tests/disks/boot_code.h"

namespace trovisk {
namespace {

struct Stretch {
  BootCode code;
  std::size_t offset;
  std::size_t length;
};

constexpr Stretch kStretches[] = {
    {BootCode::kMbrMsDos330, 0x000, 139},
    {BootCode::kMbrWindows95B, 0x000, 218},
    {BootCode::kMbrWindows95BContinued, 0x0E0, 47},
    {BootCode::kMbrWindows2000, 0x000, 300},
    {BootCode::kMbrUsbKey, 0x000, 135},
    {BootCode::kMbrWindowsVista, 0x000, 354},
    {BootCode::kMbrWindows2008R2, 0x000, 355},
    {BootCode::kFatMsWin41, 0x03E, 326},
    {BootCode::kFatMsDos50, 0x03E, 355},
    {BootCode::kFat32MsWin41, 0x05A, 292},
    {BootCode::kFat32MsDos50, 0x05A, 278},
    {BootCode::kFat32Vista, 0x05A, 271},
    {BootCode::kFat32Windows8, 0x05A, 275},
    {BootCode::kNtfsW1999, 0x054, 303},
    {BootCode::kNtfsVista, 0x054, 300},
    {BootCode::kNtfsWindows7, 0x054, 312},
    {BootCode::kNtfsWindows8Beta, 0x054, 312},
    {BootCode::kNtfsWindows8, 0x054, 310},
    {BootCode::kExFat, 0x078, 244},
};

}  // namespace

std::span<const BootCodeRow> BootCodeCatalogue() {
  static std::array<BootCodeRow, std::size(kStretches)> rows;
  static bool filled = false;
  if (!filled) {
    filled = true;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      rows[i] = {kStretches[i].code, kStretches[i].offset, kStretches[i].length, std::nullopt};
    }
    for (BootCodeRow& row : rows)
      row.digest = DigestOf(test::InventedCode(row.code));
  }
  return rows;
}

}  // namespace trovisk
