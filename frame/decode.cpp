#include "frame/decode.h"

#include <ostream>

#include "frame/dump.h"
#include "frame/global.h"
#include "frame/report.h"

namespace trovisk {

bool ReadRecord(std::span<u8> record) {
  if (disk.Read(record.data(), record.size())) return true;
  ErrorLine() << "Error reading sector\n";
  return false;
}

bool SeekToSector(u64 sector) {
  return disk.Seek(sector * disk.bytesPerSector);
}

u64 DumpAsRawSector(u64 sector, bool print) {
  return SeekToSector(sector) ? DumpRawSector(L"as a raw sector", sector, print) : kEndPass;
}

}  // namespace trovisk
