// A disk that a test or the sample maker builds field by field: a sparse set of sectors, written as an image.

#ifndef TROVISK_TESTS_DISKS_DISK_H
#define TROVISK_TESTS_DISKS_DISK_H

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"
#include "frame/guid.h"

namespace trovisk::test {

// The bytes of one sector, all zero at first. Offsets are bytes from the sector's start; writing outside the
// sector is a mistake of the test and ends it.
class Sector {
 public:
  explicit Sector(std::size_t size) : bytes_(size) {}

  Sector& U8(std::size_t offset, u64 value) { return LittleEndian(offset, value, 1); }
  Sector& Le16(std::size_t offset, u64 value) { return LittleEndian(offset, value, 2); }
  Sector& Le32(std::size_t offset, u64 value) { return LittleEndian(offset, value, 4); }
  Sector& Le64(std::size_t offset, u64 value) { return LittleEndian(offset, value, 8); }
  Sector& Be16(std::size_t offset, u64 value) { return BigEndian(offset, value, 2); }
  Sector& Be32(std::size_t offset, u64 value) { return BigEndian(offset, value, 4); }
  Sector& Be64(std::size_t offset, u64 value) { return BigEndian(offset, value, 8); }
  Sector& Bytes(std::size_t offset, std::initializer_list<int> bytes);
  Sector& Bytes(std::size_t offset, trovisk::Bytes bytes);
  Sector& Fill(std::size_t offset, std::size_t count, u8 value);
  Sector& Text(std::size_t offset, std::string_view text);      // one byte per character, no NUL added
  Sector& Utf16(std::size_t offset, std::u16string_view text);  // little-endian code units, no NUL added
  Sector& GuidAt(std::size_t offset, const trovisk::Guid& guid);

  trovisk::Bytes View() const { return bytes_; }

 private:
  Sector& LittleEndian(std::size_t offset, u64 value, std::size_t width);
  Sector& BigEndian(std::size_t offset, u64 value, std::size_t width);

  std::vector<u8> bytes_;
};

// The text as often as it has characters, another one of them wrong each time.
std::vector<std::string> WithOneWrongCharacter(const std::string& text);

class Disk {
 public:
  // sectors: the disk's length; sectorSize: bytes per sector.
  explicit Disk(u64 sectors = 4096, u32 sectorSize = 512) : sectors_(sectors), sectorSize_(sectorSize) {}

  // The sector of that number, to be written to; zeros at first.
  Sector& At(u64 sector);

  u64 Sectors() const { return sectors_; }
  u32 SectorSize() const { return sectorSize_; }
  void Resize(u64 sectors) { sectors_ = sectors; }

  // The sectors that were touched, in ascending order.
  const std::map<u64, Sector>& Touched() const { return touched_; }

  // Writes the disk as a sparse image file. Sectors beyond the disk's length are left out.
  void Write(const std::string& path) const;

 private:
  u64 sectors_;
  u32 sectorSize_;
  std::map<u64, Sector> touched_;
};

}  // namespace trovisk::test

#endif
