// What the structures of a Storage Spaces partition and of a Storage Replica log say together.

#ifndef TROVISK_SPACES_STORAGE_SPACES_H
#define TROVISK_SPACES_STORAGE_SPACES_H

#include <optional>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

// An entry of the database. What the types mean, and where an entry has a name, is not published.
struct SpacesObject {
  u64 id = 0;
  std::string kind = {};  // "type 0xNNNN"; "unknown": its first part is not there
  std::string name = {};  // UTF-8, safe to show; empty: not known
  std::string guid = {};  // empty: not known
  u64 parts = 0;          // SDBB records that were found of it
};

struct StorageSpaces {
  u64 sector = 0;                  // absolute, of the SPACEDB
  u64 partitionLast = 0;           // absolute
  std::string diskGuid = {};       // the SPACEDB's own; GUIDs are in small letters
  std::string poolGuid = {};       // the storage GUID of the SPACEDB
  std::string poolName = {};       // empty: not known
  std::string spaceportGuid = {};  // of the SDBC; empty: there is none
  std::string poolType = {};       // as the SDBC states; empty: a number without a name
  std::vector<Area> areas = {};
  std::vector<SpacesObject> objects = {};
  std::vector<std::string> remarks;
};

// Reads the Storage Spaces structures of the partition; none where there is no SPACEDB. At most 2^15 sectors
// and 2^14 entries are read, and 16 checks of one name made; remarks say what was left out.
std::optional<StorageSpaces> ExamineStorageSpaces(const VolumePlace& place, std::vector<Check>& checks);

// The areas of a Storage Replica log partition: its DPOM and its log.
VolumeFindings ExamineStorageReplica(const VolumePlace& place);

}  // namespace trovisk

#endif
