// PRIVHEAD, the private header of a dynamic disk, in its three copies.
//
// The first stands in sector 6 of an MBR disk, or in the last sector of a GPT disk's LDM metadata partition;
// the first one states where the configuration area lies and where in it the two others stand. An MBR disk's
// configuration area is its last 2048 sectors, so that a copy is found there when the first is lost.
// Big-endian. Layout and rules: the Linux-NTFS project's LDM documentation, "PRIVHEAD".
// Checked: presence and agreement of the copies, version, the extents. Not checked: the number at 0x08, whose
// meaning is not published, and what may differ from copy to copy, such as the time stamp.

#include "ldm/examine_privhead.h"

#include <algorithm>
#include <utility>

#include "frame/global.h"
#include "ldm/examine_words.h"
#include "ldm/privhead_layout.h"

namespace trovisk {
namespace {

constexpr u64 kTailSectors = 2048;
constexpr u64 kPieceBytes = u64{1} << 16;
constexpr std::size_t kCopies = 3;

struct Copy {
  u64 sector = 0;
  std::vector<u8> bytes;  // empty: no PRIVHEAD is there
};

// What the copies have to agree in. A width of 8 and less: a number, more: a text.
struct Field {
  std::string_view name;
  std::size_t offset;
  std::size_t width;
};
constexpr Field kFields[] = {
    {"major version", privhead::kMajorVersion, 2},
    {"minor version", privhead::kMinorVersion, 2},
    {"alternate 1", privhead::kAlternate1, 8},
    {"alternate 2", privhead::kAlternate2, 8},
    {"disk", privhead::kDiskId, 64},
    {"host", privhead::kHostId, 64},
    {"disk group", privhead::kGroupId, 64},
    {"disk group name", privhead::kGroupName, 32},
    {"logical disk start", privhead::kLogicalStart, 8},
    {"logical disk size", privhead::kLogicalEnd, 8},
    {"configuration start", privhead::kConfigStart, 8},
    {"configuration size", privhead::kConfigSize, 8},
    {"number of TOCs", privhead::kTocCount, 8},
    {"TOC size", privhead::kTocSize, 8},
    {"number of configurations", privhead::kConfigCount, 4},
    {"number of logs", privhead::kLogCount, 4},
    {"configuration region size", privhead::kConfigRegionSize, 8},
    {"log region size", privhead::kLogRegionSize, 8},
};

bool IsPrivhead(Bytes sector) {
  return sector.size() >= 512 && EqualsText(sector.first(8), "PRIVHEAD");
}

u64 ConfigStart(Bytes bytes) {
  return Be64At(bytes, privhead::kConfigStart);
}

std::string ValueOf(Bytes bytes, const Field& field) {
  const Bytes value = SliceAt(bytes, field.offset, field.width);
  return field.width > 8 ? SafeAscii(value) : std::to_string(BigEndian(value));
}

// The fields that differ, with the values of the first: "configuration start 5, TOC size 7".
std::string Differences(Bytes bytes, Bytes other) {
  std::string text;
  for (const Field& field : kFields) {
    const std::string value = ValueOf(bytes, field);
    if (value == ValueOf(other, field)) continue;
    if (!text.empty()) text += ", ";
    text.append(field.name).append(" ").append(value.empty() ? "none" : value);
  }
  return text;
}

Copy ReadCopy(u64 sector, u64 lastOnDisk) {
  Copy copy{.sector = sector, .bytes = {}};
  if (sector > lastOnDisk) return copy;
  const auto bytes = ReadSectors(sector, 1);
  if (bytes && IsPrivhead(*bytes)) copy.bytes.assign(bytes->begin(), bytes->begin() + 512);
  return copy;
}

void AddCopy(std::vector<Copy>& copies, Copy copy) {
  const bool known =
      std::ranges::any_of(copies, [&](const Copy& other) { return other.sector == copy.sector; });
  if (!known && !copy.bytes.empty()) copies.push_back(std::move(copy));
}

// Looks through the sectors that end with last, as many as a configuration area of an MBR disk has.
void AddCopiesFromTail(std::vector<Copy>& copies, u64 last, u64 lastOnDisk) {
  const u64 bytesPerSector = disk.bytesPerSector;
  if (last > lastOnDisk || bytesPerSector < 512) return;
  const u64 piece = std::max<u64>(kPieceBytes / bytesPerSector, 1);
  u64 left = std::min(last, kTailSectors - 1) + 1;
  u64 sector = last - left + 1;
  while (left > 0 && copies.size() < 2 * kCopies) {
    const u64 count = std::min(piece, left);
    const auto bytes = ReadSectors(sector, count);
    for (u64 i = 0; bytes && i < count && copies.size() < 2 * kCopies; ++i) {
      const Bytes one = SliceAt(*bytes, i * bytesPerSector, 512);
      if (IsPrivhead(one)) {
        AddCopy(copies, {.sector = sector + i, .bytes = std::vector<u8>(one.begin(), one.end())});
      }
    }
    sector += count;
    left -= count;
  }
}

void AddAlternates(std::vector<Copy>& copies, Bytes bytes, u64 lastOnDisk) {
  for (const std::size_t offset : {privhead::kAlternate1, privhead::kAlternate2}) {
    if (const auto place = Sum(ConfigStart(bytes), Be64At(bytes, offset))) {
      AddCopy(copies, ReadCopy(*place, lastOnDisk));
    }
  }
}

bool IsPlausible(Bytes bytes, u64 lastOnDisk) {
  const u64 size = Be64At(bytes, privhead::kConfigSize);
  return size != 0 && Within(ConfigStart(bytes), size, lastOnDisk);
}

// The plausible copy that most others agree with; the first of equals.
const Copy& MostAgreed(const std::vector<Copy>& copies, u64 lastOnDisk) {
  const auto score = [&](const Copy& copy) {
    std::ptrdiff_t agreeing = std::ranges::count_if(
        copies, [&](const Copy& other) { return Differences(copy.bytes, other.bytes).empty(); });
    if (IsPlausible(copy.bytes, lastOnDisk)) agreeing += 2 * kCopies;
    return agreeing;
  };
  return *std::ranges::max_element(copies, {}, score);
}

void JudgeCopy(u64 sector, std::string_view name, Bytes reference, u64 lastOnDisk, PrivheadFacts& facts,
               std::vector<Check>& checks) {
  const std::string check(name);
  const Copy copy = ReadCopy(sector, lastOnDisk);
  if (copy.bytes.empty()) {
    checks.push_back({sector, check, Verdict::kMissing, "no PRIVHEAD", "a copy of the PRIVHEAD"});
    return;
  }
  facts.areas.push_back({sector, sector, check});
  const std::string found = Differences(copy.bytes, reference);
  const std::string expected = Differences(reference, copy.bytes);
  if (found.empty()) {
    checks.push_back({sector, check, Verdict::kGood, "as the other copies", "as the other copies"});
  } else {
    checks.push_back({sector, check, Verdict::kBad, found, expected});
  }
}

void JudgeCopies(u64 sector, Bytes reference, u64 lastOnDisk, PrivheadFacts& facts,
                 std::vector<Check>& checks) {
  JudgeCopy(sector, "PRIVHEAD", reference, lastOnDisk, facts, checks);
  for (const auto& [offset, name] : {std::pair{privhead::kAlternate1, "PRIVHEAD alternate 1"},
                                     std::pair{privhead::kAlternate2, "PRIVHEAD alternate 2"}}) {
    const auto place = Sum(ConfigStart(reference), Be64At(reference, offset));
    if (!place) {
      checks.push_back({facts.sector, name, Verdict::kBad, "a sector beyond any", "a sector of the disk"});
    } else if (*place != sector) {  // on a GPT disk the first copy can be the last alternate as well
      JudgeCopy(*place, name, reference, lastOnDisk, facts, checks);
    }
  }
}

void JudgeExtents(const PrivheadFacts& facts, u64 lastOnDisk, std::vector<Check>& checks) {
  const bool configFits = facts.configSize != 0 && Within(facts.configStart, facts.configSize, lastOnDisk);
  const bool logicalFits = Within(facts.logicalStart, facts.logicalSize, lastOnDisk);
  checks.push_back({facts.sector, "LDM configuration area", configFits ? Verdict::kGood : Verdict::kBad,
                    SectorsFrom(facts.configStart, facts.configSize), "sectors of the disk"});
  const bool apart = facts.logicalSize == 0 || !configFits || !logicalFits ||
                     facts.logicalStart + (facts.logicalSize - 1) < facts.configStart ||
                     facts.configStart + (facts.configSize - 1) < facts.logicalStart;
  checks.push_back({facts.sector, "LDM logical disk", logicalFits && apart ? Verdict::kGood : Verdict::kBad,
                    SectorsFrom(facts.logicalStart, facts.logicalSize),
                    "sectors of the disk outside the configuration area"});
}

}  // namespace

std::optional<PrivheadFacts> ExaminePrivheads(u64 sector, u64 lastOnDisk, std::vector<Check>& checks) {
  std::vector<Copy> copies;
  AddCopy(copies, ReadCopy(sector, lastOnDisk));
  if (!copies.empty()) AddAlternates(copies, std::vector<u8>(copies[0].bytes), lastOnDisk);
  if (copies.size() < 2) {
    const bool afterMbr = sector == 6;
    if (!afterMbr || lastOnDisk != ~u64{0}) {
      AddCopiesFromTail(copies, afterMbr ? lastOnDisk : sector, lastOnDisk);
    }
  }
  if (copies.empty()) return std::nullopt;

  const Copy& reference = MostAgreed(copies, lastOnDisk);
  const Bytes bytes = reference.bytes;
  PrivheadFacts facts{
      .sector = reference.sector,
      .version = Be32At(bytes, privhead::kMajorVersion),
      .diskGuid = SmallLetters(SafeAscii(SliceAt(bytes, privhead::kDiskId, 64))),
      .groupGuid = SmallLetters(SafeAscii(SliceAt(bytes, privhead::kGroupId, 64))),
      .groupName = SafeAscii(SliceAt(bytes, privhead::kGroupName, 32)),
      .logicalStart = Be64At(bytes, privhead::kLogicalStart),
      .logicalSize = Be64At(bytes, privhead::kLogicalEnd),
      .configStart = ConfigStart(bytes),
      .configSize = Be64At(bytes, privhead::kConfigSize),
      .tocCount = Be64At(bytes, privhead::kTocCount),
      .tocSize = Be64At(bytes, privhead::kTocSize),
      .configRegionSize = Be64At(bytes, privhead::kConfigRegionSize),
      .areas = {},
  };
  JudgeCopies(sector, bytes, lastOnDisk, facts, checks);
  const bool known = facts.version == kPrivheadVersion11 || facts.version == kPrivheadVersion12;
  checks.push_back({facts.sector, "PRIVHEAD version", known ? Verdict::kGood : Verdict::kBad,
                    Version(facts.version), "2.11 or 2.12"});
  JudgeExtents(facts, lastOnDisk, checks);
  // From here on the area can be added up.
  if (facts.configSize != 0) {
    facts.configSize = std::min(facts.configSize, ~u64{0} - facts.configStart);
  }
  return facts;
}

}  // namespace trovisk
