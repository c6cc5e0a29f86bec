// One line on standard error that rewrites itself, where that is a terminal. Every error line erases it
// first.

#ifndef TROVISK_FRAME_REPORT_STATUS_LINE_H
#define TROVISK_FRAME_REPORT_STATUS_LINE_H

#include <string_view>

namespace trovisk {

// Shows the text, printable ASCII, in place of the one before: as much of it as the terminal is wide.
void ShowStatusLine(std::string_view text);

// Leaves an empty line where one is shown.
void EraseStatusLine();

// As much of the text as is shorter than the width: up to the last of its commas that fits, where one does.
std::string_view FitStatusLine(std::string_view text, std::size_t width);

}  // namespace trovisk

#endif
