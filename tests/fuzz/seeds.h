// The fuzzer's first inputs: small disks that together reach every line of every decoder, each in a run over
// the whole disk; and runs of other modes and with faults on some of them.

#ifndef TROVISK_TESTS_FUZZ_SEEDS_H
#define TROVISK_TESTS_FUZZ_SEEDS_H

#include <string>
#include <vector>

#include "tests/fuzz/input.h"

namespace trovisk::test {

struct Seed {
  std::string name;  // good for a file name
  MemoryDisk memory;
  Command command = {};

  std::vector<u8> Bytes() const { return WriteInput(memory, command); }
};

// All of them.
std::vector<Seed> Seeds();

// The disks by subsystem; each call appends. Whole-disk runs, no faults.
void AddMbrSeeds(std::vector<Seed>& seeds);
void AddFatSeeds(std::vector<Seed>& seeds);
void AddVolumeSeeds(std::vector<Seed>& seeds);
void AddReFsSeeds(std::vector<Seed>& seeds);
void AddGptSeeds(std::vector<Seed>& seeds);
void AddLdmSeeds(std::vector<Seed>& seeds);
void AddSpacesSeeds(std::vector<Seed>& seeds);

void AddSeed(std::vector<Seed>& seeds, const std::string& name, Disk disk);

}  // namespace trovisk::test

#endif
