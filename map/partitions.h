// The partitions of a disk, from every table that it has.

#ifndef TROVISK_MAP_PARTITIONS_H
#define TROVISK_MAP_PARTITIONS_H

#include <optional>
#include <string_view>
#include <vector>

#include "frame/toc.h"
#include "gpt/examine_gpt.h"
#include "map/model.h"
#include "mbr/examine_mbr.h"

namespace trovisk {

struct PartitionTables {
  MasterBootRecord mbr;
  bool bareVolume = false;         // sector 0 is a volume's boot sector, and holds no partitions
  std::optional<GptCopy> primary;  // both without their partitions, which are below
  std::optional<GptCopy> backup;
  // A protective entry leads to it, or the MBR has no partitions; else it is what an earlier use left.
  bool gptInUse = false;

  bool followsPrimary = true;  // which of its copies the map believes

  std::vector<Extent> partitions;  // in the order of their tables
  std::vector<Extent> structures;  // the tables themselves
  SectorToc extendedRecords;       // those of the usual chains
  std::vector<Check> checks;
  std::vector<std::string> cut;
};

// Logical partitions, and records of their chains, beyond so many are counted, not kept.
inline constexpr u64 kMostLogical = u64{1} << 12;

// Whether the sector can be read and begins with that signature.
bool BeginsWith(u64 sector, std::string_view text);

// Reads all tables. lastOnDisk: all ones where unknown.
PartitionTables ReadPartitionTables(u64 lastOnDisk);

// Adds what a GPT copy states, or both where they differ; part of ReadPartitionTables.
void ReadGptTables(PartitionTables& tables, u64 lastOnDisk);

}  // namespace trovisk

#endif
