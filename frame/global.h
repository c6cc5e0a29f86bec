// Global, the one disk object: the open disk, its sector size and the sector table of contents.

#ifndef TROVISK_FRAME_GLOBAL_H
#define TROVISK_FRAME_GLOBAL_H

#include <optional>
#include <vector>

#include "frame/disk/device.h"
#include "frame/toc.h"

namespace trovisk {

class Global {
 public:
  u32 bytesPerSector = 0;     // logical sector size; every sector number times this is a byte offset
  std::optional<u64> length;  // bytes, once GetLastSector has learnt it
  SectorToc toc;
  ErrorCode openError = 0;  // why Open failed, the last time; 0 where it did not
  u64 bytesRead = 0;        // of this run
  u64 failedReads = 0;

  Global() = default;
  Global(const Global&) = delete;
  Global& operator=(const Global&) = delete;
  ~Global() { Close(); }

  // How a run finds it: closed, never opened, without a sector size, nothing registered.
  void Reset();

  // The operations on the disk. Those that can fail print one error line when they do.

  // Opens the disk and learns its sector size. path is the text shown, argument the disk argument in it.
  bool Open(WideText path, const char* argument);

  // The last sector of the disk, or all ones when its length cannot be learnt.
  u64 GetLastSector();

  // Moves to a byte offset from the start of the disk.
  bool Seek(u64 offset);

  // Reads count bytes into buffer. Below the sector size one whole sector is read and its first count bytes
  // kept, so the position moves on by whole sectors.
  bool Read(u8* buffer, u64 count);

  // A read that costs neither a question to the system nor a copy: all of the bytes, which are there until
  // the next read, or none, where Read has to ask.
  Bytes Take(u64 count);

  // Closes the disk; harmless when it is closed.
  bool Close();

 private:
  bool ReadExactly(u8* buffer, u64 count);
  void NoteFailedRead();

  Device device_;
  std::vector<u8> sector_;  // of reads below the sector size
};

extern Global disk;

// Registers a sector for a decoder; a sector that is registered already keeps its entry. The description is
// copied. True: the table has no limit of its own that could refuse one.
bool AddTocEntry(Global& global, u64 sector, SectorDecoder decoder, WideText description);

// The same for every sector from first up to, not including, end; none when end <= first.
bool AddTocRun(Global& global, u64 first, u64 end, SectorDecoder decoder, WideText description);

}  // namespace trovisk

#endif
