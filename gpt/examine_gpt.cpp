// A copy of the GUID partition table: its header and its array of entries, with their checksums.
//
// The primary header stands in sector 1, the backup in the last sector of the disk. Little-endian.
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout". Its rules are what is checked: signature, revision,
// sizes, both CRC-32, the header's own place, the places of the array and of the usable sectors.

#include "gpt/examine_gpt.h"

#include <zlib.h>

#include <algorithm>
#include <bit>

#include "frame/global.h"
#include "gpt/gpt_entry_layout.h"
#include "gpt/gpt_header_layout.h"

namespace trovisk {
namespace {

namespace header = gpt_header;
namespace entry = gpt_entry;

// Larger arrays are not read: no disk has 2^21 entries of 128 bytes.
constexpr u64 kMostArrayBytes = u64{1} << 28;
constexpr u64 kPieceBytes = u64{1} << 16;

u32 Crc32(u32 crc, Bytes bytes) {
  return static_cast<u32>(crc32(crc, bytes.data(), static_cast<uInt>(bytes.size())));
}

std::array<u8, 16> GuidAt(Bytes bytes, std::size_t offset) {
  std::array<u8, 16> guid{};
  std::ranges::copy(SliceAt(bytes, offset, guid.size()), guid.begin());
  return guid;
}

std::string Named(const GptCopy& copy, std::string_view what) {
  std::string name = "GPT ";
  return name.append(copy.which).append(" ").append(what);
}

// The checksum is taken with its own field zero.
u32 HeaderCrc(Bytes sector, u64 size) {
  std::vector<u8> bytes(sector.begin(), sector.begin() + static_cast<std::ptrdiff_t>(size));
  std::fill_n(bytes.begin() + header::kHeaderCrc, 4, u8{0});
  return Crc32(0, bytes);
}

void CheckHeader(GptCopy& copy, Bytes sector, std::vector<Check>& checks) {
  const u64 size = Le32At(sector, header::kHeaderSize);
  const u32 stated = Le32At(sector, header::kHeaderCrc);
  if (size < header::kInterpreted || size > sector.size()) {
    checks.push_back({copy.sector, Named(copy, "header size"), Verdict::kBad, std::to_string(size) + " bytes",
                      "92 to " + std::to_string(sector.size()) + " bytes"});
    checks.push_back({copy.sector, Named(copy, "header CRC-32"), Verdict::kBad, Hex32(stated),
                      "a checksum over a header of that size"});
    return;
  }
  checks.push_back(
      CheckEqual(copy.sector, Named(copy, "header CRC-32"), Hex32(stated), Hex32(HeaderCrc(sector, size))));
  copy.headerSound = checks.back().verdict == Verdict::kGood;
  const u32 revision = Le32At(sector, header::kRevision);
  checks.push_back(CheckEqual(copy.sector, Named(copy, "revision"), Hex32(revision), Hex32(0x00010000)));
  checks.push_back(CheckEqual(copy.sector, Named(copy, "header's own sector"), copy.ownLba, copy.sector));
}

// Sectors of the array, 0 where its size makes no sense.
u64 ArraySectors(const GptCopy& copy) {
  if (copy.entrySize < entry::kEntrySize || !std::has_single_bit(copy.entrySize)) return 0;
  const u64 bytes = copy.entryCount * copy.entrySize;  // two numbers of 32 bits
  return bytes / disk.bytesPerSector + (bytes % disk.bytesPerSector == 0 ? 0 : 1);
}

void TakeEntry(GptCopy& copy, u64 number, Bytes bytes) {
  GptPartition partition{.number = number,
                         .type = GuidAt(bytes, entry::kTypeGuid),
                         .unique = GuidAt(bytes, entry::kUniqueGuid),
                         .first = Le64At(bytes, entry::kStartingLba),
                         .last = Le64At(bytes, entry::kEndingLba),
                         .attributes = Le64At(bytes, entry::kAttributes),
                         .name = {}};
  if (AllZero(partition.type)) return;
  if (++copy.usedEntries > kMostGptPartitions) return;
  partition.name = SafeUtf16(SliceAt(bytes, entry::kName, entry::kNameSize), &partition.nameReplaced);
  copy.partitions.push_back(std::move(partition));
}

// Reads the array piece by piece, from entries and for the checksum. False where it cannot be read.
bool ReadArray(GptCopy& copy, u32& crc) {
  // An entry may be larger than a piece, so that a piece holds its start alone.
  const u64 total = copy.entryCount * copy.entrySize;
  const u64 sectorsAtOnce = std::max<u64>(1, kPieceBytes / disk.bytesPerSector);
  u64 position = 0;  // bytes from the start of the array
  for (u64 done = 0; done < copy.arraySectors; done += sectorsAtOnce) {
    const u64 count = std::min(sectorsAtOnce, copy.arraySectors - done);
    const auto piece = ReadSectors(copy.entriesLba + done, count);
    if (!piece) return false;
    const Bytes bytes = SliceAt(*piece, 0, total - position);
    crc = Crc32(crc, bytes);
    const u64 into = position % copy.entrySize;
    for (u64 at = into == 0 ? 0 : copy.entrySize - into; at < bytes.size(); at += copy.entrySize)
      TakeEntry(copy, (position + at) / copy.entrySize + 1, FromAt(bytes, at));
    position += bytes.size();
  }
  return true;
}

void CheckArray(GptCopy& copy, u64 lastOnDisk, std::vector<Check>& checks) {
  const std::string name = Named(copy, "partition entry array CRC-32");
  copy.arraySectors = ArraySectors(copy);
  if (copy.entrySize < entry::kEntrySize || !std::has_single_bit(copy.entrySize)) {
    checks.push_back({copy.sector, Named(copy, "entry size"), Verdict::kBad,
                      std::to_string(copy.entrySize) + " bytes", "128, 256, 512 or another power of 2"});
    return;
  }
  const bool beyond = copy.arraySectors != 0 &&
                      (copy.entriesLba > lastOnDisk || copy.arraySectors - 1 > lastOnDisk - copy.entriesLba);
  if (beyond) {
    checks.push_back(
        {copy.sector, Named(copy, "partition entry array's place"), Verdict::kBad,
         std::to_string(copy.arraySectors) + " sectors from sector " + std::to_string(copy.entriesLba),
         "up to sector " + std::to_string(lastOnDisk)});
    copy.arraySectors = 0;
    return;
  }
  if (copy.arraySectors > kMostArrayBytes / disk.bytesPerSector) {
    checks.push_back({copy.sector, name, Verdict::kNotChecked, std::to_string(copy.entryCount) + " entries",
                      "an array of at most 256 MiB"});
    copy.arraySectors = 0;
    return;
  }
  u32 crc = 0;
  if (!ReadArray(copy, crc)) {
    checks.push_back({copy.entriesLba, name, Verdict::kMissing, "unreadable", Hex32(copy.arrayCrc)});
    return;
  }
  checks.push_back(CheckEqual(copy.entriesLba, name, Hex32(crc), Hex32(copy.arrayCrc)));
  copy.arraySound = checks.back().verdict == Verdict::kGood;
}

// Header, array and usable sectors lie where the copy has them, and do not run into each other.
void CheckPlaces(const GptCopy& copy, u64 lastOnDisk, std::vector<Check>& checks) {
  const bool primary = copy.which == "primary";
  const u64 sectors = ArraySectors(copy);  // also of an array that is not read
  const u64 arrayEnd = copy.entriesLba + std::min(sectors, ~u64{0} - copy.entriesLba);
  const bool ordered = primary ? copy.entriesLba > copy.sector && arrayEnd <= copy.firstUsable
                               : copy.entriesLba > copy.lastUsable && arrayEnd <= copy.sector;
  const u64 last = primary ? std::min(copy.otherLba, lastOnDisk) : copy.sector;
  const bool usable = copy.firstUsable <= copy.lastUsable && copy.lastUsable < last;
  std::string found = "array ";
  found.append(std::to_string(copy.entriesLba)).append(", ").append(std::to_string(sectors));
  found.append(" sectors; usable ").append(std::to_string(copy.firstUsable)).append(" to ");
  found.append(std::to_string(copy.lastUsable));
  checks.push_back(
      {copy.sector, Named(copy, "usable sectors"), ordered && usable ? Verdict::kGood : Verdict::kBad,
       std::move(found),
       "header, array and usable sectors one beside the other, before sector " + std::to_string(last)});
}

}  // namespace

std::string GuidText(const std::array<u8, 16>& guid) {
  constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < kOrder.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const u8 byte = guid.at(kOrder.at(i));
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
  }
  return text;
}

bool IsGptArray(const GptCopy& copy, u64 first) {
  GptCopy there = copy;
  there.partitions.clear();
  there.usedEntries = 0;
  there.entriesLba = first;
  u32 crc = 0;
  return ReadArray(there, crc) && crc == copy.arrayCrc;
}

GptCopy ExamineGptCopy(std::string_view which, u64 sector, u64 lastOnDisk, std::vector<Check>& checks) {
  GptCopy copy;
  copy.which = which;
  copy.sector = sector;
  const std::string name = Named(copy, "header");
  const auto record = ReadSectors(sector, 1);
  if (!record || record->size() < header::kInterpreted) {
    checks.push_back({sector, name, Verdict::kMissing, "unreadable", "EFI PART"});
    return copy;
  }
  copy.readable = true;
  const Bytes bytes = *record;
  const Bytes signature = SliceAt(bytes, header::kSignature, 8);
  copy.present = EqualsText(signature, "EFI PART");
  const std::string found = AllZero(signature) ? "zeros" : SafeAscii(signature);
  checks.push_back({sector, name, copy.present ? Verdict::kGood : Verdict::kMissing, found, "EFI PART"});
  if (!copy.present) return copy;
  copy.ownLba = Le64At(bytes, header::kOwnLba);
  copy.otherLba = Le64At(bytes, header::kOtherLba);
  copy.firstUsable = Le64At(bytes, header::kFirstUsable);
  copy.lastUsable = Le64At(bytes, header::kLastUsable);
  copy.entriesLba = Le64At(bytes, header::kEntriesLba);
  copy.entryCount = Le32At(bytes, header::kEntryCount);
  copy.entrySize = Le32At(bytes, header::kEntrySize);
  copy.arrayCrc = Le32At(bytes, header::kEntriesCrc);
  copy.diskGuid = GuidAt(bytes, header::kDiskGuid);
  CheckHeader(copy, bytes, checks);
  CheckArray(copy, lastOnDisk, checks);
  CheckPlaces(copy, lastOnDisk, checks);
  return copy;
}

}  // namespace trovisk
