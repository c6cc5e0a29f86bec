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

// Runs the shipped program under strace. Fails the test where strace is missing or may not trace.
// inject: calls that fail, as strace's option of that name takes them, e.g. "pread64:error=EIO:when=3".
Trace TraceProgram(const std::vector<std::string>& arguments, const std::string& inject = "");

// The same for a shell's command, whose "$0" and "$@" are the program and its arguments. The shell's calls
// are in the list too, in front of the program's where it executes it.
Trace TraceShell(const std::string& command, const std::vector<std::string>& arguments);

}  // namespace trovisk::test

#endif
