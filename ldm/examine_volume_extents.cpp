// The volumes of a dynamic disk against themselves and the disk: numbers of parts, sizes, overlaps.
//
// Rules: the Linux-NTFS project's LDM documentation: a volume states how many components it has and a
// component how many partitions; partitions count from the start of the logical disk and lie in it.

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "ldm/examine_volumes.h"
#include "ldm/examine_words.h"

namespace trovisk {
namespace {

struct Placed {
  u64 start;
  u64 size;
  u64 sector;
  const std::string* name;
};

std::string Of(const std::string& name, u64 count, std::string_view what) {
  return name + ": " + std::to_string(count) + " " + std::string(what);
}

// How much the partitions of a component hold for its volume; none where the sum wraps.
std::optional<u64> Capacity(const DynamicComponent& component) {
  u64 sum = 0;
  for (const DynamicPartition& partition : component.partitions) {
    const auto larger = Sum(sum, partition.size);
    if (!larger) return std::nullopt;
    sum = *larger;
  }
  const u64 count = component.partitions.size();
  // One column's worth of each row is parity.
  return component.type == "RAID-5" && count != 0 ? sum - sum / count : sum;
}

void JudgeChildren(const LdmObjects& objects, const DynamicDisk& dynamic, ManyChecks& children) {
  std::map<u64, u64> partitions;
  for (const LdmPartition& partition : objects.partitions)
    ++partitions[partition.component];
  for (const LdmComponent& component : objects.components) {
    const u64 found = partitions.contains(component.id) ? partitions.at(component.id) : 0;
    if (found == component.children) continue;
    children.Add(Verdict::kBad, component.sector, Of(component.name, found, "partitions"),
                 Of(component.name, component.children, "partitions"));
  }
  for (std::size_t i = 0; i < objects.volumes.size(); ++i) {
    const LdmVolume& volume = objects.volumes[i];
    const u64 found = dynamic.volumes[i].components.size();
    if (found == volume.children) continue;
    children.Add(Verdict::kBad, volume.sector, Of(volume.name, found, "components"),
                 Of(volume.name, volume.children, "components"));
  }
}

void JudgeSizes(const LdmObjects& objects, const DynamicDisk& dynamic, ManyChecks& sizes) {
  for (std::size_t i = 0; i < objects.volumes.size(); ++i) {
    const LdmVolume& volume = objects.volumes[i];
    for (const DynamicComponent& component : dynamic.volumes[i].components) {
      if (component.partitions.empty()) continue;
      const auto capacity = Capacity(component);
      if (capacity && *capacity >= volume.size) continue;
      sizes.Add(Verdict::kBad, volume.sector, Of(volume.name, volume.size, "sectors"),
                capacity ? "at most " + std::to_string(*capacity) + ", as " + component.name + " has"
                         : "what " + component.name + " has, whose sizes add up to no number");
    }
  }
}

void JudgePlaces(const LdmObjects& objects, const DynamicDisk& dynamic, ManyChecks& places,
                 ManyChecks& overlaps) {
  std::set<u64> here;
  for (const DynamicDiskMember& disk : dynamic.disks) {
    if (disk.thisDisk) here.insert(disk.id);
  }
  std::vector<Placed> placed;
  for (const LdmPartition& partition : objects.partitions) {
    if (!here.contains(partition.disk) || partition.size == 0) continue;
    const bool fits =
        dynamic.logicalSize != 0 && Within(partition.start, partition.size, dynamic.logicalSize - 1);
    if (fits) {
      placed.push_back({partition.start, partition.size, partition.sector, &partition.name});
    } else {
      places.Add(Verdict::kBad, partition.sector,
                 partition.name + ": " + SectorsFrom(partition.start, partition.size),
                 "among " + std::to_string(dynamic.logicalSize) + " sectors");
    }
  }
  std::ranges::sort(placed, {}, [](const Placed& p) { return std::tuple(p.start, p.size, p.sector); });
  const Placed* reaching = nullptr;  // of those before, the one that ends last
  for (const Placed& partition : placed) {
    if (reaching != nullptr && partition.start < reaching->start + reaching->size) {
      overlaps.Add(Verdict::kBad, partition.sector,
                   *partition.name + ": " + SectorsFrom(partition.start, partition.size),
                   "behind " + *reaching->name + ": " + SectorsFrom(reaching->start, reaching->size));
    }
    const bool further =
        reaching == nullptr || partition.start + partition.size > reaching->start + reaching->size;
    if (further) reaching = &partition;
  }
}

}  // namespace

void JudgeVolumes(const LdmObjects& objects, u64 databaseSector, DynamicDisk& dynamic,
                  std::vector<Check>& checks) {
  const auto judge = [&](std::string_view name, std::string_view good, auto question) {
    ManyChecks answers(name, checks);
    question(answers);
    answers.Finish(databaseSector, good, dynamic.remarks);
  };
  judge("VBLK numbers of parts", "as stated",
        [&](ManyChecks& answers) { JudgeChildren(objects, dynamic, answers); });
  judge("VBLK volume sizes", "not more than the partitions have",
        [&](ManyChecks& answers) { JudgeSizes(objects, dynamic, answers); });
  ManyChecks overlaps("VBLK partitions overlap", checks);
  judge("VBLK partitions in the logical disk", "all of this disk",
        [&](ManyChecks& answers) { JudgePlaces(objects, dynamic, answers, overlaps); });
  overlaps.Finish(databaseSector, "none", dynamic.remarks);
}

}  // namespace trovisk
