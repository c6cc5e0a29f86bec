#include "tests/support/strace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <set>
#include <utility>

namespace trovisk::test {

std::vector<std::string> Trace::Of(const std::string& start) const {
  std::vector<std::string> found;
  for (const std::string& call : calls) {
    if (call.starts_with(start)) found.push_back(call);
  }
  return found;
}

std::vector<std::string> Trace::Names() const {
  const std::set<std::string> memory = {"brk", "madvise", "mmap", "mprotect", "mremap", "munmap"};
  std::vector<std::string> names;
  for (const std::string& call : calls) {
    std::string name = call.substr(0, call.find('('));
    if (!memory.contains(name)) names.push_back(std::move(name));
  }
  return names;
}

Trace TraceCommand(const std::vector<std::string>& command, const std::string& inject) {
  const std::string list = ScratchPath("trace");
  std::vector<std::string> words = {"strace", "-f", "-qq", "-s", "0", "-o", list};
  if (!inject.empty()) words.push_back("--inject=" + inject);
  words.insert(words.end(), command.begin(), command.end());

  Trace trace;
  trace.outcome = RunChild([&] {
    setenv("TZ", "UTC", 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // leaks cannot be looked for under a tracer
    Execute(words);
  });
  std::ifstream lines(list);
  std::string line;
  while (std::getline(lines, line)) {
    const std::size_t call = line.find_first_not_of("0123456789 ");  // behind the process's number
    if (call != std::string::npos) trace.calls.push_back(line.substr(call));
  }
  EXPECT_FALSE(trace.calls.empty()) << "strace did not trace the program: " << trace.outcome.err;
  return trace;
}

Trace TraceProgram(const std::vector<std::string>& arguments, const std::string& inject) {
  std::vector<std::string> command = {ProgramPath(Build::kShipped)};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return TraceCommand(command, inject);
}

Trace TraceShell(const std::string& command, const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {"sh", "-c", command, ProgramPath(Build::kShipped)};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return TraceCommand(words);
}

namespace {

bool IsOpen(const std::string& call) {
  return call.starts_with("open") || call.starts_with("creat");
}

}  // namespace

std::vector<std::string> OpensOf(const Trace& trace, const std::string& path) {
  std::vector<std::string> opens;
  for (const std::string& call : trace.calls) {
    if (IsOpen(call) && call.find('"' + path) != std::string::npos) opens.push_back(call);
  }
  return opens;
}

std::vector<std::string> Changes(const Trace& trace) {
  const auto holds = [](const std::string& call, const char* flag) {
    return call.find(flag) != std::string::npos;
  };
  const auto begins = [](const std::string& call, const char* name) { return call.starts_with(name); };
  const auto any = [](const std::string& call, auto&& is, std::initializer_list<const char*> texts) {
    return std::any_of(texts.begin(), texts.end(), [&](const char* text) { return is(call, text); });
  };
  std::vector<std::string> changes;
  for (const std::string& call : trace.calls) {
    const bool opensToWrite =
        IsOpen(call) && any(call, holds, {"O_WRONLY", "O_RDWR", "O_CREAT", "O_TRUNC", "creat("});
    if (opensToWrite ||
        any(call, begins,
            {"pwrite", "writev(", "truncate", "ftruncate", "fallocate(", "unlink", "rename", "link(",
             "linkat(", "symlink", "mkdir", "rmdir(", "mknod", "copy_file_range(", "sendfile"})) {
      changes.push_back(call);
    }
  }
  return changes;
}

}  // namespace trovisk::test
