// The operating system's side of the report: where printed text goes. One file per system implements it, and
// knows that system.

#ifndef TROVISK_FRAME_REPORT_OUTPUT_H
#define TROVISK_FRAME_REPORT_OUTPUT_H

#include <cstddef>
#include <string_view>

#include "frame/error_code.h"
#include "frame/report/settings.h"

namespace trovisk {

// Writes a stretch of text, whole or not at all as far as the caller can tell. 0 or the system's error.
ErrorCode WriteOutput(Output output, const char* text, std::size_t count);

// Whether the error says that the reader closed its end of the pipe.
bool IsClosedPipe(ErrorCode error);

// Whether the text is shown as it comes, line by line.
bool IsTerminal(Output output);

// For standard error where it is a terminal: how many characters a line has there, and the text in place of
// the line that the cursor stands in, from its start. text: printable ASCII, shorter than the line.
std::size_t ErrorLineWidth();
void RewriteErrorLine(std::string_view text);

// Prepares the process once, before anything is written: character set of the terminal, broken pipes, and the
// signals that frame/interruption.h notes, unless the process was started with them ignored. A second
// interruption ends the process on the spot.
void PrepareOutput();

// Ends the process as the interruption would have ended it, had nobody noted it.
[[noreturn]] void EndByInterruption(int signal);

}  // namespace trovisk

#endif
