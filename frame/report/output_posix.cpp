// Where printed text goes on Linux: the standard descriptors.

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "frame/report/output.h"

namespace trovisk {
namespace {

int Descriptor(Output output) {
  return output == Output::kReport ? STDOUT_FILENO : STDERR_FILENO;
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

// A reader that closes the pipe, or a limit on the file's size, shows in the write then, whatever the parent
// process has set.
void PrepareOutput() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace trovisk
