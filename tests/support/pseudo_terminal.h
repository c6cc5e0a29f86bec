// A program whose standard error is a terminal: a pseudo-terminal of the test's own.

#ifndef TROVISK_TESTS_SUPPORT_PSEUDO_TERMINAL_H
#define TROVISK_TESTS_SUPPORT_PSEUDO_TERMINAL_H

#include <string>
#include <vector>

namespace trovisk::test {

// Where a program's standard output goes.
enum class OutputTo { kFile, kTerminal };

struct TerminalSession {
  std::string out;       // standard output, where that is a file
  std::string terminal;  // the bytes that reached the terminal; a line ends as '\n'
  int status = -1;       // as Outcome's
};

// Runs a program, looked for on the PATH, with standard error on a terminal of so many columns. background:
// the terminal is its controlling one, and another job is in its foreground.
TerminalSession RunOnTerminal(const std::vector<std::string>& words, OutputTo to = OutputTo::kFile,
                              unsigned short columns = 132, bool background = false);

// The lines that those bytes leave on the screen: "\r" and the erasing of a line's end are followed.
std::string ScreenOf(const std::string& bytes);

// The texts that the bytes show one after the other on a line that rewrites itself.
std::vector<std::string> RewrittenLines(const std::string& bytes);

}  // namespace trovisk::test

#endif
