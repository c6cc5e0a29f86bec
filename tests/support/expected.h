// Expected reports: texts written by hand, in files beside the tests.

#ifndef TROVISK_TESTS_SUPPORT_EXPECTED_H
#define TROVISK_TESTS_SUPPORT_EXPECTED_H

#include <string>

#include "tests/support/program.h"

namespace trovisk::test {

// The text of tests/reports/expected/NAME with its directives replaced. A directive stands alone on a line:
//   {{dump N}}              the listing of sector N of the disk: the empty line, the heading, the rows, the
//   empty line
//   {{rows N OFFSET COUNT}} the rows of a listing of COUNT bytes of sector N, from byte OFFSET, numbered from
//   0
//   {{code N OFFSET COUNT}} those bytes as a code listing: a tab, sixteen to a line
//   {{hex N OFFSET COUNT}}  those bytes as digits with nothing between, no line end of its own
//   {{data N OFFSET COUNT}} those bytes as digits and a blank each, sixteen to a line, later lines led by 16
//   blanks, no line end of its own
// The last two may also stand inside a line. They are formatted by code of the tests' own.
std::string Expected(const std::string& name, const Disk& disk);

// The same for a text in the test itself.
std::string ExpandExpected(std::string text, const Disk& disk);

// What every run prints before its first report: banner, last sector, Reading line, "Loading TOC ...", with
// loading (what the decoders print in the loading pass) in its place, and the empty line.
// reading: what follows the disk in the Reading line, e.g. " sector 63" or " [ whole disk ]".
std::string Preamble(const Disk& disk, const std::string& reading, const std::string& loading = "");

// The report of one sector alone: runs the program on that sector and cuts the preamble off. Fails the test
// when the preamble is another, or when the run does not end with status 0.
std::string ReportOf(const Disk& disk, u64 sector, const std::string& loading = "");

// What stands above the rows of the table of contents, from the empty line behind the last report.
inline const std::string kTocHeading =
    "\n\tTable Of Contents\n\t=================\n\n   Sector#\tContents\n   -------\t--------\n";

// The rows of the table that a whole-disk run's report ends with. Fails the test where there is none.
std::string TocRowsIn(const std::string& report);

// The table of contents that a whole-disk run ends with, rows only: "         0\tMaster Boot Record\n"...
std::string TocOf(const Disk& disk);

// Its row for one sector, and its rows for the sectors first..last, with that description.
std::string TocRow(u64 sector, const std::string& description);
std::string TocRows(u64 first, u64 last, const std::string& description);

// The rows of a disk with a GPT (PutGpt) whose passes end in front of the backup header; partitions: the rows
// between the array and that header.
std::string GptTocRows(const Disk& disk, const std::string& partitions);

// The part of a text from the first place of begin up to the next place of end. Fails the test when either is
// not there.
std::string Section(const std::string& text, const std::string& begin, const std::string& end);

// Compares texts line by line, so that a failure shows the first line that differs and its neighbours.
::testing::AssertionResult SameText(const std::string& actual, const std::string& expected);

}  // namespace trovisk::test

#endif
