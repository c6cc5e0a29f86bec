// Boot sector identification: which volume stands behind a partition whose type byte does not say.
//
// Reads the partition's first sector, names it by its boot code or, where that is unknown, by its OEM name,
// and hands the sector to the decoder of that volume, with the name as the description. Registers nothing
// itself and prints nothing but errors.
// Checked: the boot code of the named releases, byte for byte, and two OEM names. Not checked: what a file
// system says of itself otherwise, so a volume whose boot code is unknown is shown raw.

#include "mbr/boot_sector_identification.h"

#include <array>

#include "frame/global.h"
#include "frame/report/report.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "refimages/catalogue.h"

namespace trovisk {
namespace {

struct CodeClass {
  BootCode code;
  VolumeClass volume;
};

// In the order of the comparison, which comes before that of the OEM names.
constexpr CodeClass kByCode[] = {
    {BootCode::kFatMsWin41, {L"MSWIN4.1 FAT boot sector", DecodeFatBootSector}},
    {BootCode::kFatMsDos50, {L"MSDOS5.0 FAT boot sector", DecodeFatBootSector}},
    {BootCode::kFat32MsWin41, {L"MSWIN4.1 FAT32 boot sector", DecodeFatBootSector}},
    {BootCode::kFat32MsDos50, {L"MSDOS5.0 FAT32 boot sector", DecodeFatBootSector}},
    {BootCode::kFat32Vista, {L"Vista FAT32 boot sector", DecodeFatBootSector}},
    {BootCode::kNtfsW1999, {L"W1999 NTFS boot sector", DecodeNtfsBootSector}},
    {BootCode::kNtfsVista, {L"Vista NTFS boot sector", DecodeNtfsBootSector}},
    {BootCode::kNtfsWindows7, {L"Windows 7 / 2008 R2 NTFS boot sector", DecodeNtfsBootSector}},
    {BootCode::kNtfsWindows8Beta, {L"Windows 8 (Beta NTFS boot sector", DecodeNtfsBootSector}},
    {BootCode::kNtfsWindows8, {L"Windows 8 / 10 NTFS boot sector", DecodeNtfsBootSector}},
    {BootCode::kExFat, {L"exFAT boot sector", DecodeExFatBootSector}},
};

}  // namespace

VolumeClass ClassifyBootSector(SectorView bootSector) {
  for (const CodeClass& row : kByCode) {
    if (Matches(row.code, bootSector)) return row.volume;
  }
  if (EqualsText(Part<kOemName, 4>(bootSector), "ReFS")) {
    return {L"ReFS Volume Boot sector", DecodeReFsBootRecord};
  }
  if (EqualsText(Part<kOemName, 8>(bootSector), "-FVE-FS-")) {
    return {L"Bitlocker Boot sector", DecodeBitLockerBootSector};
  }
  return {L"Unknown boot sector", DumpRawSector};
}

u64 IdentifyBootSector(WideText /*description*/, u64 sector, bool print) {
  RecordBuffer<512> bootSector{};
  if (!disk.Read(bootSector.data(), bootSector.size())) {
    errors << "Error reading sector #" << sector << '\n';
    return kEndPass;
  }
  if (!SeekToSector(sector)) {
    errors << "Error seeking back to start of sector\n";
    return kEndPass;
  }
  const VolumeClass volume = ClassifyBootSector(SectorView(bootSector));
  return volume.decoder(volume.name, sector, print);
}

}  // namespace trovisk
