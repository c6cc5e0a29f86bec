#include "tests/support/child.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace trovisk::test {
namespace {

// A folder for this process's files. A child process leaves it alone.
class Scratch {
 public:
  Scratch() : owner_(getpid()) {
    std::string pattern = (std::filesystem::temp_directory_path() / "trovisk-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    if (getpid() == owner_) std::filesystem::remove_all(path_, ignored);
  }
  const std::string& Path() const { return path_; }

 private:
  pid_t owner_;
  std::string path_;
};

}  // namespace

std::string ScratchPath(const std::string& name) {
  static const Scratch scratch;
  return scratch.Path() + "/" + name;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string WithoutDate(const std::string& report) {
  static const std::regex date("built [A-Z][a-z]{2} [ 0-9][0-9] [0-9]{4}\n");
  return std::regex_replace(report, date, "built <date>\n", std::regex_constants::format_first_only);
}

void Execute(const std::vector<std::string>& words) {
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (const std::string& word : words)
    argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
}

Outcome RunChild(const std::function<void()>& body) {
  static std::atomic<int> runs = 0;
  const std::string stem = ScratchPath("run" + std::to_string(runs++));
  const std::string outPath = stem + ".out";
  const std::string errPath = stem + ".err";

  std::fflush(nullptr);  // or the child would write it once more
  malloc_trim(0);        // a child's peak counts from what it has of this process at its birth
  const pid_t child = fork();
  if (child == 0) {
    const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    body();
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  Outcome outcome{ReadFile(outPath), ReadFile(errPath),
                  WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status), usage.ru_maxrss};
  std::filesystem::remove(outPath);
  std::filesystem::remove(errPath);
  return outcome;
}

}  // namespace trovisk::test
