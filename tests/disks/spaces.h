// Builders of Storage Spaces and Storage Replica records. Fields of several bytes that are printed in stored
// order are numbers here, most significant byte first on disk.

#ifndef TROVISK_TESTS_DISKS_SPACES_H
#define TROVISK_TESTS_DISKS_SPACES_H

#include <array>
#include <string_view>
#include <vector>

#include "tests/disks/disk.h"

namespace trovisk::test {

using Revision = std::array<u8, 4>;
using StoredGuid = std::array<u8, 16>;  // its bytes in the order in which they are printed

struct SpaceDb {
  std::string_view signature = "SPACEDB ";
  Revision revision = {0, 0, 1, 0};
  u32 crc32 = 0;
  u64 unknown10 = 0;
  u64 fileTime = 0;
  StoredGuid storageGuid = {};
  StoredGuid spaceDbGuid = {};
  u64 number = 0;  // little-endian
  u64 zeroes = 0;
  u64 unknown50 = 0;
  u64 timeStamp = 0;
};

struct Sdbc {
  std::string_view signature = "SDBC    ";
  Revision revision = {0, 0, 1, 0};
  u32 crc32 = 0;
  StoredGuid spaceportGuid = {};
  u64 unknown20 = 0;
  u32 unknown28 = 0;  // 24 bits
  u8 poolType = 0x1B;
  u32 unknown2C = 0;
  u64 unknown30 = 0;
  u64 lastTransaction1 = 0;
  u64 lastTransaction2 = 0;
  u64 timeStamp = 0;
};

struct SdbbRecord {
  std::string_view signature = "SDBB";
  u32 identifier = 0;
  u32 parent = 0;
  u16 partIndex = 0;
  u16 partCount = 1;
  u16 type = 0;
};

struct Dpod {
  std::string_view signature = "DPOD";
  u32 dataSize = 0;
  Guid partitionGuid{"00000000-0000-0000-0000-000000000000"};
  Guid replicationGroupGuid{"00000000-0000-0000-0000-000000000000"};
  std::array<u32, 6> words = {};
};

struct Dpom {
  std::string_view signature = "DPOM";
  u32 dataSize = 0;
  std::array<u32, 9> words = {};
  Guid diskGuid{"00000000-0000-0000-0000-000000000000"};
  Guid partitionGuid{"00000000-0000-0000-0000-000000000000"};
};

Sector& PutSpaceDb(Disk& disk, u64 sector, const SpaceDb& header);
Sector& PutSdbc(Disk& disk, u64 sector, const Sdbc& header);
// At most eight records; those not given are as SdbbRecord is by default.
Sector& PutSdbb(Disk& disk, u64 sector, std::vector<SdbbRecord> records = {});
Sector& PutDpod(Disk& disk, u64 sector, const Dpod& record);
Sector& PutDpom(Disk& disk, u64 sector, const Dpom& record);

}  // namespace trovisk::test

#endif
