// Volumes as the tools make them that everybody uses: named as what they are, with nothing held against them.
// A tool that is not on this machine is passed over.

#include <filesystem>
#include <fstream>

#include "map/signatures.h"
#include "map/volume_kind.h"
#include "tests/map/examined.h"

namespace trovisk::test {
namespace {

struct Tool {
  std::vector<std::string> words;  // the image's path follows
  u64 sectors = 0;                 // of the image
  std::string expected;            // "type [label] sectors", then the checks that are not good
};

void PrintTo(const Tool& tool, std::ostream* out) {
  for (const std::string& word : tool.words)
    *out << word << " ";
}

std::string Named(const VolumePlace& place) {
  const auto boot = ReadSectors(place.sector, 1);
  const VolumeKind kind = KindOfBootSector(SectorView(boot.value().data(), 512));
  const auto text = [](const std::string& type, const std::string& label, u64 sectors) {
    return type + " [" + label + "] " + std::to_string(sectors);
  };
  if (kind != VolumeKind::kNone) {
    const VolumeFindings findings = ExamineVolume(kind, place);
    return text(findings.type, findings.label, findings.sectors) + "\n" + NotGood(findings);
  }
  const auto content = NameContent(place);
  return content ? text(content->type, content->label, content->sectors) + "\n" : "nothing";
}

class MadeByTool : public ::testing::TestWithParam<Tool> {};

TEST_P(MadeByTool, IsNamed) {
  const Tool& tool = GetParam();
  const std::string path = ScratchPath("made.img");
  std::ofstream(path).close();
  std::filesystem::resize_file(path, tool.sectors * 512);
  std::vector<std::string> arguments(tool.words.begin() + 1, tool.words.end());
  arguments.push_back(path);
  const Outcome made = RunCommand(tool.words[0], arguments, {"PATH=/usr/sbin:/usr/bin:/sbin:/bin"});
  if (made.status == 127) GTEST_SKIP() << "no " << tool.words[0];
  ASSERT_EQ(made.status, 0) << made.err;
  ASSERT_TRUE(disk.Open(L"the image", path.c_str()));
  EXPECT_EQ(Named({.sector = 0, .sectors = tool.sectors, .lastOnDisk = disk.GetLastSector()}), tool.expected);
  disk.Reset();
}

INSTANTIATE_TEST_SUITE_P(
    Tools, MadeByTool,
    ::testing::Values(
        Tool{{"mkfs.fat", "-F", "12", "-n", "TWELVE"}, 8192, "FAT12 [TWELVE] 8192\n"},
        Tool{{"mkfs.fat", "-F", "16", "-n", "SIXTEEN"}, 65536, "FAT16 [SIXTEEN] 65536\n"},
        Tool{{"mkfs.fat", "-F", "32", "-n", "THIRTYTWO"}, 131072, "FAT32 [THIRTYTWO] 131072\n"},
        Tool{{"mkfs.fat", "-F", "32", "-S", "4096"}, 1048576, "FAT32 [] 1048576\n"},
        Tool{{"mkntfs", "-F", "-q", "-p", "0"}, 65536, "NTFS [] 65536\n"},
        Tool{{"mkntfs", "-F", "-q", "-p", "0", "-c", "65536"}, 65536, "NTFS [] 65536\n"},
        Tool{{"mkfs.exfat"}, 65536, "exFAT [] 65536\n"},
        Tool{{"mke2fs", "-q", "-F", "-t", "ext2", "-L", "two"}, 32768, "ext2 [two] 32768\n"},
        Tool{{"mke2fs", "-q", "-F", "-t", "ext3", "-L", "three"}, 32768, "ext3 [three] 32768\n"},
        Tool{{"mke2fs", "-q", "-F", "-t", "ext4", "-L", "four"}, 131072, "ext4 [four] 131072\n"},
        Tool{{"mke2fs", "-q", "-F", "-O", "journal_dev"}, 32768, "ext journal [] 32768\n"},
        Tool{{"mkswap", "-p", "4096", "-L", "swap4"}, 8192, "Linux swap [swap4] 8192\n"},
        Tool{{"mkswap", "-p", "65536", "-L", "swap64"}, 8192, "Linux swap [swap64] 8192\n"},
        Tool{{"mkfs.xfs", "-q", "-L", "xlabel"}, 614400, "XFS [xlabel] 614400\n"},
        Tool{{"mkfs.btrfs", "-q", "-L", "blabel"}, 409600, "Btrfs [blabel] 409600\n"},
        Tool{{"mkfs.f2fs", "-q", "-l", "flabel"}, 204800, "F2FS [flabel] 204800\n"}));

}  // namespace
}  // namespace trovisk::test
