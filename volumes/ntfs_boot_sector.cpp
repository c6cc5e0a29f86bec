// NTFS boot sector, and the backup that stands in the sector after the volume's last.
//
// Stands in the first sector of an NTFS volume. Little-endian. Layout: jump instruction, OEM name, the NTFS
// BIOS parameter block, boot code with its messages, end mark, as on all volumes that BIOS systems boot from.
// Checked: the end mark. Not checked: cluster numbers and the volume's length, which are registered as found;
// the offsets of the messages, whose texts end with the sector.

#include "frame/global.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "refimages/catalogue.h"
#include "volumes/ntfs_bpb.h"

namespace trovisk {
namespace {

constexpr std::size_t kMessageOffsetWords = 0x1F6;  // u16 each, of 3 messages
constexpr std::size_t kMessageOffsetBytes = 0x1F8;  // u8 each, of 4 messages

// A release whose boot code is known. Its first message stands at a fixed place; the others are as far from
// it as the offsets stored for them are from the first one's.
enum class MessageOffsets { kFourBytes, kThreeWords };

struct Release {
  BootCode code;
  MessageOffsets offsets;
  std::size_t firstMessage;
  std::string_view heading;
  std::string_view codeHeading;
};

// In the order of the comparison.
constexpr Release kReleases[] = {
    {BootCode::kNtfsW1999, MessageOffsets::kFourBytes, 0x183, "Windows 2000/XP/2003 NTFS Boot Sector",
     "Windows 2000/XP/2003 Bootstrap Code"},
    {BootCode::kNtfsVista, MessageOffsets::kFourBytes, 0x180, "Windows Vista / Windows 7 NTFS Boot Sector",
     "Windows Vista / Windows 7 Bootstrap Code"},
    {BootCode::kNtfsWindows7, MessageOffsets::kFourBytes, 0x18C,
     "Windows 7 / Windows 2008 R2 NTFS Boot Sector", "Windows 7 / Windows 2008R2 Bootstrap Code"},
    {BootCode::kNtfsWindows8, MessageOffsets::kThreeWords, 0x18A, "Windows 8 / 10 NTFS Boot Sector",
     "Windows 8 / 10 Bootstrap Code"},
};

const Release* IdentifyRelease(SectorView boot) {
  for (const Release& release : kReleases) {
    if (Matches(release.code, boot)) return &release;
  }
  return nullptr;
}

void PrintMessages(const Release& release, SectorView boot) {
  const bool words = release.offsets == MessageOffsets::kThreeWords;
  const auto offset = [&](u64 index) -> u64 {
    return words ? Le16At(boot, kMessageOffsetWords + 2 * index) : U8At(boot, kMessageOffsetBytes + index);
  };
  const std::size_t count = words ? 3 : 4;
  for (std::size_t i = 0; i < count; ++i) {
    // A position before the sector wraps to one far behind it; outside the sector the text is empty.
    PrintErrorMessage(i + 1, " [ ", FromAt(boot, release.firstMessage + offset(i) - offset(0)));
  }
}

void PrintReport(SectorView boot) {
  const Release* release = IdentifyRelease(boot);
  report << LineEnd;
  PrintHeading(release != nullptr ? release->heading : "Unknown NTFS Boot Sector");
  PrintFields(boot, kBootSectorStart);
  PrintNtfsBpb(boot);
  if (release != nullptr) {
    PrintCodeSection(release->codeHeading, StretchOf(release->code, boot));
    PrintMessages(*release, boot);
    report << LineEnd;
  }
  PrintFields(boot, kBootSectorEnd);
  report << LineEnd;
}

// As a factor, 0x80 is the power of two that wraps to 1, where the report shows it as a plain 128.
u64 SectorsPerCluster(u8 stored) {
  return stored > 127 ? u64{1} << ((0x100U - stored) % 32) : stored;
}

void Register(SectorView boot, u64 sector) {
  const u64 cluster = SectorsPerCluster(U8<kBpbSectorsPerCluster>(boot));
  // On 4096-byte sectors all of the boot code is in the first one.
  if (disk.bytesPerSector != 4096) AddTocEntry(disk, sector + 1, DecodeNtfsBootCode, L"NTFS boot sector +1");
  AddTocEntry(disk, sector + Le64<kNtfsMftMirror>(boot) * cluster, DumpLabelledRawSector, L"MFTMirr");
  AddTocEntry(disk, sector + Le64<kNtfsMft>(boot) * cluster, DumpLabelledRawSector, L"MFT");
  AddTocEntry(disk, sector + Le64<kNtfsTotalSectors>(boot), DecodeNtfsBackupBootSector,
              L"Backup NTFS boot sector");
}

}  // namespace

u64 DecodeNtfsBootSector(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (!CheckEndMark(boot, "NTFS boot sector", sector)) return kEndPass;
  if (print) PrintReport(boot);
  // The dump's own failure to read does not keep the volume's sectors from being registered.
  const u64 next = DumpAsRawSectorAndGoOn(sector, print);
  if (next != kEndPass) Register(boot, sector);
  return next;
}

u64 DecodeNtfsBackupBootSector(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (CheckEndMark(boot, "NTFS backup boot sector", sector) && print) PrintReport(boot);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
