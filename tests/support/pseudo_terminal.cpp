#include "tests/support/pseudo_terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "tests/support/child.h"

namespace trovisk::test {
namespace {

struct Ends {
  int program = -1;
  int test = -1;
};

Ends OpenTerminal(unsigned short columns) {
  Ends ends;
  ends.test = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_TRUE(ends.test >= 0 && grantpt(ends.test) == 0 && unlockpt(ends.test) == 0);
  ends.program = open(ptsname(ends.test), O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_GE(ends.program, 0);
  termios mode{};
  tcgetattr(ends.program, &mode);
  mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // what is written is what is read
  tcsetattr(ends.program, TCSANOW, &mode);
  winsize size{};
  size.ws_col = columns;
  ioctl(ends.program, TIOCSWINSZ, &size);
  return ends;
}

int StatusOf(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

// A shell in the foreground does no more than wait for its job, as a process group, in the background.
[[noreturn]] void RunInBackground(int terminal, const std::vector<std::string>& words) {
  setsid();
  ioctl(terminal, TIOCSCTTY, 0);
  tcsetpgrp(terminal, getpgrp());
  const pid_t job = fork();
  if (job == 0) {
    setpgid(0, 0);
    Execute(words);
    _exit(127);
  }
  _exit(StatusOf(job));
}

}  // namespace

TerminalSession RunOnTerminal(const std::vector<std::string>& words, OutputTo to, unsigned short columns,
                              bool background) {
  const std::string path = ScratchPath("terminal.out");
  const Ends ends = OpenTerminal(columns);
  const pid_t child = fork();
  if (child == 0) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    dup2(to == OutputTo::kFile ? file : ends.program, STDOUT_FILENO);
    dup2(ends.program, STDERR_FILENO);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // leaks cannot be looked for under a tracer
    if (background) RunInBackground(ends.program, words);
    Execute(words);
    _exit(127);
  }
  close(ends.program);
  TerminalSession session;
  std::string bytes(4096, '\0');
  for (;;) {  // until nobody has the other end open, which is an error
    const ssize_t got = read(ends.test, bytes.data(), bytes.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    session.terminal.append(bytes, 0, static_cast<std::size_t>(got));
  }
  close(ends.test);
  session.status = StatusOf(child);
  if (to == OutputTo::kFile) session.out = ReadFile(path);
  return session;
}

std::string ScreenOf(const std::string& bytes) {
  constexpr std::string_view kErase = "\x1b[K";
  std::string screen;
  std::string line;
  std::size_t column = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '\r') {
      column = 0;
    } else if (bytes[at] == '\n') {
      screen += line + '\n';
      line.clear();
      column = 0;
    } else if (bytes.compare(at, kErase.size(), kErase) == 0) {
      line.resize(column);
      at += kErase.size() - 1;
    } else {
      line.resize(std::max(line.size(), column + 1), ' ');
      line[column++] = bytes[at];
    }
  }
  return screen + line;
}

std::vector<std::string> RewrittenLines(const std::string& bytes) {
  std::vector<std::string> lines;
  for (std::size_t at = bytes.find('\r'); at != std::string::npos; at = bytes.find('\r', at + 1)) {
    std::string line = bytes.substr(at + 1, bytes.find('\x1b', at) - at - 1);
    if (!line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace trovisk::test
