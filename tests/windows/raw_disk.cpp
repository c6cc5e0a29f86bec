#include "tests/windows/raw_disk.h"

#include <atomic>
#include <filesystem>

#include "tests/support/wine.h"

namespace trovisk::test {

RawDiskRun RunUnderRawDiskRules(const std::string& program, const std::vector<std::string>& arguments,
                                const std::string& rules) {
  static std::atomic<int> runs = 0;
  const std::string log = ScratchPath("calls" + std::to_string(runs++) + ".log");
  std::vector<std::string> all = {program};
  all.insert(all.end(), arguments.begin(), arguments.end());
  RawDiskRun run;
  run.outcome = RunWindowsProgram(WindowsProgram("launcher.exe"), all,
                                  {"RAW_DISK=log=" + WindowsPath(log) + " " + rules});
  run.calls = ReadFile(log);
  std::filesystem::remove(log);
  run.outcome.out = WithoutDate(run.outcome.out);
  return run;
}

RawDiskRun RunOnRawDisk(const Disk& disk, const std::vector<std::string>& arguments, const std::string& rules,
                        Build build) {
  static std::atomic<int> runs = 0;
  const std::string image = ScratchPath("raw" + std::to_string(runs++) + ".img");
  disk.Write(image);
  const WineDrive drive(image);
  const char* const program = build == Build::kShipped ? "trovisk.exe" : "trovisk_invented_code.exe";
  std::vector<std::string> all = {drive.Number()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  RawDiskRun run = RunUnderRawDiskRules(WindowsProgram(program), all,
                                        "sector=" + std::to_string(disk.SectorSize()) + " " + rules);
  std::filesystem::remove(image);
  for (std::string* text : {&run.outcome.out, &run.outcome.err, &run.calls})
    ReplaceAll(*text, "PhysicalDrive" + drive.Number(), "PhysicalDrive<disk>");
  return run;
}

}  // namespace trovisk::test
