#include "tests/support/expected.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace trovisk::test {
namespace {

std::string Hex(u64 value, int width) {
  char digits[32];
  std::snprintf(digits, sizeof digits, "%0*llX", width, static_cast<unsigned long long>(value));
  return digits;
}

// A sector of the disk, zeros where it was never touched.
std::vector<u8> BytesOf(const Disk& disk, u64 sector, u64 offset, u64 count) {
  std::vector<u8> bytes(count);
  const auto found = disk.Touched().find(sector);
  if (found == disk.Touched().end()) return bytes;
  for (u64 i = 0; i < count; ++i)
    bytes[i] = U8At(found->second.View(), offset + i);
  return bytes;
}

std::string Rows(const std::vector<u8>& bytes) {
  std::string text;
  for (std::size_t row = 0; row < bytes.size(); row += 16) {
    text += "0x" + Hex(row, 3) + "  ";
    std::string characters;
    for (std::size_t i = row; i < row + 16; ++i) {
      if (i >= bytes.size()) {
        text += "   ";
        continue;
      }
      text += Hex(bytes[i], 2) + " ";
      characters += bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
    }
    text += "    " + characters + "\n";
  }
  return text;
}

// Sixteen bytes to a line, later lines led by an indent.
std::string Cells(const std::vector<u8>& bytes, const std::string& indent) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % 16 == 0) text += "\n" + indent;
    text += Hex(bytes[i], 2) + " ";
  }
  return text;
}

std::string Digits(const std::vector<u8>& bytes) {
  std::string text;
  for (const u8 byte : bytes)
    text += Hex(byte, 2);
  return text;
}

std::string Directive(const std::string& directive, const Disk& disk) {
  std::istringstream words(directive);
  std::string verb;
  u64 sector = 0;
  u64 offset = 0;
  u64 count = disk.SectorSize();
  words >> verb >> sector >> offset >> count;
  const std::vector<u8> bytes = BytesOf(disk, sector, offset, count);
  if (verb == "dump") {
    return "\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n" + Rows(bytes) + "\n";
  }
  if (verb == "rows") return Rows(bytes);
  if (verb == "code") return "\t" + Cells(bytes, "\t") + "\n";
  if (verb == "data") return Cells(bytes, "                ");
  if (verb == "hex") return Digits(bytes);
  ADD_FAILURE() << "unknown directive: " << directive;
  return {};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  std::string line;
  while (std::getline(stream, line))
    lines.push_back(line);
  if (!text.empty() && text.back() != '\n') lines.back() += "(no line end)";
  return lines;
}

}  // namespace

std::string ExpandExpected(std::string text, const Disk& disk) {
  for (std::size_t at = text.find("{{"); at != std::string::npos; at = text.find("{{", at)) {
    std::size_t end = text.find("}}", at);
    if (end == std::string::npos) break;
    const std::string directive = text.substr(at + 2, end - at - 2);
    const std::string expanded = Directive(directive, disk);
    end += 2;
    if (expanded.ends_with('\n') && end < text.size() && text[end] == '\n') ++end;
    text.replace(at, end - at, expanded);
    at += expanded.size();
  }
  return text;
}

std::string Expected(const std::string& name, const Disk& disk) {
  std::ifstream file(TROVISK_EXPECTED_REPORTS "/" + name, std::ios::binary);
  EXPECT_TRUE(file.good()) << "no expected report " << name;
  std::ostringstream text;
  text << file.rdbuf();
  return ExpandExpected(text.str(), disk);
}

std::string Preamble(const Disk& disk, const std::string& reading, const std::string& loading) {
  return "Trovisk version 1.4 built <date>\n\nLast sector on disk is " + std::to_string(disk.Sectors() - 1) +
         "\nReading \\\\.\\PhysicalDrive<disk>" + reading + "\n\nLoading TOC ...\n" + loading + "\n";
}

std::string ReportOf(const Disk& disk, u64 sector, const std::string& loading) {
  const Outcome outcome = RunOn(disk, {std::to_string(sector)});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::string preamble = Preamble(disk, " sector " + std::to_string(sector), loading);
  EXPECT_TRUE(SameText(outcome.out.substr(0, preamble.size()), preamble));
  return outcome.out.size() < preamble.size() ? std::string() : outcome.out.substr(preamble.size());
}

std::string TocRowsIn(const std::string& report) {
  const std::size_t at = report.rfind(kTocHeading);
  EXPECT_NE(at, std::string::npos) << report;
  return at == std::string::npos ? std::string() : report.substr(at + kTocHeading.size());
}

std::string TocOf(const Disk& disk) {
  return TocRowsIn(RunOn(disk).out);
}

std::string TocRow(u64 sector, const std::string& description) {
  const std::string number = std::to_string(sector);
  return std::string(number.size() < 10 ? 10 - number.size() : 0, ' ') + number + "\t" + description + "\n";
}

std::string TocRows(u64 first, u64 last, const std::string& description) {
  std::string rows;
  for (u64 sector = first; sector <= last; ++sector)
    rows += TocRow(sector, description);
  return rows;
}

std::string GptTocRows(const Disk& disk, const std::string& partitions) {
  return TocRow(0, "Master Boot Record") + TocRow(1, "Primary GPT Header") +
         TocRow(2, "GUID Partition Table Start") + TocRows(3, 32, "GUID Partition Table") +
         TocRow(33, "GUID Partition Table End") + partitions +
         TocRow(disk.Sectors() - 1, "Backup GPT Header");
}

std::string Section(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t from = text.find(begin);
  const std::size_t to = from == std::string::npos ? from : text.find(end, from + begin.size());
  EXPECT_NE(to, std::string::npos) << "no \"" << begin << "\" with \"" << end << "\" behind it in\n" << text;
  return to == std::string::npos ? std::string() : text.substr(from, to - from);
}

::testing::AssertionResult SameText(const std::string& actual, const std::string& expected) {
  if (actual == expected) return ::testing::AssertionSuccess();
  const std::vector<std::string> got = Lines(actual);
  const std::vector<std::string> wanted = Lines(expected);
  std::size_t line = 0;
  while (line < got.size() && line < wanted.size() && got[line] == wanted[line])
    ++line;
  auto failure = ::testing::AssertionFailure();
  failure << "the texts differ from line " << line + 1 << " on (of " << got.size() << ", expected "
          << wanted.size() << ")\n";
  for (std::size_t i = line < 3 ? 0 : line - 3; i < line; ++i)
    failure << "      both: |" << got[i] << "|\n";
  for (std::size_t i = line; i < line + 4; ++i) {
    if (i < wanted.size()) failure << "  expected: |" << wanted[i] << "|\n";
    if (i < got.size()) failure << "    actual: |" << got[i] << "|\n";
  }
  return failure;
}

}  // namespace trovisk::test
