// A disk whose sectors are computed as they are read, in place of the operating system's side: chains over
// millions of sectors cost neither room nor time but the program's own. The report is counted and thrown
// away: its last bytes, at the end, are all that is left of it.
//
// The disk argument is KIND:COUNT, COUNT being the sectors of the chain.

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/disk/device.h"
#include "frame/disk/disk_list.h"
#include "frame/report/output.h"
#include "tests/disks/fat.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/disks/spaces.h"

namespace trovisk {
namespace {

using test::Disk;

constexpr u64 kSectorSize = 512;

std::string kind;
u64 count = 0;
u64 sectors = 0;
Disk fixed;  // the sectors that are not computed

void PutReplica() {
  test::PutGpt(fixed, {{.type = test::kStorageReplicaType, .first = 100, .last = 100 + count}});
  test::PutDpom(fixed, 100, {});
}

// A configuration region that never ends, all of whose records are empty.
void PutRecords() {
  test::PutBootRecord(fixed, 0, {.entries = {{.type = 0x42}}});
  test::PutPrivhead(fixed, 6, {.alternate1 = 2, .alternate2 = 2, .configStart = 8, .tocSize = 1});
  test::PutTocBlock(fixed, 9, {.config = {.start = 10, .size = count}, .log = {.start = 4}});
  test::PutTocBlock(fixed, 10, {.config = {.start = 10, .size = count}, .log = {.start = 4}});
  test::PutKlog(fixed, 12, {});
  test::PutVmdb(fixed, 18, {});
}

void PutArray() {
  test::PutProtectiveMbr(fixed);
  test::PutGptHeader(fixed, 1,
                     {.otherLba = 1,
                      .entriesLba = 2,
                      .entryCount = static_cast<u32>(count),
                      .entrySize = 512,
                      .entriesCrc = 0});
}

// A link of the chain that begins in sector 1; a FAT volume behind each where they stand apart.
void ComputeLink(u64 sector, bool apart, u8* bytes) {
  static const Disk volume = [] {
    Disk disk;
    test::PutFatBootSector(disk, 0, {});
    return disk;
  }();
  if (apart && sector % 2 == 0) {
    std::memcpy(bytes, volume.Touched().begin()->second.View().data(), kSectorSize);
    return;
  }
  const auto put = [&](std::size_t entry, u8 type, u8 first) {
    bytes[entry + 4] = type;
    bytes[entry + 8] = first;
  };
  if (apart) put(0x1BE, 0x06, 1);
  const u8 step = apart ? 2 : 1;
  if (sector + step < sectors) put(0x1CE, 0x05, step);
}

void PutChain() {
  test::PutBootRecord(fixed, 0, {.entries = {{.type = 0x05, .first = 1}}});
}

void Build() {
  if (kind == "replica") PutReplica();
  if (kind == "vblk") PutRecords();
  if (kind == "gpt") PutArray();
  if (kind == "links" || kind == "links-apart") PutChain();
}

void Compute(u64 sector, u8* bytes) {
  std::memset(bytes, 0, kSectorSize);
  const auto found = fixed.Touched().find(sector);
  if (found != fixed.Touched().end()) {
    std::memcpy(bytes, found->second.View().data(), kSectorSize);
  } else if (kind == "links" || kind == "links-apart") {
    ComputeLink(sector, kind == "links-apart", bytes);
  }
}

}  // namespace

ErrorCode OpenDevice(Device& device, WideText /*path*/, const char* argument) {
  const std::string text = argument;
  const std::size_t colon = text.find(':');
  kind = text.substr(0, colon);
  count = std::strtoull(text.substr(colon + 1).c_str(), nullptr, 10);
  // A chain of links is as long as its disk; the others run on beyond what is there.
  sectors = kind == "links-apart" ? 2 * count + 1 : count + 1;
  if (kind == "replica") sectors = 1000;
  fixed.Resize(sectors);
  Build();
  device = Device{};
  device.handle = 1;
  return 0;
}

bool IsOpen(const Device& device) {
  return device.handle >= 0;
}

ErrorCode QuerySectorSize(Device& /*device*/, u32& bytesPerSector) {
  bytesPerSector = kSectorSize;
  return 0;
}

ErrorCode QueryLength(const Device& /*device*/, u64& bytes) {
  bytes = sectors * kSectorSize;
  return 0;
}

ErrorCode SeekDevice(Device& device, u64 offset, u64& landed) {
  device.position = landed = offset;
  return 0;
}

Bytes TakeReadAhead(Device& /*device*/, u32 /*count*/) {
  return {};
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 wanted, u32& got) {
  for (got = 0; got < wanted && device.position / kSectorSize < sectors; got += kSectorSize) {
    Compute(device.position / kSectorSize, buffer + got);
    device.position += kSectorSize;
  }
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  device = Device{};
  return 0;
}

std::vector<ListedDisk> ListDisks() {
  return {};
}

ErrorCode WriteOutput(Output output, const char* text, std::size_t size) {
  if (output == Output::kErrors) return write(STDERR_FILENO, text, size) < 0 ? 1 : 0;
  static std::string tail;
  constexpr std::size_t kTail = 200;
  tail.append(text, size);
  if (tail.size() > kTail) tail.erase(0, tail.size() - kTail);
  static const bool atExit = [] {
    std::atexit([] {
      if (write(STDOUT_FILENO, tail.data(), tail.size()) < 0) std::abort();
    });
    return true;
  }();
  return atExit ? 0 : 1;
}

bool IsClosedPipe(ErrorCode /*error*/) {
  return false;
}

bool IsTerminal(Output /*output*/) {
  return false;
}

std::size_t ErrorLineWidth() {
  return 80;
}

void RewriteErrorLine(std::string_view /*text*/) {}

void PrepareOutput() {}

void EndByInterruption(int /*signal*/) {
  std::abort();  // no signal is noted here
}

}  // namespace trovisk
