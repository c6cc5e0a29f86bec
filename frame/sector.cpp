#include "frame/sector.h"

#include <memory>
#include <string>
#include <vector>

#include "frame/global.h"
#include "frame/report/listing.h"
#include "frame/report/report.h"
#include "frame/report/verbs.h"

namespace trovisk {
namespace {

// Room for a sector, one for all of them. It begins with a cache line: systems copy there faster.
std::span<u8> SectorBuffer() {
  constexpr std::size_t kLine = 64;
  static std::vector<u8> room;
  room.resize(disk.bytesPerSector + kLine);
  void* start = room.data();
  std::size_t space = room.size();
  std::align(kLine, disk.bytesPerSector, start, space);
  return {static_cast<u8*>(start), disk.bytesPerSector};
}

// The sector at the disk's position, where it stands if that is in memory; none after a failure.
std::optional<Bytes> ReadSector() {
  if (const Bytes taken = disk.Take(disk.bytesPerSector); !taken.empty()) return taken;
  const std::span<u8> bytes = SectorBuffer();
  if (!ReadRecord(bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

bool SeekToSector(u64 sector) {
  return disk.Seek(sector * disk.bytesPerSector);
}

bool ReadRecord(std::span<u8> record) {
  if (disk.Read(record.data(), record.size())) return true;
  errors << "Error reading sector\n";
  return false;
}

void PrintOpening(WideText description, u64 sector, bool print, Below below) {
  if (!print) return;
  PrintSectorHeader(description, sector);
  if (below == Below::kEmptyLine) report << LineEnd;
}

bool CheckSignature(Bytes stored, std::string_view signature, std::string_view name) {
  if (EqualsText(stored, signature)) return true;
  std::string line = "**** No ";
  line += name;
  line += " magic found ****\n";
  errors << line;
  return false;
}

u64 DumpAsRawSector(u64 sector, bool print) {
  return SeekToSector(sector) ? DumpRawSector(kAsRawSector, sector, print) : kEndPass;
}

u64 DumpAsRawSectorAndGoOn(u64 sector, bool print) {
  if (!SeekToSector(sector)) return kEndPass;
  DumpRawSector(kAsRawSector, sector, print);
  return sector + 1;
}

u64 DumpRawSector(WideText description, u64 sector, bool print) {
  if (!print) return sector + 1;
  PrintSectorHeader(description, sector);
  const auto bytes = ReadSector();
  if (!bytes) return kEndPass;
  if (AllZero(*bytes)) {
    report << "... empty ..." << LineEnd;
  } else {
    PrintListing(*bytes);
  }
  return sector + 1;
}

u64 DumpLabelledRawSector(WideText description, u64 sector, bool print) {
  PrintOpening(description, sector, print);
  return DumpRawSector(kAsRawSector, sector, print);
}

u64 DumpSector512(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  if (print) PrintListing(*record);
  return sector + 1;
}

}  // namespace trovisk
