// What help and hints say in the operating system's words. One file per system implements it, and knows that
// system.

#ifndef TROVISK_FRAME_HELP_WORDS_H
#define TROVISK_FRAME_HELP_WORDS_H

#include <string>
#include <string_view>

#include "frame/error_code.h"

namespace trovisk {

// Whole lines.
struct HelpWords {
  std::string_view diskArgument;  // --help: the rows of the argument "disk"
  std::string_view examples;      // --help: the rows of the examples
  std::string_view more;          // --help: what is to be known besides, and where
  std::string_view naming;        // hints: how a disk is named
  std::string_view accessDenied;  // hints: what helps where access is denied
};

extern const HelpWords kHelpWords;

// What the system says of its error, without a full stop; empty where it says nothing.
std::string MeaningOf(ErrorCode error);

// Whether the error says that whoever runs the program may not read the disk.
bool IsAccessDenied(ErrorCode error);

}  // namespace trovisk

#endif
