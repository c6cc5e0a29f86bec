#include "map/model.h"

#include <algorithm>
#include <array>

namespace trovisk {
namespace {

constexpr std::array<std::string_view, 12> kFlagNames = {
    "active", "container", "overlaps",     "beyond-end",    "reversed", "empty",
    "hybrid", "unsound",   "copy-differs", "other-reading", "damaged",  "other-copy"};

constexpr u32 kWrongFlags = kFlagOverlaps | kFlagBeyondEnd | kFlagReversed | kFlagCopyDiffers | kFlagDamaged;

}  // namespace

std::string_view NameOfFlag(ExtentFlag flag) {
  std::size_t bit = 0;
  while ((u32{flag} >> bit & 1) == 0)
    ++bit;
  return kFlagNames.at(bit);
}

std::vector<std::string_view> NamesOfFlags(u32 flags) {
  std::vector<std::string_view> names;
  for (std::size_t bit = 0; bit < kFlagNames.size(); ++bit) {
    if ((flags >> bit & 1) != 0) names.push_back(kFlagNames.at(bit));
  }
  return names;
}

std::string_view NameOfKind(ExtentKind kind) {
  constexpr std::array<std::string_view, 6> kNames = {"partition", "logical", "structure",
                                                      "volume",    "area",    "gap"};
  return kNames.at(static_cast<std::size_t>(kind));
}

std::string_view NameOfVerdict(Verdict verdict) {
  constexpr std::array<std::string_view, 4> kNames = {"good", "bad", "missing", "not checked"};
  return kNames.at(static_cast<std::size_t>(verdict));
}

bool IsWrong(const Check& check) {
  return check.verdict == Verdict::kBad || check.verdict == Verdict::kMissing;
}

bool IsWrong(const Extent& extent) {
  return (extent.flags & kWrongFlags) != 0;
}

u64 UnrecognisedVolumes(const DiskMap& map) {
  return static_cast<u64>(std::count_if(map.checks.begin(), map.checks.end(),
                                        [](const Check& check) { return check.name == kVolumeRecognised; }));
}

bool HasTableOrVolume(const DiskMap& map) {
  return std::any_of(map.extents.begin(), map.extents.end(), [](const Extent& extent) {
    return extent.kind == ExtentKind::kPartition || extent.kind == ExtentKind::kVolume;
  });
}

int DiskMap::ExitStatus() const {
  const auto isWrong = [](const auto& each) { return IsWrong(each); };
  const bool wrong = std::any_of(checks.begin(), checks.end(), isWrong) ||
                     std::any_of(extents.begin(), extents.end(), isWrong);
  return wrong ? 2 : 0;
}

}  // namespace trovisk
