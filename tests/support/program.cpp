#include "tests/support/program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace trovisk::test {
namespace {

// A folder for this process's files.
class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "trovisk-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string Program(Build build) {
  return build == Build::kShipped ? TROVISK_SHIPPED_PROGRAM : TROVISK_INVENTED_CODE_PROGRAM;
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

}  // namespace

std::string ScratchPath(const std::string& name) {
  static const Scratch scratch;
  return scratch.Path() + "/" + name;
}

Outcome RunProgram(Build build, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
  static std::atomic<int> runs = 0;
  const std::string stem = ScratchPath("run" + std::to_string(runs++));
  const std::string outPath = stem + ".out";
  const std::string errPath = stem + ".err";
  const std::string program = Program(build);

  const pid_t child = fork();
  if (child == 0) {
    setenv("TZ", "UTC", 1);
    for (std::string pair : environment) {
      const std::size_t equals = pair.find('=');
      setenv(pair.substr(0, equals).c_str(), pair.substr(equals + 1).c_str(), 1);
    }
    const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments)
      argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
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

Outcome RunOn(const Disk& disk, const std::vector<std::string>& arguments, Build build) {
  static std::atomic<int> disks = 0;
  const std::string path = ScratchPath("disk" + std::to_string(disks++) + ".img");
  disk.Write(path);
  std::vector<std::string> all = {path + "@" + std::to_string(disk.SectorSize())};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Outcome outcome = RunProgram(build, all);
  std::filesystem::remove(path);
  static const std::regex date("built [A-Z][a-z]{2} [ 0-9][0-9] [0-9]{4}\n");
  outcome.out =
      std::regex_replace(outcome.out, date, "built <date>\n", std::regex_constants::format_first_only);
  ReplaceAll(outcome.out, all[0], "<disk>");
  ReplaceAll(outcome.err, all[0], "<disk>");
  return outcome;
}

}  // namespace trovisk::test
