// GPT partition entries: type, extent, attributes and name of the partitions, one sector of the array at a
// time.
//
// The array stands where a GPT header says, as a rule from sector 2 on and again before the backup header.
// A sector holds as many 128-byte slots as fit, whatever entry size the header states. Little-endian.
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout", GPT partition entry array; the attribute bits from
// 59 on are those of Microsoft's own partition types.
// Not checked: extents, which are shown and registered as found; the header's entry count; the CRC.

#include <vector>

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/names.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "gpt/gpt_entry_layout.h"
#include "gpt/gpt_state.h"

namespace trovisk {
namespace {

using namespace gpt_entry;

using EntryView = FixedBytes<kEntrySize>;

constexpr FieldRow kTypeField[] = {
    {"\tPartition Type GUID   : { ", kTypeGuid, kGuidText, " }"},
};
constexpr FieldRow kIdentityAndExtent[] = {
    {"\tPartition Unique GUID : { ", kUniqueGuid, kGuidText, " }"},
    {"\tStarting LBA          : ", kStartingLba, kLe64},
    {"\tEnding LBA            : ", kEndingLba, kLe64},
};
static_assert(FieldsFit(kTypeField, kEntrySize) && FieldsFit(kIdentityAndExtent, kEntrySize));

struct AttributeName {
  unsigned bit;
  std::string_view name;
};

// In the order of the report.
constexpr AttributeName kAttributeNames[] = {
    {63, "NO_DRIVE_LETTER "}, {62, "HIDDEN "},           {61, "SHADOW_COPY "},
    {60, "READ_ONLY "},       {0, "PLATFORM_REQUIRED "}, {59, "STORAGE_DB "},
};

// A kind of partition whose first or last sector has a decoder.
struct KnownPartition {
  Guid type;
  std::size_t sector;  // the entry's field that names that sector
  SectorDecoder decoder;
  WideText description;
};

constexpr KnownPartition kKnownPartitions[] = {
    {kGptLdmMetadata, kEndingLba, DecodePrivhead, L"PRIVHEAD sector"},
    {kGptEfiSystem, kStartingLba, DecodeFatBootSector, L"EFI partition boot sector"},
    {kGptStorageSpaces, kStartingLba, DecodeSpaceDb, L"SPACEDB sector"},
    {kGptStorageReplica, kStartingLba, DecodeDpomSector, L"DPOM sector"},
    {kGptBasicData, kStartingLba, IdentifyBootSector, L"Generic Boot Sector"},
    {kGptRecovery, kStartingLba, IdentifyBootSector, L"Generic Boot Sector"},
};

void PrintAttributes(FixedBytes<8> field) {
  PrintNotedLine("\tAttributes            : ", field, [&] {
    const u64 attributes = Le64<0>(field);
    for (const AttributeName& attribute : kAttributeNames) {
      if ((attributes >> attribute.bit & 1) != 0) report << attribute.name;
    }
    if (attributes == 0) report << "None";
  });
}

// The whole field, with what stands behind its first NUL; nothing when it begins with one.
void PrintName(FixedBytes<kNameSize> name) {
  const auto print = [&] {
    if (Le16<0>(name) != 0) PrintUtf16(name);
  };
  PrintNotedLine("\tPartition Name        : [", name, print, " ]");
}

void PrintReport(EntryView entry) {
  const auto type = Part<kTypeGuid, 16>(entry);
  PrintFields(entry, kTypeField);
  PrintNotedLine(
      "\tPartition Type        : [ ", type, [&] { report << GptTypeName(type); }, " ]");
  if (AllZero(type)) {
    report << LineEnd;
    return;
  }
  PrintFields(entry, kIdentityAndExtent);
  // Wraps where the end lies before the start, and where there are more bytes than 64 bits can say.
  const u64 sectors = Le64<kEndingLba>(entry) - Le64<kStartingLba>(entry) + 1;
  const u64 bytes = sectors * disk.bytesPerSector;
  PrintNotedLine("\tPartition Size        : ", {}, [&] { report << (bytes >> 20) << " (MiB)"; });
  PrintAttributes(Part<kAttributes, 8>(entry));
  PrintName(Part<kName, kNameSize>(entry));
  report << LineEnd;
}

// Finds nothing in an unused entry.
void Register(EntryView entry) {
  const auto type = Part<kTypeGuid, 16>(entry);
  for (const KnownPartition& known : kKnownPartitions) {
    if (known.type == type) AddTocEntry(disk, Le64At(entry, known.sector), known.decoder, known.description);
  }
  // The sectors behind the first one, without the partition's last.
  if (kGptStorageReplica == type) {
    AddTocRun(disk, Le64<kStartingLba>(entry) + 1, Le64<kEndingLba>(entry), DecodeDpodSector, L"DPOD sector");
  }
}

}  // namespace

u64 DecodeGptEntries(WideText description, u64 sector, bool print) {
  PrintOpening(description, sector, print, Below::kEmptyLine);
  std::vector<u8> buffer(disk.bytesPerSector);
  if (!ReadRecord(buffer)) return kEndPass;

  for (Bytes slots = buffer; slots.size() >= kEntrySize; slots = slots.subspan(kEntrySize)) {
    const EntryView entry = slots.first<kEntrySize>();
    if (print) PrintReport(entry);
    Register(entry);
  }

  const u64 next = sector + 1;
  if (next < LastGptEntrySector) AddTocEntry(disk, next, DecodeGptEntries, L"GUID Partition Table");
  return next;
}

}  // namespace trovisk
