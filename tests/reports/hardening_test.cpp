// What the finished programs say of the walls that stand behind the code, read from the files themselves.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/limits.h"
#include "tests/support/program.h"

namespace trovisk::test {
namespace {

std::string OutputOf(const std::vector<std::string>& words) {
  const Outcome outcome = RunChild([&] { Execute(words); });
  EXPECT_EQ(outcome.status, 0) << words[0] << " is missing, or cannot read the file: " << outcome.err;
  return outcome.out;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(Hardening, LinuxProgram) {
  if (!kMemoryCounts) GTEST_SKIP() << "a build with sanitizers has walls of its own";
  const std::string headers = OutputOf({"readelf", "-hldW", ProgramPath(Build::kShipped)});
  EXPECT_TRUE(Has(headers, "DYN (Position-Independent Executable file)"));
  EXPECT_TRUE(Has(headers, " GNU_RELRO "));
  EXPECT_TRUE(Has(headers, "BIND_NOW"));
  EXPECT_TRUE(Has(headers, "Flags: NOW PIE"));
  EXPECT_FALSE(Has(headers, " RWE ")) << "a segment that is both written and run";
  EXPECT_FALSE(Has(headers, "(TEXTREL)"));
  const std::string symbols = OutputOf({"readelf", "-W", "--dyn-syms", ProgramPath(Build::kShipped)});
  EXPECT_TRUE(Has(symbols, " __stack_chk_fail@"));
  EXPECT_TRUE(Has(symbols, "cpy_chk@")) << "no function with a bounds check of its own";
  const std::string commands = ReadFile(TROVISK_COMPILE_COMMANDS);
  EXPECT_TRUE(Has(commands, "-D_FORTIFY_SOURCE=2"));
  EXPECT_TRUE(Has(commands, "-fstack-protector-strong"));
}

TEST(Hardening, WindowsProgram) {
  if (!std::filesystem::exists(TROVISK_WINDOWS_PROGRAM)) {
    GTEST_SKIP() << "the Windows program is not built (cmake --preset windows): " << TROVISK_WINDOWS_PROGRAM;
  }
  const std::string headers = OutputOf({"objdump", "-p", TROVISK_WINDOWS_PROGRAM});
  EXPECT_TRUE(Has(headers, "HIGH_ENTROPY_VA"));
  EXPECT_TRUE(Has(headers, "DYNAMIC_BASE"));
  EXPECT_TRUE(Has(headers, "NX_COMPAT"));
}

}  // namespace
}  // namespace trovisk::test
