// The arguments of the command line in UTF-8, behind the program's name. One file per system implements it.

#ifndef TROVISK_MAP_ARGUMENTS_H
#define TROVISK_MAP_ARGUMENTS_H

#include <string>
#include <vector>

namespace trovisk {

std::vector<std::string> ArgumentsInUtf8(int argc, char** argv);

}  // namespace trovisk

#endif
