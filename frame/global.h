// Global, the one disk object: the open disk, its sector size, the sector table of contents and the values
// that a decoder of one structure leaves for the decoder of another.

#ifndef TROVISK_FRAME_GLOBAL_H
#define TROVISK_FRAME_GLOBAL_H

#include <vector>

#include "frame/device.h"
#include "frame/toc.h"

namespace trovisk {

// The ReFS volume whose boot record was decoded last; both zero before the first.
struct ReFsVolumeContext {
  u64 volumeSector = 0;       // absolute sector of the volume's boot record
  u32 sectorsPerCluster = 0;  // as that boot record states it
};

class Global {
 public:
  u32 bytesPerSector = 0;  // logical sector size; every sector number times this is a byte offset
  SectorToc toc;
  ReFsVolumeContext refsVolume;

  Global() = default;
  Global(const Global&) = delete;
  Global& operator=(const Global&) = delete;
  ~Global() { Close(); }

  // The five operations on the disk. Those that can fail write one line to standard error when they do.

  // Opens the disk and learns its sector size. path is the text shown, argument the disk argument in it.
  bool Open(WideText path, const char* argument);

  // The last sector of the disk, or all ones when its length cannot be learnt.
  u64 GetLastSector();

  // Moves to a byte offset from the start of the disk.
  bool Seek(u64 offset);

  // Reads count bytes into buffer. Below the sector size one whole sector is read and its first count bytes
  // kept, so the position moves on by whole sectors.
  bool Read(u8* buffer, u64 count);

  // Closes the disk; harmless when it is closed.
  bool Close();

 private:
  bool ReadExactly(u8* buffer, u64 count);

  Device device_;
  std::vector<u8> sector_;  // of reads below the sector size
};

extern Global disk;

}  // namespace trovisk

#endif
