// What the program tells whoever calls it: --help and --version, and hints on a terminal where a disk does
// not open.

#ifndef TROVISK_FRAME_HELP_H
#define TROVISK_FRAME_HELP_H

#include "frame/error_code.h"

namespace trovisk {

// Prints the answer to --help or --version on standard output where one of them is the only argument; whether
// it was.
bool AnswerOption(int argc, char** argv);

// Where standard error is a terminal: says there what the error of a disk that does not open means, how a
// disk is named and which disks this machine has. Elsewhere nothing, so that scripts read what they know.
void HintAtDisks(ErrorCode error);

// There too: that a disk of so many bytes is empty, or ends in its first sector. Of a longer one nothing.
void HintAtShortDisk(u64 bytes, u32 bytesPerSector);

}  // namespace trovisk

#endif
