// The arguments as they are: whatever encoding a path is in, its bytes are what opens it.

#include "map/arguments.h"

namespace trovisk {

std::vector<std::string> ArgumentsInUtf8(int argc, char** argv) {
  if (argc < 1) return {};
  return {argv + 1, argv + argc};
}

}  // namespace trovisk
