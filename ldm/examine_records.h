// The objects of a dynamic disk's database, each as its record states it.

#ifndef TROVISK_LDM_EXAMINE_RECORDS_H
#define TROVISK_LDM_EXAMINE_RECORDS_H

#include <map>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "ldm/examine_vblk.h"
#include "ldm/examine_vmdb.h"
#include "ldm/examine_words.h"

namespace trovisk {

// What all objects have.
struct LdmObject {
  u64 sector = 0;  // absolute, of the record
  u64 id = 0;
  std::string name;
};

struct LdmVolume : LdmObject {
  std::string type;  // "gen", "raid5"
  std::string state;
  u64 children = 0;  // components
  u64 size = 0;      // sectors
  u64 partitionType = 0;
  std::string guid;
  std::string hint;
};

struct LdmComponent : LdmObject {
  std::string state;
  u64 type = 0;      // see below
  u64 children = 0;  // partitions
  u64 volume = 0;
  u64 stripeSize = 0;  // sectors
  u64 columns = 0;
};
inline constexpr u64 kLdmStriped = 1;
inline constexpr u64 kLdmConcatenated = 2;
inline constexpr u64 kLdmRaid5 = 3;

struct LdmPartition : LdmObject {
  u64 start = 0;  // all three in sectors
  u64 volumeOffset = 0;
  u64 size = 0;
  u64 component = 0;
  u64 disk = 0;
  u64 column = 0;
};

struct LdmDisk : LdmObject {
  std::string guid;
  std::string device;  // its last known name, where the record has one
};

struct LdmGroup : LdmObject {
  std::string guid;
};

// The objects that are in force, in the order of their records.
struct LdmObjects {
  std::vector<LdmVolume> volumes;
  std::vector<LdmComponent> components;
  std::vector<LdmPartition> partitions;
  std::vector<LdmDisk> disks;
  std::vector<LdmGroup> groups;
  LdmCounts created;          // those that a transaction will put in force
  u64 aboutToBeDeleted = 0;   // of those in force
  std::map<u8, u64> unknown;  // records by types that are not told apart
};

// Takes the record in; damaged gets a check where its fields run beyond its data.
void TakeLdmRecord(const LdmRecord& record, LdmObjects& objects, ManyChecks& damaged);

}  // namespace trovisk

#endif
