#include "frame/report/status_line.h"

#include "frame/report/output.h"

namespace trovisk {
namespace {

bool shown = false;

}  // namespace

// A line as long as the terminal is wide would move the cursor to the next one.
std::string_view FitStatusLine(std::string_view text, std::size_t width) {
  if (text.size() < width) return text;
  const std::string_view cut = text.substr(0, width == 0 ? 0 : width - 1);
  // Half a number would be another one, so a part is there whole or not at all.
  const std::size_t comma = text[cut.size()] == ',' ? cut.size() : cut.rfind(',');
  return comma == std::string_view::npos ? cut : cut.substr(0, comma);
}

void ShowStatusLine(std::string_view text) {
  RewriteErrorLine(FitStatusLine(text, ErrorLineWidth()));
  shown = true;
}

void EraseStatusLine() {
  if (!shown) return;
  shown = false;
  RewriteErrorLine("");
}

}  // namespace trovisk
