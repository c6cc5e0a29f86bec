// Standard output on Linux.

#include <strings.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "map/terminal.h"

namespace trovisk {
namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::size_t TerminalWidth() {
  constexpr std::size_t kUsual = 80;
  if (isatty(STDOUT_FILENO) == 0) return 0;
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsual;
}

// The locale's name alone: the terminal shows what it shows, whether the locale is installed here or not.
bool ShowsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const std::string locale = Environment(name);
    if (locale.empty()) continue;
    const std::string codeset = locale.substr(std::min(locale.find('.'), locale.size()));
    return strncasecmp(codeset.c_str(), ".utf-8", 6) == 0 || strncasecmp(codeset.c_str(), ".utf8", 5) == 0;
  }
  return false;
}

bool EnableColours() {
  const std::string terminal = Environment("TERM");
  return isatty(STDOUT_FILENO) != 0 && !terminal.empty() && terminal != "dumb";
}

}  // namespace trovisk
