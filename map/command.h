// The command line of trovisk-map.

#ifndef TROVISK_MAP_COMMAND_H
#define TROVISK_MAP_COMMAND_H

namespace trovisk {

// Takes the process's arguments and gives its exit status: 0 nothing wrong found, 2 something is bad or
// missing, 1 the map could not be made. With --compare: 0 equal, 1 different or not made.
int RunMap(int argc, char** argv);

}  // namespace trovisk

#endif
