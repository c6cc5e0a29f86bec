// The operating system's side of a disk, which is only ever read. One file per system implements it, and
// knows that system.
//
// Every function gives 0 for success or the system's error code.

#ifndef TROVISK_FRAME_DISK_DEVICE_H
#define TROVISK_FRAME_DISK_DEVICE_H

#include <cstddef>
#include <memory>
#include <string>

#include "frame/bytes.h"
#include "frame/disk/image.h"
#include "frame/error_code.h"

namespace trovisk {

// One open disk. The members belong to the system's file.
struct Device {
  std::intptr_t handle = -1;     // the invalid handle, all ones, when no disk is open
  int direct = -1;               // where a second, unbuffered descriptor is kept
  u64 position = 0;              // bytes, where the program keeps the position itself
  u32 sectorSize = 0;            // bytes, where the disk's name says it
  std::unique_ptr<Image> image;  // set where an image file stands for a disk, which has no handle then
  std::string refusal;  // why OpenDevice has failed, where the error code does not say it: words that go on
                        // behind the disk's path
};

// Opens a disk for reading while others may keep reading and writing it. path: the whole path text as shown;
// argument: the command line's disk argument that it was made from, byte for byte.
ErrorCode OpenDevice(Device& device, WideText path, const char* argument);

bool IsOpen(const Device& device);

// The logical sector size in bytes.
ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector);

// The disk's length in bytes.
ErrorCode QueryLength(const Device& device, u64& bytes);

// Moves the position to a byte offset from the start of the disk; landed receives the new position. What
// lies beyond the end of the disk shows in the read, not here.
ErrorCode SeekDevice(Device& device, u64 offset, u64& landed);

// A read at the position that is answered from what an image has read ahead, without asking and without a
// copy: all of the bytes, which are there until the next read, or none, and then the position stays.
Bytes TakeReadAhead(Device& device, u32 count);

// Reads count bytes at the position and moves it by got, the bytes that were really read. The buffer of a raw
// disk begins at a multiple of kBufferAlignment.
ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got);

// Closes the disk; the device is closed afterwards whatever the result.
ErrorCode CloseDevice(Device& device);

}  // namespace trovisk

#endif
