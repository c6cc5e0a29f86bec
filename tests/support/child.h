// Runs something in a child process and collects what it writes.

#ifndef TROVISK_TESTS_SUPPORT_CHILD_H
#define TROVISK_TESTS_SUPPORT_CHILD_H

#include <functional>
#include <string>
#include <vector>

namespace trovisk::test {

struct Outcome {
  std::string out;  // standard output, standard error: line ends as '\n'
  std::string err;
  int status = -1;   // the exit status; 256 + the signal's number when one ended the process
  long peakKiB = 0;  // the most memory that the process held at a time
};

// Runs body in a child process whose standard output and standard error are files of its own; the process
// ends with status 127 where body returns.
Outcome RunChild(const std::function<void()>& body);

// Replaces this process with a program, looked for on the PATH when it is a mere name, and its arguments.
// Returns where that fails.
void Execute(const std::vector<std::string>& words);

// The build date in a banner replaced by "<date>".
std::string WithoutDate(const std::string& report);

// Where a test may put files; removed when the test program ends.
std::string ScratchPath(const std::string& name);

std::string ReadFile(const std::string& path);

}  // namespace trovisk::test

#endif
