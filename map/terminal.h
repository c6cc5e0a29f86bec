// What standard output can show. One file per system implements what the system knows of it.

#ifndef TROVISK_MAP_TERMINAL_H
#define TROVISK_MAP_TERMINAL_H

#include <cstddef>

namespace trovisk {

// The columns of a line of standard output; 0 where it is no terminal.
std::size_t TerminalWidth();

// Whether text is shown as UTF-8, as far as the environment says.
bool ShowsUtf8();

// Makes the terminal on standard output act on colour sequences; whether it does.
bool EnableColours();

// Whether whoever runs the program wants colours where there is a terminal: NO_COLOR is not set, or empty.
bool WantsColours();

}  // namespace trovisk

#endif
