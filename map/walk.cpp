#include "map/walk.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "frame/decoders.h"
#include "frame/global.h"
#include "frame/progress.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "map/catcher.h"
#include "map/structure_names.h"
#include "map/volume_kind.h"
#include "mbr/boot_sector_identification.h"
#include "mbr/examine_mbr.h"

namespace trovisk {
namespace {

constexpr u64 kMostVisits = u64{1} << 21;
constexpr u64 kAlikeVisits = 64;            // of a long run of structures that say the same
constexpr std::size_t kMostInvalid = 1000;  // that become a check each

struct Reader {
  SectorDecoder decoder;
  WideText title;
};

// The decoder of what a boot sector says of itself.
Reader ReaderOf(VolumeKind kind, Reader otherwise) {
  switch (kind) {
    case VolumeKind::kFat:
    case VolumeKind::kBitLockerToGo:
      return {DecodeFatBootSector, L"FAT boot sector"};
    case VolumeKind::kNtfs:
      return {DecodeNtfsBootSector, L"NTFS boot sector"};
    case VolumeKind::kExFat:
      return {DecodeExFatBootSector, L"exFAT boot sector"};
    case VolumeKind::kReFs:
      return {DecodeReFsBootRecord, L"ReFS Volume Boot sector"};
    case VolumeKind::kBitLocker:
      return {DecodeBitLockerBootSector, L"Bitlocker Boot sector"};
    case VolumeKind::kNone:
      break;
  }
  return otherwise;
}

// The decoder that the sector's own bytes call for, where its registration leaves that open or is belied. A
// signature counts more than boot code, which an encrypted volume keeps.
Reader Choose(Reader registered, Bytes sector) {
  const bool open = registered.decoder == IdentifyBootSector;
  if (!open && registered.decoder != DecodeFatBootSector) return registered;
  if (sector.size() < 512) return registered;
  const SectorView boot = sector.first<512>();
  Reader named = registered;
  if (open) {
    const VolumeClass known = ClassifyBootSector(boot);
    named = {known.decoder, known.name};
  }
  const Reader own = ReaderOf(KindOfBootSector(boot), named);
  return own.decoder == named.decoder ? named : own;
}

// What the survey does with one sector.
struct Outcome {
  bool decoded = false;  // false: left alone, for it is nothing that the decoder could read
  bool valid = true;
  std::string message;
};

std::string MessageOf(const Catcher::Caught& caught) {
  if (!caught.messages.empty()) return caught.messages.front();
  // Some structures say in the report itself that they are not valid.
  std::string line = caught.text;
  while (!line.empty() && line.back() == '\n')
    line.pop_back();
  return line.substr(line.find_last_of('\n') + 1);
}

class Walk {
 public:
  Walk(const SectorToc& extendedRecords, u64 lastOnDisk, Catcher& catcher, std::vector<Check>& checks)
      : extendedRecords_(extendedRecords), lastOnDisk_(lastOnDisk), catcher_(catcher), checks_(checks) {
    for (const Check& check : checks) {
      if (check.verdict == Verdict::kBad || check.verdict == Verdict::kMissing) judged_.insert(check.sector);
    }
  }

  WalkResult Run() {
    BeginPass("surveying", 0, lastOnDisk_);
    while (Round()) {
    }
    JudgeBeyondEnd();
    if (visits_ >= kMostVisits) {
      result_.cut.push_back("The survey stopped after " + std::to_string(visits_) + " structures.");
    }
    if (invalidChecks_ > kMostInvalid) {
      result_.cut.push_back("Of " + std::to_string(invalidChecks_) + " invalid structures " +
                            std::to_string(kMostInvalid) + " are among the checks.");
    }
    return std::move(result_);
  }

 private:
  // Visits all that is registered and not visited yet, in ascending order; whether there was anything. What
  // is registered meanwhile is visited too where it lies ahead, else in the next round: each registration is
  // looked at in one round or two, however long a chain leads backwards.
  bool Round() {
    const SectorToc waiting = std::exchange(disk.toc, SectorToc());
    bool any = false;
    u64 position = 0;
    while (const auto next = First(waiting, disk.toc, position)) {
      if (const auto done = result_.structures.FirstAtOrAfter(next->first);
          done && done->first == next->first) {
        if (done->last == ~u64{0}) break;
        position = done->last + 1;
        continue;
      }
      if (visits_ >= kMostVisits) return false;
      any = true;
      if (!Visit(*next, position)) break;
    }
    return any;
  }

  // The next sector of either table; of a sector of both the earlier registration counts.
  static std::optional<SectorToc::Found> First(const SectorToc& earlier, const SectorToc& later,
                                               u64 position) {
    auto found = earlier.FirstAtOrAfter(position);
    const auto other = later.FirstAtOrAfter(position);
    if (!found || (other && other->first < found->first)) return Until(other, found);
    return found;
  }

  // The run without what the other table has.
  static std::optional<SectorToc::Found> Until(std::optional<SectorToc::Found> run,
                                               const std::optional<SectorToc::Found>& other) {
    if (run && other) run->last = std::min(run->last, other->first - 1);
    return run;
  }

  // position: receives the sector to go on with. False where there is none.
  bool Visit(const SectorToc::Found& found, u64& position) {
    const u64 sector = found.first;
    const std::wstring description(found.entry.description);  // the table may move
    ++visits_;
    BetweenSectors(sector);
    u64 last = found.last;
    Reader reader{found.entry.decoder, description};
    if (disk.bytesPerSector == 0 || (lastOnDisk_ != ~u64{0} && sector > lastOnDisk_)) {
      CountBeyondEnd(sector, last, reader);
    } else {
      const auto bytes = ReadSectors(sector, 1);
      reader = Choose(reader, bytes ? Bytes(*bytes) : Bytes());
      const Outcome outcome = Decode(reader, sector, bytes ? Bytes(*bytes) : Bytes());
      last = EndOfAlike(found, reader);
      Count(sector, last, reader, outcome);
    }
    position = last + 1;
    return position != 0;
  }

  // A long run of structures that say the same ends behind its first ones for the survey.
  u64 EndOfAlike(const SectorToc::Found& found, const Reader& reader) {
    if (!KindOf(reader.decoder).alike) return found.first;
    alikeVisits_ = found.first == alikeNext_ ? alikeVisits_ + 1 : 1;
    alikeNext_ = found.first + 1;
    return alikeVisits_ < kAlikeVisits ? found.first : found.last;
  }

  Outcome Decode(const Reader& reader, u64 sector, Bytes bytes) {
    if (reader.decoder == DecodeExtendedBootRecord && !extendedRecords_.At(sector) && !bytes.empty() &&
        !LooksLikeExtendedRecord(bytes)) {
      return {.decoded = false, .valid = false, .message = "no extended boot record stands here"};
    }
    catcher_.Take();
    u64 next = kEndPass;
    if (SeekToSector(sector))
      next = reader.decoder(reader.title, sector, KindOf(reader.decoder).showsToRegister);
    const Catcher::Caught caught = catcher_.Take();
    const bool valid = IsValid(
        reader.decoder,
        {.sector = sector, .next = next, .complained = !caught.messages.empty(), .readable = !bytes.empty()});
    if (valid && !bytes.empty()) return {.decoded = true, .message = {}};
    return {.decoded = true, .valid = false, .message = valid ? "unreadable" : MessageOf(caught)};
  }

  void CountBeyondEnd(u64 first, u64 last, const Reader& reader) {
    result_.structures.Add(first, last, reader.decoder, reader.title);
    ++result_.count;
    ++result_.invalid;
    const bool otherReading = reader.decoder == DecodeExtendedBootRecord && !extendedRecords_.At(first);
    if (KindOf(reader.decoder).optional || otherReading) return;
    if (beyondEnd_++ == 0 || first < firstBeyondEnd_) {
      firstBeyondEnd_ = first;
      titleBeyondEnd_ = ToNarrow(reader.title);
    }
  }

  // One sentence, as they are all lost in the same way.
  void JudgeBeyondEnd() {
    if (beyondEnd_ == 0) return;
    checks_.push_back({firstBeyondEnd_, "structures lie on the disk", Verdict::kMissing,
                       std::to_string(beyondEnd_) + " beyond its end, from sector " +
                           std::to_string(firstBeyondEnd_) + " on (" + titleBeyondEnd_ + ")",
                       "all of them: a disk or an image that has not been cut short"});
  }

  void Count(u64 first, u64 last, const Reader& reader, const Outcome& outcome) {
    result_.structures.Add(first, last, reader.decoder, reader.title);
    ++result_.count;
    if (outcome.valid) return;
    ++result_.invalid;
    const StructureKind& kind = KindOf(reader.decoder);
    if (kind.optional) return;
    const bool otherReading = reader.decoder == DecodeExtendedBootRecord && !extendedRecords_.At(first);
    if (otherReading || judged_.contains(first) || ++invalidChecks_ > kMostInvalid) return;
    const auto bytes = outcome.decoded ? ReadSectors(first, 1) : std::nullopt;
    if (kind.volume && bytes && AllZero(*bytes)) return;  // "volume is recognised" says it
    Check check{first, "structure is valid", bytes ? Verdict::kBad : Verdict::kMissing, outcome.message,
                ToNarrow(reader.title)};
    checks_.push_back(std::move(check));
  }

  const SectorToc& extendedRecords_;
  u64 lastOnDisk_;
  Catcher& catcher_;
  std::vector<Check>& checks_;
  std::unordered_set<u64> judged_;  // sectors of which another check says already that something is wrong
  WalkResult result_;
  u64 visits_ = 0;
  u64 alikeVisits_ = 0;
  u64 alikeNext_ = 0;
  std::size_t invalidChecks_ = 0;
  u64 beyondEnd_ = 0;
  u64 firstBeyondEnd_ = 0;
  std::string titleBeyondEnd_;
};

}  // namespace

WalkResult WalkDisk(const SectorToc& extendedRecords, u64 lastOnDisk, Catcher& catcher,
                    std::vector<Check>& checks) {
  return Walk(extendedRecords, lastOnDisk, catcher, checks).Run();
}

}  // namespace trovisk
