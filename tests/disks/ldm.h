// Builders of the structures of a dynamic disk.

#ifndef TROVISK_TESTS_DISKS_LDM_H
#define TROVISK_TESTS_DISKS_LDM_H

#include <array>
#include <optional>
#include <vector>

#include "tests/disks/disk.h"

namespace trovisk::test {

// Sixteen bytes that count up from the first one: a GUID that is easily foretold.
std::array<u8, 16> CountingBytes(u8 first);

struct Privhead {
  std::string_view signature = "PRIVHEAD";
  u32 sequence = 0;
  u16 major = 2;
  u16 minor = 12;
  u64 timestamp = 0;   // FILETIME
  u64 alternate1 = 0;  // relative to configStart
  u64 alternate2 = 0;
  std::string_view diskId = {};  // at most 64 characters each, the group's name at most 32
  std::string_view hostId = {};
  std::string_view groupId = {};
  std::string_view groupName = {};
  u64 logicalStart = 0;
  u64 logicalEnd = 0;
  u64 configStart = 0;  // absolute
  u64 configSize = 0;
  u64 tocCount = 0;
  u64 tocSize = 0;
  u32 configCount = 0;
  u32 logCount = 0;
  u64 configRegionSize = 0;
  u64 logRegionSize = 0;
  u32 diskSignature = 0;  // its digits as they are shown
  std::array<u8, 16> diskSetId = {};
  std::array<u8, 16> diskSetIdCopy = {};
};
Sector& PutPrivhead(Disk& disk, u64 sector, const Privhead& header);

struct TocRegion {
  std::string_view name = {};  // at most 8 characters
  u16 flags = 0;
  u64 start = 0;  // relative to the PRIVHEAD's configStart
  u64 size = 0;
  u64 number = 0;
};
struct TocBlock {
  std::string_view signature = "TOCBLOCK";
  u32 sequence1 = 0;
  u32 sequence2 = 0;
  TocRegion config = {.name = "config"};
  TocRegion log = {.name = "log"};
};
Sector& PutTocBlock(Disk& disk, u64 sector, const TocBlock& toc);

struct ObjectCounts {
  u32 volumes = 0;
  u32 components = 0;
  u32 partitions = 0;
  u32 disks = 0;
};
struct Vmdb {
  std::string_view signature = "VMDB";
  u32 sequence = 0;
  u32 vblkSize = 128;
  u32 vblkOffset = 512;
  u16 updateStatus = 1;
  u16 major = 4;
  u16 minor = 10;
  std::string_view groupName = {};  // at most 31 characters
  std::string_view groupId = {};    // at most 64 characters
  u64 committedSequence = 0;
  u64 pendingSequence = 0;
  ObjectCounts committed = {};
  ObjectCounts pending = {};
  u64 lastAccess = 0;  // FILETIME
};
Sector& PutVmdb(Disk& disk, u64 sector, const Vmdb& vmdb);

struct Klog {
  std::string_view signature = "KLOG";
  u32 logCount = 0;
  u32 klogCount = 1;  // sectors of the log
  u32 index = 0;
  std::vector<u64> identifiers = {};  // one more than logCount
};
Sector& PutKlog(Disk& disk, u64 sector, const Klog& klog);

// The data of a VBLK record, written field after field.
class VblkData {
 public:
  VblkData& Byte(u64 value) { return Be(value, 1); }
  VblkData& Be(u64 value, std::size_t width);
  VblkData& Zeros(std::size_t count) { return Fill(count, 0); }
  VblkData& Fill(std::size_t count, u8 value);
  VblkData& Chars(std::string_view text);  // without a length byte
  VblkData& Raw(Bytes bytes);              // without a length byte

  // Fields behind a length byte.
  VblkData& Text(std::string_view text);
  VblkData& Id(std::initializer_list<int> bytes);
  VblkData& Number(u64 value, std::size_t width);

  Bytes View() const { return bytes_; }

 private:
  std::vector<u8> bytes_;
};

struct VblkRecord {
  u32 sequence = 1;
  u32 group = 1;
  u16 number = 0;  // from 0, of the slots that the record takes
  u16 count = 1;
  u16 updateStatus = 0;
  u8 flags = 0;
  u8 type = 0;
  std::optional<u32> dataLength = {};  // the data's own if not given
  VblkData data = {};
};

// Writes a record into slot 0 to 3 of the sector, and the signatures of all four slots. Data beyond the slot
// runs on into the next ones, below their signatures; what goes beyond the 512 bytes is left out.
Sector& PutVblk(Disk& disk, u64 sector, std::size_t slot, const VblkRecord& record);

// A record cut into pieces, one for each of these slots, counted from the first record's sector on; all have
// the sequence number of the first slot as their group.
void PutVblkFragments(Disk& disk, u64 sector, const std::vector<u64>& slots, const VblkRecord& record);

// Where a small but complete configuration area goes. All sectors are absolute.
struct LdmDatabase {
  u64 privhead = 6;       // 6 on an MBR disk, the last sector of the LDM metadata partition on a GPT disk
  u64 configStart = 64;   // kLdmConfigSize sectors
  u64 logicalStart = 63;  // what the volumes may use
  u64 logicalSize = 0;    // sectors
  u16 minorVersion = 12;  // 12: two copies of the table of contents, else four
};
inline constexpr u64 kLdmConfigSize = 64;

// Writes PRIVHEAD and its alternates, the table of contents, VMDB, VBLK records and KLOG: a simple and a
// striped volume, and disks and their group in both forms that records of them have.
void PutLdmDatabase(Disk& disk, const LdmDatabase& place);

}  // namespace trovisk::test

#endif
