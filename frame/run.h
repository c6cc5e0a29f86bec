// One run of the program: arguments, loading pass, printing pass, table of contents.

#ifndef TROVISK_FRAME_RUN_H
#define TROVISK_FRAME_RUN_H

namespace trovisk {

// Takes the process's arguments and gives its exit status: 0 after a completed run, 1 after a fatal error.
int Run(int argc, char** argv);

}  // namespace trovisk

#endif
