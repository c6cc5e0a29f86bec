// The command line of a Windows process in its own characters: what the C runtime hands over as bytes has
// lost those that the system's code page does not have.

#ifndef TROVISK_FRAME_DISK_FIRST_ARGUMENT_H
#define TROVISK_FRAME_DISK_FIRST_ARGUMENT_H

#include <string>

#include "frame/bytes.h"

namespace trovisk {

// The argument behind the program's name, as the C runtime takes a command line apart; empty where there is
// none.
std::wstring FirstArgument(WideText commandLine);

}  // namespace trovisk

#endif
