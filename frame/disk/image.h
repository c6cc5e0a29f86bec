// An image file in place of a disk: a raw file, the pieces of one, or a container's content.
//
// No caching and no read-ahead is a rule about devices. Of an image, reads that follow one another are served
// from a larger one, which grows with the run of them; a lone read stays a lone read.

#ifndef TROVISK_FRAME_DISK_IMAGE_H
#define TROVISK_FRAME_DISK_IMAGE_H

#include <array>
#include <vector>

#include "frame/error_code.h"

namespace trovisk {

// Where an image's bytes come from.
struct ImageSource {
  void* state = nullptr;
  u64 length = 0;  // bytes
  // Reads at most count bytes at an offset: as many as there are before the end, got of them.
  ErrorCode (*read)(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) = nullptr;
  void (*close)(void* state) = nullptr;
};

class Image {
 public:
  // Takes the source over. sectorSize: bytes, 0 where the image's name does not say it.
  Image(const ImageSource& source, u32 sectorSize);
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image();

  u64 Length() const { return source_.length; }  // bytes

  // Bytes: what the name says; else the first of 512, 1024, 2048 and 4096 at which a GPT header stands in the
  // second sector, 512 where none does.
  u32 SectorSize();

  // A read that is answered from what has been read ahead: all of the bytes, as they are held until the next
  // read, or none where the image would have to be asked.
  Bytes Take(u64 offset, std::size_t count) {
    if (!Holds(offset, count)) return {};
    next_ = offset + count;
    return held_.subspan(static_cast<std::size_t>(offset - start_), count);
  }

  // Reads count bytes at an offset; got is less at the end of the image.
  ErrorCode Read(u64 offset, u8* buffer, std::size_t count, std::size_t& got);

 private:
  // Systems copy to the start of a page, from the start of one, twice as fast as to the bytes behind it.
  struct alignas(4096) Page {
    std::array<u8, 4096> bytes;
  };

  bool Holds(u64 offset, std::size_t count) const {
    return offset >= start_ && count <= held_.size() && offset - start_ <= held_.size() - count;
  }
  bool ReadAhead(u64 offset, std::size_t count);

  ImageSource source_;
  u32 sectorSize_;
  u64 next_ = ~u64{0};     // where the read before this one ended
  std::size_t ahead_ = 0;  // bytes of the next larger read
  Bytes held_;             // what the last larger read has got
  u64 start_ = 0;          // where that begins
  std::vector<Page> room_;
};

}  // namespace trovisk

#endif
