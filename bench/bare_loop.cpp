// The bounds for reading and printing: the same reads and writes as a run of the program and no work between.
//
//   bare_loop dump DISK TEXT           an image: reads of 256 KiB, TEXT bytes for every sector, writes of 64
//   KiB bare_loop twice DISK FIRST COUNT   reads COUNT sectors from FIRST on, twice, and prints nothing

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr off_t kSectorSize = 512;

// Systems copy faster to the start of one.
struct alignas(4096) Page {
  std::array<char, 4096> bytes;
};

bool ReadSector(int disk, off_t sector) {
  alignas(64) std::array<char, kSectorSize> bytes;  // as the program's is
  return pread(disk, bytes.data(), bytes.size(), sector * kSectorSize) == kSectorSize;
}

// The text is put together as a run has to do it, a sector's at a time.
int Dump(int disk, std::size_t textSize) {
  constexpr std::size_t kRead = std::size_t{256} * 1024;
  constexpr std::size_t kWrite = std::size_t{64} * 1024;
  const std::vector<char> text(textSize, '.');
  std::vector<Page> pages(kRead / sizeof(Page));
  std::vector<char> out(kWrite + textSize);
  std::size_t used = 0;
  for (off_t offset = 0;; offset += kRead) {
    const ssize_t got = pread(disk, pages.data(), kRead, offset);
    if (got <= 0) break;
    for (ssize_t sector = 0; sector < got / kSectorSize; ++sector) {
      std::memcpy(out.data() + used, text.data(), textSize);
      used += textSize;
      if (used < kWrite) continue;
      if (write(STDOUT_FILENO, out.data(), kWrite) != static_cast<ssize_t>(kWrite)) return 1;
      used -= kWrite;
      std::memmove(out.data(), out.data() + kWrite, used);
    }
  }
  return write(STDOUT_FILENO, out.data(), used) == static_cast<ssize_t>(used) ? 0 : 1;
}

int ReadTwice(int disk, off_t first, off_t count) {
  for (int pass = 0; pass < 2; ++pass) {
    for (off_t sector = first; sector < first + count; ++sector) {
      if (!ReadSector(disk, sector)) return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int disk = argc > 2 ? open(argv[2], O_RDONLY | O_CLOEXEC) : -1;
  if (disk >= 0 && argc == 4 && std::strcmp(argv[1], "dump") == 0) {
    return Dump(disk, std::strtoull(argv[3], nullptr, 10));
  }
  if (disk >= 0 && argc == 5 && std::strcmp(argv[1], "twice") == 0) {
    return ReadTwice(disk, std::atoll(argv[3]), std::atoll(argv[4]));
  }
  std::fputs("usage: bare_loop dump DISK TEXT | twice DISK FIRST COUNT\n", stderr);
  return 2;
}
