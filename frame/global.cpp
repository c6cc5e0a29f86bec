#include "frame/global.h"

#include <cstring>

#include "frame/interruption.h"
#include "frame/report/field_notes.h"
#include "frame/report/report.h"

namespace trovisk {

Global disk;

namespace {

// The system's number of an error, as the messages show it.
u32 NumberOf(ErrorCode error) {
  return static_cast<u32>(error);
}

}  // namespace

void Global::Reset() {
  Close();
  bytesPerSector = 0;
  openError = 0;
  length.reset();
  bytesRead = 0;
  failedReads = 0;
  toc.Clear();
}

// A read that fails may have taken its time.
void Global::NoteFailedRead() {
  ++failedReads;
  attention = true;
}

// Before the disk is touched the report is handed over: nothing that was printed waits for a disk that hangs.
bool Global::Open(WideText path, const char* argument) {
  report.Flush();
  openError = OpenDevice(device_, path, argument);
  if (openError != 0) {
    EndIfInterrupted();
    if (!device_.refusal.empty()) {
      errors << "Global::Open: " << path << " " << device_.refusal << '\n';
      openError = 0;  // the line has said it all
      return false;
    }
    errors << "Global::Open: couldn't open " << path << " for reading, error " << NumberOf(openError) << '\n';
    return false;
  }
  openError = QuerySectorSize(device_, bytesPerSector);
  if (openError != 0) {
    errors << "Global::Open: couldn't get disk geometry " << path
           << " IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error " << NumberOf(openError) << '\n';
    return false;
  }
  return true;
}

u64 Global::GetLastSector() {
  u64 bytes = 0;
  if (const ErrorCode error = QueryLength(device_, bytes); error != 0) {
    errors << "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )" << NumberOf(error) << '\n';
    return ~u64{0};
  }
  length = bytes;
  if (bytesPerSector == 0) return ~u64{0};
  return bytes / bytesPerSector - 1;
}

bool Global::Seek(u64 offset) {
  const auto sector = [&] { return bytesPerSector == 0 ? 0 : offset / bytesPerSector; };
  u64 landed = 0;
  if (const ErrorCode error = SeekDevice(device_, offset, landed); error != 0) {
    errors << "Global::Seek failed to seek to sector " << sector() << ", error " << NumberOf(error) << '\n';
    return false;
  }
  if (landed != offset) {
    errors << "Global::Seek failed to seek to sector " << sector() << '\n';
    return false;
  }
  return true;
}

Bytes Global::Take(u64 count) {
  const Bytes taken = TakeReadAhead(device_, static_cast<u32>(count));
  bytesRead += taken.size();
  return taken;
}

bool Global::ReadExactly(u8* buffer, u64 count) {
  if (const Bytes taken = Take(count); !taken.empty()) {
    std::memcpy(buffer, taken.data(), taken.size());
    return true;
  }
  u32 got = 0;
  const u32 wanted = static_cast<u32>(count);
  report.Flush();
  if (const ErrorCode error = ReadDevice(device_, buffer, wanted, got); error != 0) {
    EndIfInterrupted();  // which may have cut the read short
    NoteFailedRead();
    errors << "Global::Read failed, error " << NumberOf(error) << '\n';
    return false;
  }
  bytesRead += got;
  if (got != wanted) {
    NoteFailedRead();
    errors << "Global::Read short read, needed " << count << ", got " << got << '\n';
    return false;
  }
  return true;
}

bool Global::Read(u8* buffer, u64 count) {
  if (fieldNotes != nullptr) fieldNotes->NoteRecord({buffer, static_cast<std::size_t>(count)});
  if (count >= bytesPerSector) return ReadExactly(buffer, count);
  sector_.resize(bytesPerSector);
  if (!ReadExactly(sector_.data(), sector_.size())) return false;
  if (count > 0) std::memcpy(buffer, sector_.data(), static_cast<std::size_t>(count));
  return true;
}

bool Global::Close() {
  return !IsOpen(device_) || CloseDevice(device_) == 0;
}

bool AddTocEntry(Global& global, u64 sector, SectorDecoder decoder, WideText description) {
  global.toc.Add(sector, sector, decoder, description);
  return true;
}

bool AddTocRun(Global& global, u64 first, u64 end, SectorDecoder decoder, WideText description) {
  if (first < end) global.toc.Add(first, end - 1, decoder, description);
  return true;
}

}  // namespace trovisk
