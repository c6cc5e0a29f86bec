// What a report may put on a terminal.

#ifndef TROVISK_TESTS_SUPPORT_TERMINAL_H
#define TROVISK_TESTS_SUPPORT_TERMINAL_H

#include <string>
#include <string_view>

namespace trovisk::test {

inline constexpr std::size_t kNone = std::string_view::npos;

// The position of the first byte that controls a terminal: all below 0x20 but NUL, tab and newline, 0x7F, and
// what is not UTF-8 or is one of its control characters (0x80 to 0x9F). kNone where there is none.
std::size_t ControlCharacter(std::string_view report);

// The report without the one byte that goes out as it stands on the disk, BitLocker's MFT entry size.
std::string WithoutRawBytes(std::string report);

}  // namespace trovisk::test

#endif
