// trovisk-map as a command: its options, where its text goes, and its exit status.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "frame/disk/disk_list.h"
#include "frame/interruption.h"
#include "frame/report/report.h"
#include "map/disk_table.h"
#include "map/display_width.h"
#include "map/output_file.h"
#include "tests/disks/gpt.h"
#include "tests/support/program.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

namespace fs = std::filesystem;

Outcome RunMap(const std::vector<std::string>& arguments) {
  return RunCommand(TROVISK_MAP_PROGRAM, arguments, {"LC_ALL=C.UTF-8"});
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// A folder of its own for each test, the current one while it runs: with one sound disk of two partitions.
class MapCommand : public testing::Test {
 protected:
  MapCommand()
      : before_(fs::current_path()),
        folder_(ScratchPath(testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::create_directories(folder_);
    fs::current_path(folder_);
    Disk disk(4096);
    PutGpt(disk,
           {{.first = 64, .last = 1063, .name = u"One"}, {.first = 2048, .last = 3047, .name = u"Two"}});
    disk.Write("disk.img");
  }
  MapCommand(const MapCommand&) = delete;
  MapCommand& operator=(const MapCommand&) = delete;
  ~MapCommand() override {
    fs::current_path(before_);
    fs::remove_all(folder_);
  }

  static std::size_t Files() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("."), fs::directory_iterator()));
  }

 private:
  fs::path before_;
  fs::path folder_;
};

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
}

TEST_F(MapCommand, SaysHowItIsCalledWhereNothingIsAsked) {
  const Outcome outcome = RunMap({});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, R"(Usage: trovisk-map [options] DISK
       trovisk-map --compare OTHER [options] DISK
       trovisk-map --list
       trovisk-map --help | --version
"trovisk-map --help" says how it is called.
)");
}

TEST_F(MapCommand, HelpAndVersionGoToStandardOutput) {
  for (const char* option : {"--help", "-h"}) {
    const Outcome help = RunMap({option});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_TRUE(help.out.starts_with("Usage: trovisk-map [options] DISK\n"));
    for (const char* name : {"--json", "--sfdisk", "--compare OTHER", "--list", "-o, --output FILE", "--all",
                             "--width N", "--color WHEN", "-h, --help", "--version"})
      EXPECT_TRUE(Has(help.out, std::string("\n  ") + name + " ") ||
                  Has(help.out, std::string("\n  ") + name + "\n"))
          << name;
  }
  const Outcome version = RunMap({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.substr(0, 14), "trovisk-map 1.");
}

TEST_F(MapCommand, ComplainsAboutWhatItDoesNotUnderstand) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> calls = {
      {{"--colour", "disk.img"}, "The following argument was not expected: --colour."},
      {{"disk.img", "other.img"}, "The following argument was not expected: other.img."},
      {{"--color", "blue", "disk.img"}, "--color: blue not in {auto,always,never}."},
      {{"--width", "19", "disk.img"}, "--width: Value 19 not in range 20 to 1000."},
      {{"--width", "1001", "disk.img"}, "--width: Value 1001 not in range 20 to 1000."},
      {{"--json", "--sfdisk", "disk.img"}, "--json excludes --sfdisk."},
      {{"--list", "disk.img"}, "DISK excludes --list."},
      {{"disk.img", "--output"}, "--output: 1 required FILE missing."},
      {{"disk.img", "--output", ""}, "--output: It must not be empty."},
      {{""}, "DISK: It must not be empty."},
      {{"--\x1b[2J\n", "disk.img"}, "The following argument was not expected: --?[2J?."},
  };
  for (const auto& [arguments, complaint] : calls) {
    const Outcome outcome = RunMap(arguments);
    EXPECT_EQ(outcome.status, 1) << complaint;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "trovisk-map: " + complaint + "\n\"trovisk-map --help\" says how it is called.\n");
  }
}

// 1 says that two maps differ, so whatever fails has another status where they are compared.
TEST_F(MapCommand, AComparisonThatFailsIsStatusThree) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--compare", "", "disk.img"},
        {"--compare", "disk.img"},
        {"--compare=disk.img", "--colour", "disk.img"},
        {"disk.img", "--compare"},
        {"--compare", "disk.img", "not-there.img"},
        {"--compare", "disk.img", "disk.img", "-o", "no-folder/lines"}}) {
    const Outcome outcome = RunMap(arguments);
    EXPECT_EQ(outcome.status, 3) << arguments.back();
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err, "");
  }
}

// Pieces of an image are not open yet when the output is, and are not named on the command line.
TEST_F(MapCommand, PieceOfTheImageIsNoOutput) {
  fs::rename("disk.img", "disk.001");
  std::ofstream("disk.002") << "evidence";
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"disk.001", "-o", "disk.002"},
        {"--compare", "disk.001", "disk.001", "-o", "disk.002"}}) {
    const Outcome outcome = RunMap(arguments);
    EXPECT_NE(outcome.status, 0);
    EXPECT_TRUE(Has(outcome.err, "is not written to: it ")) << outcome.err;
  }
  EXPECT_EQ(fs::file_size("disk.002"), 8u);
  // Another file of the same name is no piece.
  std::ofstream("disk.json") << "{}";
  EXPECT_NE(RunMap({"--json", "disk.001", "-o", "disk.json"}).status, 1);
}

TEST_F(MapCommand, ASoundDiskIsStatusZeroAndADamagedOneStatusTwo) {
  const Outcome sound = RunMap({"disk.img"});
  EXPECT_EQ(sound.status, 0);
  EXPECT_EQ(sound.err, "");
  EXPECT_TRUE(Has(sound.out, "\textent\t") || Has(sound.out, "\nextent\t64\t1063\t1000\tpartition\t"))
      << sound.out;
  EXPECT_TRUE(sound.out.ends_with(
      "verdict\t0\tNothing wrong was found, but in 2 partitions no volume was recognised.\n"));

  std::fstream image("disk.img", std::ios::in | std::ios::out | std::ios::binary);
  image.seekp(512);
  image << std::string(512, '\0');  // the primary header
  image.close();
  const Outcome damaged = RunMap({"disk.img"});
  EXPECT_EQ(damaged.status, 2);
  EXPECT_TRUE(Has(damaged.out, "\nextent\t64\t1063\t1000\tpartition\t")) << damaged.out;
  EXPECT_TRUE(Has(damaged.out, "\nverdict\t2\tSomething is wrong: "));
}

TEST_F(MapCommand, ADiskThatDoesNotOpenIsStatusOne) {
  const Outcome outcome = RunMap({"no.img"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDriveno.img for reading, error 2\n");
}

TEST_F(MapCommand, ANameThatBeginsWithAHyphenStandsBehindTwo) {
  fs::rename("disk.img", "--json");
  EXPECT_EQ(RunMap({"--", "--json"}).status, 0);
  EXPECT_TRUE(Has(RunMap({"--", "--json"}).out, "\ndisk\t--json\t512\t4096\t"));
}

TEST_F(MapCommand, TheFormIsWhatTheOptionSays) {
  EXPECT_TRUE(RunMap({"--json", "disk.img"}).out.starts_with("{"));
  EXPECT_TRUE(RunMap({"--sfdisk", "disk.img"}).out.starts_with("label: gpt\n"));
  EXPECT_TRUE(RunMap({"--width", "60", "disk.img"}).out.starts_with("disk.img, 2.0 MiB in 4096 sectors"));
  EXPECT_TRUE(Has(RunMap({"--color", "always", "disk.img"}).out, "\x1b["));
}

// Escape sequences, marks that turn the direction of text, a tab, a line end, half a character: none of them
// comes out, in whatever form.
TEST_F(MapCommand, NamesOfTheDiskDoNotControlTheTerminal) {
  std::u16string name = u"a\x1b[2J\u202E\u200Fb\tc\nd\u0085e";
  name += u'\xD800';
  Disk disk(4096);
  PutGpt(disk, {{.first = 64, .last = 1063, .name = name}});
  disk.Write("evil.img");
  for (const std::vector<std::string>& form : {std::vector<std::string>{"evil.img"},
                                               {"--width", "200", "evil.img"},
                                               {"--json", "evil.img"},
                                               {"--sfdisk", "evil.img"}}) {
    const Outcome outcome = RunMap(form);
    EXPECT_NE(outcome.status, 1);
    EXPECT_EQ(ControlCharacter(outcome.out), kNone) << form[0];
    EXPECT_FALSE(Has(outcome.out, "\u202E"));
    EXPECT_FALSE(Has(outcome.out, "\u200F"));
  }
  EXPECT_TRUE(Has(RunMap({"evil.img"}).out, "\ta?[2J??b?c?d?e?\tGPT entry 1\t"));
}

TEST_F(MapCommand, OnATerminalItIsATableThatFits) {
  for (const unsigned short columns : std::initializer_list<unsigned short>{40, 80, 200}) {
    const TerminalSession session =
        RunOnTerminal({"env", "LC_ALL=C.UTF-8", "TERM=dumb", TROVISK_MAP_PROGRAM, "disk.img"},
                      OutputTo::kTerminal, columns);
    EXPECT_EQ(session.status, 0);
    EXPECT_TRUE(session.terminal.starts_with("disk.img, 2.0 MiB in 4096 sectors")) << session.terminal;
    EXPECT_TRUE(Has(session.terminal, "\u2588"));
    for (std::size_t at = 0; at < session.terminal.size();) {
      const std::size_t end = session.terminal.find('\n', at);
      EXPECT_LE(DisplayWidth(session.terminal.substr(at, end - at)), columns);
      at = end + 1;
    }
  }
  const TerminalSession ascii =
      RunOnTerminal({"env", "LC_ALL=C", TROVISK_MAP_PROGRAM, "disk.img"}, OutputTo::kTerminal);
  EXPECT_TRUE(Has(ascii.terminal, "AAAA"));
  EXPECT_FALSE(Has(ascii.terminal, "\u2588"));
}

TEST_F(MapCommand, ColoursAreForTerminalsOfPeopleWhoWantThem) {
  const auto isColoured = [](std::vector<std::string> words) {
    words.insert(words.begin(), {"env", "-u", "NO_COLOR"});
    words.insert(words.end(), {"disk.img"});
    return Has(RunOnTerminal(words, OutputTo::kTerminal).terminal, "\x1b[");
  };
  const std::string program = TROVISK_MAP_PROGRAM;
  EXPECT_TRUE(isColoured({"TERM=xterm", program}));
  EXPECT_TRUE(isColoured({"TERM=xterm", "NO_COLOR=", program}));
  EXPECT_FALSE(isColoured({"TERM=xterm", "NO_COLOR=1", program}));
  EXPECT_FALSE(isColoured({"TERM=dumb", program}));
  EXPECT_FALSE(isColoured({"-u", "TERM", program}));
  EXPECT_FALSE(isColoured({"TERM=xterm", program, "--color", "never"}));
  EXPECT_TRUE(isColoured({"TERM=dumb", "NO_COLOR=1", program, "--color", "always"}));
  EXPECT_FALSE(isColoured({"TERM=xterm", program, "--json"}));
  EXPECT_FALSE(Has(RunMap({"disk.img"}).out, "\x1b["));
}

TEST_F(MapCommand, OutputIsWhatStandardOutputWouldHaveBeen) {
  WriteText("map.txt", "before");
  const Outcome outcome = RunMap({"--output", "map.txt", "disk.img"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(ReadFile("map.txt"), RunMap({"disk.img"}).out);
  EXPECT_EQ(RunMap({"disk.img", "-o", "map.json", "--json"}).status, 0);
  EXPECT_EQ(ReadFile("map.json"), RunMap({"--json", "disk.img"}).out);
  EXPECT_EQ(RunMap({"--list", "-o", "list.txt"}).status, 0);
  EXPECT_TRUE(ReadFile("list.txt").starts_with("#disk\tnumber\tdevice\tbytes\tmodel\n"));
  EXPECT_EQ(Files(), 4U);  // and no temporary one
}

TEST_F(MapCommand, OutputFollowsALinkAndKeepsTheRightsOfTheFile) {
  WriteText("map.txt", "before");
  fs::permissions("map.txt", fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  fs::create_symlink("map.txt", "link.txt");
  EXPECT_EQ(RunMap({"-o", "link.txt", "disk.img"}).status, 0);
  EXPECT_TRUE(fs::is_symlink("link.txt"));
  EXPECT_TRUE(ReadFile("map.txt").starts_with("#disk\t"));
  EXPECT_EQ(fs::status("map.txt").permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
}

// As a shell's redirection does: the file comes to be where the link leads.
TEST_F(MapCommand, OutputFollowsALinkToNothing) {
  fs::create_directory("folder");
  fs::create_symlink("folder/link.txt", "link.txt");
  fs::create_symlink("map.txt", "folder/link.txt");
  EXPECT_EQ(RunMap({"-o", "link.txt", "disk.img"}).status, 0);
  EXPECT_TRUE(fs::is_symlink("link.txt"));
  EXPECT_TRUE(fs::is_symlink("folder/link.txt"));
  EXPECT_TRUE(ReadFile("folder/map.txt").starts_with("#disk\t"));
  fs::create_symlink("circle.txt", "circle.txt");
  EXPECT_EQ(RunMap({"-o", "circle.txt", "disk.img"}).status, 1);
  EXPECT_TRUE(fs::is_symlink("circle.txt"));
}

TEST_F(MapCommand, OutputIsNoFileThatIsReadOnly) {
  WriteText("map.txt", "before");
  fs::permissions("map.txt", fs::perms::owner_read);
  const Outcome outcome = RunMap({"-o", "map.txt", "disk.img"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "trovisk-map: map.txt is not written to: it is read-only\n");
  EXPECT_EQ(ReadFile("map.txt"), "before");
}

TEST_F(MapCommand, OutputIsNeverWhatIsExamined) {
  const std::string before = ReadFile("disk.img");
  fs::create_hard_link("disk.img", "linked.img");
  fs::create_symlink("disk.img", "symlink.img");
  for (const char* output : {"disk.img", "./disk.img", "linked.img", "symlink.img"}) {
    for (const char* disk : {"disk.img", "disk.img@512"}) {
      const Outcome outcome = RunMap({"-o", output, disk});
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.err,
                std::string("trovisk-map: ") + output + " is not written to: it is what is examined\n");
    }
  }
  EXPECT_EQ(ReadFile("disk.img"), before);
  EXPECT_EQ(Files(), 3U);
}

// The pieces behind the first one have names that the command line does not have.
TEST_F(MapCommand, OutputIsNoPieceOfAnImageThatIsExamined) {
  const std::string image = ReadFile("disk.img");
  WriteText("piece.001", image.substr(0, 1U << 20));
  WriteText("piece.002", image.substr(1U << 20));
  EXPECT_EQ(RunMap({"piece.001"}).status, 0);
  EXPECT_EQ(RunMap({"-o", "piece.002", "piece.001"}).status, 1);
  EXPECT_EQ(ReadFile("piece.002"), image.substr(1U << 20));
}

TEST_F(MapCommand, OutputIsAFile) {
  fs::create_directory("folder");
  EXPECT_EQ(RunMap({"-o", "/dev/null", "disk.img"}).err,
            "trovisk-map: /dev/null is not written to: it is not a file\n");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(RunMap({"-o", "folder", "disk.img"}).err,
            "trovisk-map: folder is not written to: it is not a file\n");
  EXPECT_EQ(RunMap({"-o", "none/map.txt", "disk.img"}).err,
            "trovisk-map: none/map.txt cannot be written, error 2: No such file or directory\n");
  EXPECT_EQ(RunMap({"-o", "none/map.txt", "disk.img"}).status, 1);
}

TEST_F(MapCommand, OutputStaysAsItWasWhereTheDiskOrTheWritingFails) {
  WriteText("map.txt", "before");
  EXPECT_EQ(RunMap({"-o", "map.txt", "no.img"}).status, 1);
  EXPECT_EQ(ReadFile("map.txt"), "before");
  const Outcome full = RunCommand(
      "sh", {"-c", "ulimit -f 1; exec \"$0\" --json -o map.txt disk.img", TROVISK_MAP_PROGRAM}, {});
  EXPECT_EQ(full.status, 1);
  EXPECT_EQ(full.err, "trovisk-map: map.txt cannot be written, error 27: File too large\n");
  EXPECT_EQ(ReadFile("map.txt"), "before");
  EXPECT_EQ(Files(), 2U);
}

TEST_F(MapCommand, AnInterruptedRunLeavesNoTemporaryFile) {
  const Outcome outcome = RunChild([] {
    OutputFile file;
    if (!file.Open("map.txt", {}) || !file.Write("half")) return;
    interruption = SIGTERM;
    EndIfInterrupted();
  });
  EXPECT_EQ(outcome.status, 256 + SIGTERM);
  EXPECT_EQ(Files(), 1U);
}

TEST_F(MapCommand, AMapThatIsLostIsAFailure) {
  const Outcome outcome =
      RunCommand("sh", {"-c", "exec \"$0\" disk.img >/dev/full", TROVISK_MAP_PROGRAM}, {});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "Error writing the report, error 28\n");
}

TEST(MapList, IsATableForAPersonAndLinesForPrograms) {
  const std::vector<ListedDisk> disks = {{0, "/dev/nvme0n1", 1000204886016, "Sample Drive 1000"},
                                         {11, "/dev/sda", 0, ""}};
  EXPECT_EQ(DisksAsText(disks, true), R"(number  device             size  model
     0  /dev/nvme0n1  931.5 GiB  Sample Drive 1000
    11  /dev/sda
)");
  EXPECT_EQ(DisksAsText(disks, false),
            "#disk\tnumber\tdevice\tbytes\tmodel\n"
            "disk\t0\t/dev/nvme0n1\t1000204886016\tSample Drive 1000\n"
            "disk\t11\t/dev/sda\t-\t-\n");
  EXPECT_EQ(DisksAsText({}, true), "The system lists no disks.\n");
}

TEST(MapList, HasTheDisksOfThisMachine) {
  const Outcome outcome = RunMap({"--list"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, DisksAsText(ListDisks(), false));
}

}  // namespace
}  // namespace trovisk::test
