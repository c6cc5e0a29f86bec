#include "frame/disk/image.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace trovisk {
namespace {

constexpr std::size_t kFirstReadAhead = std::size_t{4} * 1024;
constexpr std::size_t kMostReadAhead = std::size_t{256} * 1024;

}  // namespace

Image::Image(const ImageSource& source, u32 sectorSize) : source_(source), sectorSize_(sectorSize) {}

Image::~Image() {
  source_.close(source_.state);
}

u32 Image::SectorSize() {
  if (sectorSize_ != 0) return sectorSize_;
  for (const u32 size : {512U, 1024U, 2048U, 4096U}) {
    std::array<u8, 8> bytes;
    std::size_t got = 0;
    if (source_.read(source_.state, size, bytes.data(), bytes.size(), got) == 0 && got == bytes.size() &&
        EqualsText(bytes, "EFI PART")) {
      return sectorSize_ = size;
    }
  }
  return sectorSize_ = 512;
}

// Fills the room from the offset on. False where not even so many bytes were got: then nothing is held.
bool Image::ReadAhead(u64 offset, std::size_t count) {
  ahead_ = std::clamp(ahead_ * 2, kFirstReadAhead, kMostReadAhead);
  if (count > ahead_ / 2) return false;
  room_.resize(ahead_ / sizeof(Page));
  u8* const room = room_.data()->bytes.data();
  // Up to the end of a page, so that the next one begins with one.
  const std::size_t behind = offset % sizeof(Page);
  const std::size_t wanted = ahead_ - (behind + count <= ahead_ ? behind : 0);
  std::size_t got = 0;
  if (source_.read(source_.state, offset, room, wanted, got) != 0) got = 0;
  held_ = {room, got};
  start_ = offset;
  if (got < count) ahead_ = 0;  // the next run of reads begins small again
  return got >= count;
}

ErrorCode Image::Read(u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  const bool follows = offset == next_;
  next_ = offset + count;
  if (!Holds(offset, count)) {
    if (!follows) ahead_ = 0;
    if (!follows || !ReadAhead(offset, count)) {
      held_ = {};
      return source_.read(source_.state, offset, buffer, count, got);
    }
  }
  std::memcpy(buffer, Take(offset, count).data(), count);
  got = count;
  return 0;
}

}  // namespace trovisk
