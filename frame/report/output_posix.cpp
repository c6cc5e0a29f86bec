// Where printed text goes on Linux: the standard descriptors.

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "frame/interruption.h"
#include "frame/report/output.h"

namespace trovisk {
namespace {

int Descriptor(Output output) {
  return output == Output::kReport ? STDOUT_FILENO : STDERR_FILENO;
}

// A job in the background leaves the line that somebody is typing in alone.
bool IsInBackground() {
  const pid_t foreground = tcgetpgrp(STDERR_FILENO);
  return foreground >= 0 && foreground != getpgrp();
}

// The default action is back by then, so that the second one, of either kind, ends the process when the
// handler returns.
void NoteInterruption(int signal) {
  if (interruption.exchange(signal) != 0) std::raise(signal);
  attention = true;
}

void NoteRequest(int /*signal*/) {
  progressWanted = true;
  attention = true;
}

// What the parent process has ignored stays so: a job that is to outlive its terminal, or in the background.
void Catch(int signal, void (*handler)(int), int flags) {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

}  // namespace

ErrorCode WriteOutput(Output output, const char* text, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(Descriptor(output), text, count);
    if (written < 0) {
      if (errno == EINTR) continue;
      // Error lines do not wait: who reads the report need not read them.
      if (errno != EAGAIN || output == Output::kErrors) return static_cast<ErrorCode>(errno);
      pollfd slowReader{Descriptor(output), POLLOUT, 0};  // the pipe was handed over as a non-blocking one
      poll(&slowReader, 1, -1);
      continue;
    }
    text += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

bool IsClosedPipe(ErrorCode error) {
  return error == EPIPE;
}

bool IsTerminal(Output output) {
  return isatty(Descriptor(output)) != 0;
}

std::size_t ErrorLineWidth() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsual;
}

// In one write, so that nothing comes in between.
void RewriteErrorLine(std::string_view text) {
  if (IsInBackground()) return;
  std::string line = "\r";
  line += text;
  line += "\x1b[K";  // erases what is left of the line
  WriteOutput(Output::kErrors, line.data(), line.size());
}

// A reader that closes the pipe, or a limit on the file's size, shows in the write then, whatever the parent
// process has set.
void PrepareOutput() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // An interruption cuts short what it meets, a request does not.
  Catch(SIGINT, NoteInterruption, static_cast<int>(SA_RESETHAND));
  Catch(SIGTERM, NoteInterruption, static_cast<int>(SA_RESETHAND));
  Catch(SIGHUP, NoteInterruption, static_cast<int>(SA_RESETHAND));
  Catch(SIGUSR1, NoteRequest, SA_RESTART);
#ifdef SIGINFO
  Catch(SIGINFO, NoteRequest, SA_RESTART);
#endif
}

void EndByInterruption(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  _exit(128 + signal);  // as a shell would tell it
}

}  // namespace trovisk
