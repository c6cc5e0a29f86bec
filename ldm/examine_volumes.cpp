// What belongs together in a dynamic disk's object database: a partition names its component and its disk, a
// component names its volume.
//
// Rules: the Linux-NTFS project's LDM documentation. Checked: that identifiers are unique and that what an
// object names is there.

#include "ldm/examine_volumes.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "ldm/examine_words.h"

namespace trovisk {
namespace {

std::string ComponentType(u64 type) {
  switch (type) {
    case kLdmStriped:
      return "striped";
    case kLdmConcatenated:
      return "concatenated";
    case kLdmRaid5:
      return "RAID-5";
    default:
      break;
  }
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return std::string("unknown 0x") + kDigits[type >> 4 & 0xF] + kDigits[type & 0xF];
}

std::string VolumeType(const DynamicVolume& volume) {
  if (volume.components.empty()) return "unknown";
  if (volume.components.size() > 1) return "mirrored";
  const DynamicComponent& component = volume.components[0];
  if (component.type != "concatenated") return component.type;
  return component.partitions.size() > 1 ? "spanned" : "simple";
}

// Where objects of one kind stand in their list, by identifier; the first one counts.
using Index = std::map<u64, std::size_t>;
template <typename Object>
Index IndexOf(const std::vector<Object>& objects) {
  Index index;
  for (std::size_t i = 0; i < objects.size(); ++i)
    index.emplace(objects[i].id, i);
  return index;
}

// Identifiers are unique among objects of all kinds.
void JudgeIdentifiers(const LdmObjects& objects, u64 databaseSector, std::vector<Check>& checks,
                      std::vector<std::string>& remarks) {
  ManyChecks unique("VBLK object identifiers", checks);
  std::set<u64> known;
  const auto judge = [&](const LdmObject& object) {
    if (known.insert(object.id).second) return;
    unique.Add(Verdict::kBad, object.sector, std::to_string(object.id) + " of " + object.name,
               "an identifier that no other object has");
  };
  std::ranges::for_each(objects.disks, judge);
  std::ranges::for_each(objects.volumes, judge);
  std::ranges::for_each(objects.components, judge);
  std::ranges::for_each(objects.partitions, judge);
  unique.Finish(databaseSector, "unique", remarks);
}

struct Links {
  const LdmObjects& objects;
  DynamicDisk& dynamic;
  ManyChecks parents;
  Index disks, volumes, components;
};

// The object of that identifier, or null and a check.
template <typename Object>
const Object* Named(Links& links, const Index& index, const std::vector<Object>& objects, u64 id,
                    std::string_view kind, const LdmObject& by) {
  const auto found = index.find(id);
  if (found != index.end()) return &objects[found->second];
  links.parents.Add(Verdict::kMissing, by.sector,
                    std::string("no ").append(kind).append(" ").append(std::to_string(id)),
                    std::string("the ").append(kind).append(" of ").append(by.name));
  return nullptr;
}

DynamicPartition MakePartition(Links& links, const LdmPartition& from) {
  DynamicPartition partition{.id = from.id,
                             .name = from.name,
                             .diskId = from.disk,
                             .disk = {},
                             .start = from.start,
                             .size = from.size,
                             .volumeOffset = from.volumeOffset,
                             .column = from.column};
  const DynamicDisk& dynamic = links.dynamic;
  if (const LdmDisk* disk = Named(links, links.disks, links.objects.disks, from.disk, "disk", from)) {
    partition.disk = disk->name;
    partition.onThisDisk = !disk->guid.empty() && disk->guid == dynamic.diskGuid;
  }
  if (partition.onThisDisk) partition.absoluteStart = Sum(dynamic.logicalStart, from.start).value_or(~u64{0});
  return partition;
}

// A component and all its partitions go with the volume, or nowhere.
void LinkPartitions(Links& links, std::vector<DynamicComponent>& components) {
  DynamicDisk& dynamic = links.dynamic;
  for (const LdmPartition& from : links.objects.partitions) {
    DynamicPartition partition = MakePartition(links, from);
    const LdmComponent* parent =
        Named(links, links.components, links.objects.components, from.component, "component", from);
    const bool whole = parent != nullptr && links.volumes.contains(parent->volume);
    auto& with = whole ? components[links.components.at(from.component)].partitions : dynamic.orphans;
    with.push_back(std::move(partition));
  }
  const auto order = [](const DynamicPartition& p) {
    return std::tuple(p.column, p.volumeOffset, p.start, p.id);
  };
  for (DynamicComponent& component : components)
    std::ranges::stable_sort(component.partitions, {}, order);
}

void LinkComponents(Links& links) {
  std::vector<DynamicComponent> components;
  components.reserve(links.objects.components.size());
  for (const LdmComponent& from : links.objects.components) {
    components.push_back({.id = from.id,
                          .name = from.name,
                          .type = ComponentType(from.type),
                          .state = from.state,
                          .stripeSize = from.stripeSize,
                          .columns = from.columns,
                          .partitions = {}});
  }
  LinkPartitions(links, components);
  for (std::size_t i = 0; i < components.size(); ++i) {
    const LdmComponent& from = links.objects.components[i];
    if (Named(links, links.volumes, links.objects.volumes, from.volume, "volume", from) != nullptr) {
      links.dynamic.volumes[links.volumes.at(from.volume)].components.push_back(std::move(components[i]));
    }
  }
}

}  // namespace

void LinkLdmObjects(const LdmObjects& objects, u64 databaseSector, DynamicDisk& dynamic,
                    std::vector<Check>& checks) {
  JudgeIdentifiers(objects, databaseSector, checks, dynamic.remarks);
  for (const LdmDisk& disk : objects.disks) {
    dynamic.disks.push_back({.id = disk.id,
                             .name = disk.name,
                             .guid = disk.guid,
                             .device = disk.device,
                             .thisDisk = !disk.guid.empty() && disk.guid == dynamic.diskGuid});
  }
  for (const LdmVolume& volume : objects.volumes) {
    dynamic.volumes.push_back({.id = volume.id,
                               .name = volume.name,
                               .type = {},
                               .state = volume.state,
                               .size = volume.size,
                               .hint = volume.hint,
                               .guid = volume.guid,
                               .partitionType = volume.partitionType,
                               .components = {}});
  }
  Links links{.objects = objects,
              .dynamic = dynamic,
              .parents = {"VBLK named objects", checks},
              .disks = IndexOf(objects.disks),
              .volumes = IndexOf(objects.volumes),
              .components = IndexOf(objects.components)};
  LinkComponents(links);
  links.parents.Finish(databaseSector, "all of them", dynamic.remarks);
  for (DynamicVolume& volume : dynamic.volumes)
    volume.type = VolumeType(volume);
}

}  // namespace trovisk
