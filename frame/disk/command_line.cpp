// The rules: "Parsing C command-line arguments" in Microsoft's documentation of the C runtime.

#include "frame/disk/command_line.h"

#include <algorithm>

namespace trovisk {
namespace {

bool IsBlank(wchar_t character) {
  return character == L' ' || character == L'\t';
}

// What stands behind the program's name, in which a backslash is a character like any other.
WideText BehindName(WideText line) {
  bool quoted = false;
  std::size_t end = 0;
  for (; end < line.size() && (quoted || !IsBlank(line[end])); ++end) {
    if (line[end] == L'"') quoted = !quoted;
  }
  return line.substr(end);
}

// Takes an argument from the start of the rest, which is not empty.
std::wstring TakeArgument(WideText& rest) {
  std::wstring argument;
  bool quoted = false;
  while (!rest.empty() && (quoted || !IsBlank(rest.front()))) {
    const std::size_t backslashes = std::min(rest.find_first_not_of(L'\\'), rest.size());
    rest.remove_prefix(backslashes);
    if (!rest.starts_with(L'"')) {
      argument.append(backslashes, L'\\');
      if (backslashes == 0) {
        argument += rest.front();
        rest.remove_prefix(1);
      }
      continue;
    }
    // In front of a quotation mark a pair of backslashes is one, and a single one takes the mark's meaning.
    argument.append(backslashes / 2, L'\\');
    rest.remove_prefix(1);
    if (backslashes % 2 != 0) {
      argument += L'"';
    } else if (quoted && rest.starts_with(L'"')) {
      argument += L'"';
      rest.remove_prefix(1);
    } else {
      quoted = !quoted;
    }
  }
  return argument;
}

}  // namespace

std::vector<std::wstring> ArgumentsOf(WideText commandLine) {
  std::vector<std::wstring> arguments;
  WideText rest = BehindName(commandLine);
  for (;;) {
    rest.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), IsBlank) - rest.begin()));
    if (rest.empty()) return arguments;
    arguments.push_back(TakeArgument(rest));
  }
}

std::wstring FirstArgument(WideText commandLine) {
  const std::vector<std::wstring> arguments = ArgumentsOf(commandLine);
  return arguments.empty() ? std::wstring() : arguments.front();
}

}  // namespace trovisk
