// The system calls of a run of the program, as strace lists them.

#ifndef TROVISK_TESTS_SUPPORT_STRACE_H
#define TROVISK_TESTS_SUPPORT_STRACE_H

#include <string>
#include <vector>

#include "tests/support/program.h"

namespace trovisk::test {

struct Trace {
  Outcome outcome;
  std::vector<std::string> calls;  // one line each, arguments and result as strace writes them

  // The calls whose line begins so.
  std::vector<std::string> Of(const std::string& start) const;

  // The names of all calls but those that only manage memory: how often a sanitizer's allocator makes these
  // depends on the addresses that the kernel happens to give.
  std::vector<std::string> Names() const;
};

// Runs the command, a program and its arguments, under strace. Fails the test where strace is missing or may
// not trace. inject: calls that fail, as strace's option of that name takes them, e.g.
// "pread64:error=EIO:when=3".
Trace TraceCommand(const std::vector<std::string>& command, const std::string& inject = "");

// The same for the shipped trovisk.
Trace TraceProgram(const std::vector<std::string>& arguments, const std::string& inject = "");

// And for a shell's command, whose "$0" and "$@" are the program and its arguments. The shell's calls
// are in the list too, in front of the program's where it executes it.
Trace TraceShell(const std::string& command, const std::vector<std::string>& arguments);

// The calls that open a path that begins so.
std::vector<std::string> OpensOf(const Trace& trace, const std::string& path);

// The calls that open anything to be written, or write, make, rename or remove something but by write(2).
std::vector<std::string> Changes(const Trace& trace);

}  // namespace trovisk::test

#endif
