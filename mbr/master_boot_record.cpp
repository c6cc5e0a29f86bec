// Master boot record: the first sector of an MBR disk, and the protective one of a GPT disk.
//
// Stands in sector 0; its first 512 bytes whatever the sector size. Little-endian.
// Layout: UEFI, "Legacy Master Boot Record"; the messages and the time stamp lie where the named boot code
// keeps them.
// Not checked: the end mark, the entries' extents.

#include <algorithm>

#include "frame/global.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "mbr/partition_entry.h"
#include "refimages/boot_sector.h"
#include "refimages/catalogue.h"

namespace trovisk {
namespace {

constexpr std::size_t kBootCode = 0x000;  // 440 bytes
constexpr std::size_t kBootCodeSize = 440;
constexpr std::size_t kTimeStampDrive = 0x0DC;  // u8, zero: no time stamp was written
constexpr std::size_t kTimeStampSeconds = 0x0DD;
constexpr std::size_t kTimeStampMinutes = 0x0DE;
constexpr std::size_t kTimeStampHours = 0x0DF;
constexpr std::size_t kMessageOffsets = 0x1B5;  // u8 each: low byte of the offset of messages 1 to 3
constexpr std::size_t kDiskSignature = 0x1B8;   // u32

constexpr std::size_t kEntryCount = 4;
constexpr u8 kTypeGpt = 0xEE;
constexpr u8 kTypeDynamic = 0x42;
constexpr u64 kGptHeaderSector = 1;
constexpr u64 kPrivheadSector = 6;

// Where a loader keeps its three messages: one behind the other, or at offsets relative to the first one's.
enum class MessagePlan { kSequential, kOffsetTable };

struct Loader {
  BootCode code;
  MessagePlan plan;
  std::size_t messages;  // offset of the first one
  std::string_view heading;
};

// In the order of the comparison.
constexpr Loader kLoaders[] = {
    {BootCode::kMbrMsDos330, MessagePlan::kSequential, 0x08B, "MS-DOS 3.30 -> Windows 95(A Boot Loader)"},
    {BootCode::kMbrWindows95B, MessagePlan::kSequential, 0x10F, "Windows 95(B/98/98SE/ME Boot Loader"},
    {BootCode::kMbrWindows2000, MessagePlan::kOffsetTable, 0x12C, "Windows 2000/XP/2003 Boot Loader"},
    {BootCode::kMbrUsbKey, MessagePlan::kSequential, 0x087, "Generic USB key code"},
    {BootCode::kMbrWindowsVista, MessagePlan::kOffsetTable, 0x162, "Windows Vista / Windows 7 Boot Loader"},
    {BootCode::kMbrWindows2008R2, MessagePlan::kOffsetTable, 0x163,
     "Windows 2008 R2 and onwards Boot Loader"},
};

constexpr FieldRow kTimeStampDriveRow[] = {
    {"Drive Number     : 0x", kTimeStampDrive, HexBytes(1)},
};
// The disk signature in storage order, as the GPT report shows it, or as the number that it is.
constexpr FieldRow kGptSignature[] = {
    {"Disk Signature 0x", kDiskSignature, HexBytes(4)},
};
constexpr FieldRow kMbrSignature[] = {
    {"Disk Signature   : 0x", kDiskSignature, ReversedHexBytes(4)},
};
constexpr FieldRow kEnd[] = {
    {"Sector End Mark  : 0x", kEndMark, ReversedHexBytes(2)},
};
static_assert(FieldsFit(kTimeStampDriveRow, 512) && FieldsFit(kGptSignature, 512) &&
              FieldsFit(kMbrSignature, 512) && FieldsFit(kEnd, 512));

const Loader* IdentifyLoader(SectorView mbr) {
  for (const Loader& loader : kLoaders) {
    if (!Matches(loader.code, mbr)) continue;
    // The Windows 95 B code stands on both sides of a time stamp that differs from disk to disk.
    if (loader.code == BootCode::kMbrWindows95B && !Matches(BootCode::kMbrWindows95BContinued, mbr)) continue;
    return &loader;
  }
  return nullptr;
}

FixedBytes<kPartitionEntrySize> Entry(SectorView mbr, std::size_t index) {
  return mbr.subspan(kPartitionTable + index * kPartitionEntrySize).first<kPartitionEntrySize>();
}

bool HasEntryOfType(SectorView mbr, u8 type) {
  for (std::size_t i = 0; i < kEntryCount; ++i) {
    if (U8<kEntryType>(Entry(mbr, i)) == type) return true;
  }
  return false;
}

void PrintTimeStamp(SectorView mbr) {
  if (U8<kTimeStampDrive>(mbr) == 0) return;
  PrintFields(mbr, kTimeStampDriveRow);
  PrintNotedLine("Last Access Time : ", Part<kTimeStampSeconds, 3>(mbr), [&] {
    PrintTwoDigits(U8<kTimeStampHours>(mbr));
    report << ":";
    PrintTwoDigits(U8<kTimeStampMinutes>(mbr));
    report << ":";
    PrintTwoDigits(U8<kTimeStampSeconds>(mbr));
  });
}

void PrintSequentialMessages(SectorView mbr, u64 position) {
  for (std::size_t number = 1; number <= 3; ++number) {
    const Bytes rest = FromAt(mbr, position);
    const auto end = std::find(rest.begin(), rest.end(), u8{0});
    PrintErrorMessage(number, "  : [ ", rest);
    position += static_cast<u64>(end - rest.begin()) + 1;
  }
}

void PrintMessagesByOffset(SectorView mbr, u64 base) {
  const auto offsets = Part<kMessageOffsets, 3>(mbr);
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    // A smaller offset than the first one's places the text before the base; outside the sector it is empty.
    PrintErrorMessage(i + 1, " : [ ", FromAt(mbr, base + offsets[i] - offsets[0]));
  }
}

void PrintLoader(const Loader& loader, SectorView mbr) {
  PrintCodeSection(loader.heading, StretchOf(loader.code, mbr));
  if (loader.code == BootCode::kMbrWindows95B) {
    constexpr std::size_t kHyphens = 36;  // fewer than the heading has characters
    PrintTimeStamp(mbr);
    PrintCodeSection("Windows 95(B/98/98SE/ME Boot Loader (continued))", kHyphens,
                     StretchOf(BootCode::kMbrWindows95BContinued, mbr));
  }
  if (loader.plan == MessagePlan::kSequential) {
    PrintSequentialMessages(mbr, loader.messages);
  } else {
    PrintMessagesByOffset(mbr, loader.messages);
  }
  if (loader.code == BootCode::kMbrMsDos330) {
    PrintTimeStamp(mbr);
    report << LineEnd;
  }
}

void PrintTitle(SectorView mbr, bool gpt) {
  report << LineEnd;
  if (gpt) {
    PrintHeading("GPT Protective MBR");
    PrintFields(mbr, kGptSignature);
  } else {
    PrintHeading("MBR");
    PrintFields(mbr, kMbrSignature);
    report << LineEnd;
  }
}

}  // namespace

u64 DecodeMasterBootRecord(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView mbr(*record);

  const Loader* loader = nullptr;
  if (!AllZero(Part<kBootCode, kBootCodeSize>(mbr))) {
    loader = IdentifyLoader(mbr);
    // In both passes, and before the disk is known to be GPT.
    if (loader == nullptr) report << "\tUnknown Boot Loader Code" << LineEnd;
  }
  const bool gpt = HasEntryOfType(mbr, kTypeGpt);
  if (print) {
    PrintTitle(mbr, gpt);
    if (!gpt && loader != nullptr) PrintLoader(*loader, mbr);
    PrintPartitionTableHeading();
  }
  for (std::size_t i = 0; i < kEntryCount; ++i)
    PrintPartitionEntry(Entry(mbr, i), sector, print);
  if (print) report << LineEnd << LineEnd;

  if (gpt) {
    AddTocEntry(disk, kGptHeaderSector, DecodeGptHeader, L"Primary GPT Header");
  } else if (HasEntryOfType(mbr, kTypeDynamic)) {
    AddTocEntry(disk, kPrivheadSector, DecodePrivhead, L"PRIVHEAD Sector");
  }
  if (print) {
    PrintFields(mbr, kEnd);
    report << LineEnd;
  }
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
