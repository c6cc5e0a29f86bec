// The command line of a Windows process in its own characters: what the C runtime hands over as bytes has
// lost those that the system's code page does not have.

#ifndef TROVISK_FRAME_DISK_COMMAND_LINE_H
#define TROVISK_FRAME_DISK_COMMAND_LINE_H

#include <string>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

// The arguments behind the program's name, as the C runtime takes a command line apart.
std::vector<std::wstring> ArgumentsOf(WideText commandLine);

// The first of them; empty where there is none.
std::wstring FirstArgument(WideText commandLine);

// Whether the program has taken its arguments from there, in UTF-8, the disk's among them; else that is the
// first one, and what the program knows of it are the bytes of the C runtime.
inline bool argumentsAreUtf8 = false;

}  // namespace trovisk

#endif
