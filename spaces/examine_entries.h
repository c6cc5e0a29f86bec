// The entries of a Storage Spaces database, put together from their SDBB records.

#ifndef TROVISK_SPACES_EXAMINE_ENTRIES_H
#define TROVISK_SPACES_EXAMINE_ENTRIES_H

#include <map>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"
#include "spaces/storage_spaces.h"

namespace trovisk {

class SpacesEntries {
 public:
  // Takes the eight records of a sector.
  void TakeSector(u64 sector, Bytes records);

  // When all were taken: the entries become objects of the spaces, by identifier, and are judged.
  // sector: that the good answer is about.
  void Finish(u64 sector, StorageSpaces& spaces, std::vector<Check>& checks) const;

 private:
  // parts: those that are there, a bit each for the first 64; more are counted alone.
  struct Entry {
    u64 sector = 0;  // absolute, of the first record met
    u64 type = 0;
    u64 stated = 0;
    u64 found = 0;
    u64 parts = 0;
    bool contradicts = false;  // itself
  };

  std::map<u64, Entry> entries_;  // by the identifier of the first part
  u64 leftOut_ = 0;               // records, because there are too many entries
};

}  // namespace trovisk

#endif
