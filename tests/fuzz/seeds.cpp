#include "tests/fuzz/seeds.h"

#include <cerrno>

namespace trovisk::test {
namespace {

const Seed& Named(const std::vector<Seed>& seeds, const std::string& name) {
  for (const Seed& seed : seeds) {
    if (seed.name == name) return seed;
  }
  std::abort();
}

// The same disks in the other run modes.
void AddModes(std::vector<Seed>& seeds) {
  for (const char* name : {"gpt-all", "mbr-extended", "ldm-mbr", "ntfs-neither", "fat16-win41"}) {
    const MemoryDisk memory = Named(seeds, name).memory;
    const std::string stem = std::string(name) + "-mode";
    for (const Mode mode : {Mode::kSingleSector, Mode::kRange, Mode::kSingleWithNegativeLast}) {
      const Command command{.mode = mode, .first = mode == Mode::kSingleSector ? 1U : 0U, .last = 80};
      seeds.push_back({stem + std::to_string(static_cast<int>(mode)), memory, command});
    }
    MemoryDisk terminal = memory;
    terminal.terminal = true;
    seeds.push_back({stem + "-terminal", terminal});
  }
  const MemoryDisk beyond = Named(seeds, "gpt-all").memory;
  seeds.push_back({"gpt-all-beyond", beyond, {.mode = Mode::kSingleSector, .first = beyond.disk.Sectors()}});
}

// Every kind of fault, at every early call. On the Storage Spaces disk the last structure is the 40th.
void AddFaults(std::vector<Seed>& seeds) {
  struct Early {
    const char* name;
    u64 calls;
  };
  for (const Early& early :
       {Early{"gpt-all", 12}, Early{"mbr-extended", 24}, Early{"ldm-mbr", 24}, Early{"spaces", 44}}) {
    const MemoryDisk whole = Named(seeds, early.name).memory;
    const auto add = [&](const std::string& kind, Fault fault) {
      MemoryDisk memory = whole;
      memory.faults = {fault};
      seeds.push_back({std::string(early.name) + "-" + kind + std::to_string(fault.nth), memory});
    };
    for (u64 nth = 1; nth <= early.calls; ++nth) {
      add("read", {.call = Call::kRead, .nth = nth, .error = EIO});
      add("short", {.call = Call::kRead, .nth = nth, .calls = 3, .amount = 100});
      add("seek", {.call = Call::kSeek, .nth = nth, .error = EINVAL});
    }
    add("astray", {.call = Call::kSeek, .nth = 9, .amount = 512});
    add("length", {.call = Call::kLength, .error = EIO});
    add("open", {.call = Call::kOpen, .error = ENOENT});
    add("geometry", {.call = Call::kSectorSize, .error = ENOTTY});
  }
}

}  // namespace

void AddSeed(std::vector<Seed>& seeds, const std::string& name, Disk disk) {
  seeds.push_back({name, {std::move(disk)}});
}

std::vector<Seed> Seeds() {
  std::vector<Seed> seeds;
  AddMbrSeeds(seeds);
  AddFatSeeds(seeds);
  AddVolumeSeeds(seeds);
  AddReFsSeeds(seeds);
  AddGptSeeds(seeds);
  AddLdmSeeds(seeds);
  AddSpacesSeeds(seeds);
  AddModes(seeds);
  AddFaults(seeds);
  return seeds;
}

}  // namespace trovisk::test
