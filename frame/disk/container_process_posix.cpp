// The two processes talk over a pair of sockets. The reader begins with its answer to the opening, the same
// as the answer to a request but for its bytes: the refusal's words. A request is an offset and a count, an
// answer an error code, a number and as many bytes as it says.

#include "frame/disk/container_process_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>
#include <vector>

#include "frame/disk/container_library_posix.h"
#include "frame/disk/file_posix.h"
#include "frame/interruption.h"

namespace trovisk {
namespace {

struct Request {
  u64 offset;
  u64 count;
};

struct Answer {
  u64 error;
  u64 length;  // of the disk, in the first one
  u64 bytes;   // that follow
};

constexpr std::size_t kMostAsked = std::size_t{1024} * 1024;

// A reader that waits for something else than a slow disk: a container can name a FIFO among its files.
constexpr int kPatience = 60'000;
constexpr int kForEver = -1;

// All of it, or false.
bool Send(int socket, const void* data, std::size_t size) {
  const auto* at = static_cast<const u8*>(data);
  while (size > 0) {
    const ssize_t sent = send(socket, at, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR && !IsInterrupted()) continue;
    if (sent <= 0) return false;
    at += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

// patience: milliseconds without a byte before it is false; negative: no limit.
bool Receive(int socket, void* data, std::size_t size, int patience) {
  auto* at = static_cast<u8*>(data);
  while (size > 0) {
    pollfd waiting{socket, POLLIN, 0};
    const int ready = poll(&waiting, 1, patience);
    if (ready < 0 && errno == EINTR && !IsInterrupted()) continue;
    if (ready <= 0) return false;
    const ssize_t received = recv(socket, at, size, 0);
    if (received < 0 && errno == EINTR && !IsInterrupted()) continue;
    if (received <= 0) return false;
    at += received;
    size -= static_cast<std::size_t>(received);
  }
  return true;
}

// The process that reads.

// What a damaged container can cost: so much memory, and for each request so many seconds of processor time.
constexpr rlim_t kMostMemory = rlim_t{2} * 1024 * 1024 * 1024;
constexpr rlim_t kMostSeconds = 30;

// Not where a sanitizer watches, whose own memory is far beyond any limit.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kLimitsMemory = false;
#elif defined(__has_feature)
constexpr bool kLimitsMemory = !__has_feature(address_sanitizer);
#else
constexpr bool kLimitsMemory = true;
#endif

// Nor does a crash of it leave anything behind; many segments may be open at a time.
void LimitFiles() {
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  rlimit open{};
  getrlimit(RLIMIT_NOFILE, &open);
  open.rlim_cur = open.rlim_max;
  setrlimit(RLIMIT_NOFILE, &open);
}

void LimitMemory() {
  const rlimit limit{kMostMemory, kMostMemory};
  if (kLimitsMemory) setrlimit(RLIMIT_AS, &limit);
}

void LimitTime() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  const auto seconds = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) + kMostSeconds;
  rlimit limit{};
  getrlimit(RLIMIT_CPU, &limit);
  limit.rlim_cur = std::min(seconds, limit.rlim_max);
  setrlimit(RLIMIT_CPU, &limit);
}

// Until the other side has closed its socket.
void Serve(int socket, const Container& container) {
  std::vector<u8> buffer;
  Request request{};
  while (Receive(socket, &request, sizeof request, kForEver)) {
    LimitTime();
    buffer.resize(std::min<u64>(request.count, kMostAsked));
    std::size_t got = 0;
    const bool read = ReadContainer(container, request.offset, buffer.data(), buffer.size(), got);
    const Answer answer{read ? 0 : u64{EIO}, 0, read ? got : 0};
    if (!Send(socket, &answer, sizeof answer) || !Send(socket, buffer.data(), answer.bytes)) return;
  }
}

[[noreturn]] void RunReader(int socket, pid_t parent, const ContainerKind& kind, const std::string& path) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
  for (const int signal :
       {SIGINT, SIGTERM, SIGUSR1, SIGHUP})  // those that a terminal sends to both are for the other
    std::signal(signal, SIG_IGN);
  LimitMemory();
  LimitFiles();
  LimitTime();
  std::string refusal;
  const OpenedContainer container = OpenContainer(kind, path, refusal);
  const Answer answer{container != nullptr ? 0 : u64{EIO},
                      container != nullptr ? ContainerLength(*container) : 0, refusal.size()};
  if (Send(socket, &answer, sizeof answer) && Send(socket, refusal.data(), refusal.size()) &&
      container != nullptr) {
    Serve(socket, *container);
  }
  _exit(0);
}

// The process that asks.

struct Reader {
  int socket;
  pid_t process;
};

ErrorCode ReadFromReader(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  const auto& reader = *static_cast<Reader*>(state);
  got = 0;
  while (got < count) {
    const Request request{offset + got, std::min(count - got, kMostAsked)};
    Answer answer{};
    if (!Send(reader.socket, &request, sizeof request) ||
        !Receive(reader.socket, &answer, sizeof answer, kPatience) || answer.bytes > request.count ||
        !Receive(reader.socket, buffer + got, answer.bytes, kPatience)) {
      kill(reader.process, SIGKILL);  // what it may still say would answer another question
      return EIO;
    }
    if (answer.error != 0) return answer.error;
    got += answer.bytes;
    if (answer.bytes < request.count) break;
  }
  return 0;
}

void EndReader(void* state) {
  const std::unique_ptr<Reader> reader(static_cast<Reader*>(state));
  close(reader->socket);
  kill(reader->process, SIGKILL);  // it has nothing to lose, and may be at work
  while (waitpid(reader->process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

// A pair of sockets above the standard descriptors.
bool MakeSockets(int (&sockets)[2]) {
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) return false;
  for (int& socket : sockets) {
    const int moved = fcntl(socket, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(socket);
    socket = moved;
  }
  return sockets[0] >= 0 && sockets[1] >= 0;
}

}  // namespace

ErrorCode OpenContainerProcess(const ContainerKind& kind, const std::string& path, ImageSource& source,
                               std::string& refusal) {
  if (LibraryFor(kind.format) == nullptr) {
    refusal =
        "is " + std::string(kind.name) + ", which this program does not read: " + std::string(kind.advice);
    return ENOTSUP;
  }
  int sockets[2] = {-1, -1};
  if (!MakeSockets(sockets)) return LastError();
  const pid_t parent = getpid();
  const pid_t process = fork();
  if (process == 0) {
    close(sockets[0]);
    RunReader(sockets[1], parent, kind, path);
  }
  const ErrorCode failure = process < 0 ? LastError() : 0;
  close(sockets[1]);
  if (failure != 0) {
    close(sockets[0]);
    return failure;
  }
  source = {new Reader{sockets[0], process}, 0, ReadFromReader, EndReader};
  Answer answer{};
  bool answered = Receive(sockets[0], &answer, sizeof answer, kPatience);
  refusal.resize(answered ? std::min<u64>(answer.bytes, kMostAsked) : 0);
  answered = answered && Receive(sockets[0], refusal.data(), refusal.size(), kPatience);
  if (answered && answer.error == 0) {
    source.length = answer.length;
    return 0;
  }
  EndReader(source.state);
  source = {};
  return answered ? answer.error : ErrorCode{EIO};
}

}  // namespace trovisk
