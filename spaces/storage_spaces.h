// What the structures of a Storage Spaces partition and of a Storage Replica log say together.

#ifndef TROVISK_SPACES_STORAGE_SPACES_H
#define TROVISK_SPACES_STORAGE_SPACES_H

#include <optional>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

// A disk or a space of a pool, as far as its record can be read.
struct SpacesObject {
  u64 id = 0;
  std::string kind;  // "pool", "disk", "space", "extent", else "type 0xNNNN"
  std::string name;  // UTF-8, safe to show; empty: not known
  std::string guid;  // empty: not known
  u64 parts = 0;     // SDBB records that it takes
};

struct StorageSpaces {
  u64 sector = 0;         // absolute, of the SPACEDB
  u64 partitionLast = 0;  // absolute
  std::string diskGuid;
  std::string poolGuid;
  std::string poolName;
  std::vector<Area> areas;
  std::vector<SpacesObject> objects;
  std::vector<std::string> remarks;
};

// Reads the Storage Spaces structures of the partition; none where there is no SPACEDB.
std::optional<StorageSpaces> ExamineStorageSpaces(const VolumePlace& place, std::vector<Check>& checks);

// The areas of a Storage Replica log partition: its DPOM and its log.
VolumeFindings ExamineStorageReplica(const VolumePlace& place);

}  // namespace trovisk

#endif
