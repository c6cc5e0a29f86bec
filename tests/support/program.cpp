#include "tests/support/program.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>

#include "tests/support/wine.h"

namespace trovisk::test {

void ReplaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

std::string NativeProgramPath(Build build) {
  return build == Build::kShipped ? TROVISK_SHIPPED_PROGRAM : TROVISK_INVENTED_CODE_PROGRAM;
}

std::string ProgramPath(Build build) {
  if (!UnderWine()) return NativeProgramPath(build);
  return WindowsProgram(build == Build::kShipped ? "trovisk.exe" : "trovisk_invented_code.exe");
}

Outcome RunProgram(Build build, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
  const std::string program = ProgramPath(build);
  return UnderWine() ? RunOnWineDrive(program, arguments, environment)
                     : RunCommand(program, arguments, environment);
}

Outcome RunCommand(const std::string& program, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return RunChild([&] {
    setenv("TZ", "UTC", 1);
    for (const std::string& pair : environment) {
      const std::size_t equals = pair.find('=');
      setenv(pair.substr(0, equals).c_str(), pair.substr(equals + 1).c_str(), 1);
    }
    Execute(words);
  });
}

Outcome RunOn(const Disk& disk, const std::vector<std::string>& arguments, Build build) {
  static std::atomic<int> disks = 0;
  const std::string path = ScratchPath("disk" + std::to_string(disks++) + ".img");
  disk.Write(path);
  std::vector<std::string> all = {path + "@" + std::to_string(disk.SectorSize())};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Outcome outcome = RunProgram(build, all);
  std::filesystem::remove(path);
  outcome.out = WithoutDate(outcome.out);
  ReplaceAll(outcome.out, all[0], "<disk>");
  ReplaceAll(outcome.err, all[0], "<disk>");
  return outcome;
}

std::string ReadBehindTheEnd(u64 needed, u64 got) {
  if (UnderWine()) return "Global::Read failed, error 27\n";
  return "Global::Read short read, needed " + std::to_string(needed) + ", got " + std::to_string(got) + "\n";
}

}  // namespace trovisk::test
