// One input of the fuzzer: a whole run of the program, and what must be true of every run.

#ifndef TROVISK_TESTS_FUZZ_FUZZ_RUN_H
#define TROVISK_TESTS_FUZZ_FUZZ_RUN_H

#include "frame/bytes.h"

namespace trovisk::test {

// How much of what must be true is looked at: what is too slow for every run of the fuzzer is so in some of
// them, by the bytes of the input, and whenever an input is run again.
enum class Effort { kQuick, kEverything };

// Runs the program on the input, in this process. Aborts where a promise is broken: a status that is neither
// 0 nor 1, a report that is longer than the disk accounts for, a control character on a terminal.
void FuzzRun(Bytes input, Effort effort);

}  // namespace trovisk::test

#endif
