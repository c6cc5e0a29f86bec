// One input of the fuzzer: a whole run of the program, and what must be true of every run.

#ifndef TROVISK_TESTS_FUZZ_FUZZ_RUN_H
#define TROVISK_TESTS_FUZZ_FUZZ_RUN_H

#include "frame/bytes.h"

namespace trovisk::test {

// Runs the program on the input, in this process. Aborts where a promise is broken: a status that is neither
// 0 nor 1, a report that is longer than the disk accounts for, a control character on a terminal.
void FuzzRun(Bytes input);

}  // namespace trovisk::test

#endif
