// A dynamic disk's configuration in words, for tests to compare.

#ifndef TROVISK_TESTS_MAP_LDM_WORDS_H
#define TROVISK_TESTS_MAP_LDM_WORDS_H

#include <string>
#include <vector>

#include "ldm/dynamic_disk.h"
#include "tests/disks/ldm_group.h"
#include "tests/map/opened_disk.h"

namespace trovisk::test {

struct Examined {
  std::optional<trovisk::DynamicDisk> dynamic;
  std::vector<Check> checks;
};

inline Examined ExamineLdm(const Disk& built, u64 sector = 6) {
  const OpenedDisk opened(built);
  Examined examined;
  examined.dynamic = ExamineDynamicDisk(sector, built.Sectors() - 1, examined.checks);
  return examined;
}

inline std::string Words(const DynamicPartition& partition) {
  std::string words = partition.name + " on " + partition.disk + ", " + std::to_string(partition.size) +
                      " at " + std::to_string(partition.start);
  if (partition.onThisDisk) words += " = " + std::to_string(partition.absoluteStart);
  return words + ", offset " + std::to_string(partition.volumeOffset) + ", column " +
         std::to_string(partition.column);
}

// A line for the volume, one for each component, one for each partition.
inline Texts Words(const DynamicVolume& volume) {
  Texts words = {volume.name + ": " + volume.type + ", " + volume.state + ", " + std::to_string(volume.size) +
                 ", hint [" + volume.hint + "]"};
  for (const DynamicComponent& component : volume.components) {
    words.push_back(component.name + ": " + component.type + ", " + component.state + ", stripe " +
                    std::to_string(component.stripeSize) + ", columns " + std::to_string(component.columns));
    for (const DynamicPartition& partition : component.partitions)
      words.push_back(Words(partition));
  }
  return words;
}

// The volume of that name, in words.
inline Texts VolumeNamed(const Examined& examined, std::string_view name) {
  if (!examined.dynamic) return {"no dynamic disk"};
  for (const DynamicVolume& volume : examined.dynamic->volumes) {
    if (volume.name == name) return Words(volume);
  }
  return {"no such volume"};
}

}  // namespace trovisk::test

#endif
