// Runs the real program, as a process of its own, on disks that the test has built.

#ifndef TROVISK_TESTS_SUPPORT_PROGRAM_H
#define TROVISK_TESTS_SUPPORT_PROGRAM_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/disks/disk.h"
#include "tests/support/child.h"

namespace trovisk::test {

// Which build: the shipped one, which knows the vendors' boot code, or the same program with a catalogue of
// the tests' own invented boot code.
enum class Build { kShipped, kInventedCode };

// The executable of that build: the one for Windows where the tests run under Wine (tests/support/wine.h).
std::string ProgramPath(Build build);
// The one for this system wherever the tests run.
std::string NativeProgramPath(Build build);

// Runs the program with these arguments. environment: NAME=VALUE pairs added to the environment; TZ is UTC
// unless they say otherwise.
Outcome RunProgram(Build build, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});

// Runs any executable in the same way.
Outcome RunCommand(const std::string& program, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment);

// Writes the disk as an image and runs the program on it; arguments: first and last sector, as needed. In
// both texts the build date reads "<date>" and the disk argument "<disk>".
Outcome RunOn(const Disk& disk, const std::vector<std::string>& arguments = {},
              Build build = Build::kInventedCode);

// What is said of a read of that many bytes from behind the end of a disk, or across it, where got of them
// are on the disk: an image file gives these, a raw disk of Windows refuses.
std::string ReadBehindTheEnd(u64 needed, u64 got = 0);

void ReplaceAll(std::string& text, const std::string& what, const std::string& with);

}  // namespace trovisk::test

#endif
