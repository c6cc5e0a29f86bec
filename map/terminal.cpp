#include "map/terminal.h"

#include <cstdlib>
#include <string_view>

namespace trovisk {

bool WantsColours() {
  const char* refusal = std::getenv("NO_COLOR");
  return refusal == nullptr || std::string_view(refusal).empty();
}

}  // namespace trovisk
