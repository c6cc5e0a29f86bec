// Where the report goes: std::cout, gathered into large writes.
//
// A line end is a newline and a flush as far as anyone can see. On a terminal that is what happens. Elsewhere
// the text leaves the program before the next read of the disk, before anything goes to standard error (which
// is tied to std::cout) and at the end, so that nothing printed waits for a disk that hangs and a sector
// costs one write instead of forty.

#ifndef TROVISK_FRAME_REPORT_H
#define TROVISK_FRAME_REPORT_H

#include <algorithm>
#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace trovisk {

// Takes over std::cout. To be called once, before anything is printed.
//
// A report that can no longer be written ends the process on the spot: with status 1 and one line on standard
// error, or quietly with status 0 when the reader closed its end of the pipe.
void StartReport();

// Hands everything printed so far to the operating system.
void FlushReport();

// Whether the report is shown on a terminal, which acts on control characters.
bool ReportOnTerminal();

// Ends a line of the report; used as a manipulator.
std::ostream& LineEnd(std::ostream& out);

// Prints whole lines, the last one's line end included, in one go.
void PrintLines(std::string_view lines);

// The same for lines that are put in place, which spares a listing the copy: RoomForLines gives room for
// kLinesInPlace characters, PrintLinesInPlace takes the place behind the last one. Nothing is printed in
// between.
inline constexpr std::size_t kLinesInPlace = std::size_t{24} * 1024;
char* RoomForLines();
void PrintLinesInPlace(const char* end);

// Puts text in place; gives the place behind it.
inline char* PutText(char* out, std::string_view text) {
  return std::copy(text.begin(), text.end(), out);
}

// Standard error, for one line that the caller writes whole and ends in '\n'. Decimal always.
std::ostream& ErrorLine();

}  // namespace trovisk

#endif
