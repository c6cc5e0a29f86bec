#include "frame/report/report.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "frame/interruption.h"
#include "frame/report/output.h"
#include "frame/report/put.h"
#include "frame/report/status_line.h"

namespace trovisk {

constinit Report report(Output::kReport);
constinit Report errors(Output::kErrors, &report);

void Report::Start() {
  static const bool prepared = (PrepareOutput(), true);
  Flush();
  settings_ = {};
  failed_ = false;
  handedOver_ = 0;
  terminal_ = prepared && ahead_ == nullptr && IsTerminal(output_);  // what keeps nothing back need not know
}

// The buffer counts as empty from the start: what goes wrong here is printed as well.
void Report::Empty() {
  const std::string_view printed(bytes_.data(), used_);
  used_ = 0;
  handedOver_ += printed.size();
  if (text_ != nullptr) {
    text_->append(printed);
    return;
  }
  if (failed_) return;
  const ErrorCode error = WriteOutput(output_, printed.data(), printed.size());
  failed_ = error != 0;
  if (error == 0 || ahead_ != nullptr) return;
  if (IsClosedPipe(error)) {
    EraseStatusLine();
    std::exit(0);
  }
  errors << "Error writing the report, error " << error << '\n';
  std::exit(failureStatus_);
}

void Report::AppendPiecewise(std::string_view text) {
  if (ahead_ != nullptr) {
    ahead_->Flush();
    EraseStatusLine();
  }
  while (!text.empty()) {
    if (used_ == kBytes) Empty();
    const std::string_view piece = text.substr(0, kBytes - used_);
    std::copy(piece.begin(), piece.end(), bytes_.data() + used_);
    used_ += piece.size();
    text.remove_prefix(piece.size());
  }
  if (ahead_ != nullptr) Flush();
}

void Report::AppendNumber(u64 value, bool minus) {
  std::array<char, kNumberText + 1> text;
  char* out = text.data();
  if (minus) *out++ = '-';
  out = PutNumber(out, value, settings_);
  Append({text.data(), static_cast<std::size_t>(out - text.data())});
}

Report& Report::operator<<(WideText text) {
  return *this << Narrow(text);
}

Report& Report::operator<<(LineEndMark /*mark*/) {
  Append("\n");
  if (terminal_) Flush();
  return *this;
}

void Report::DirectTo(std::string* text) {
  Flush();
  text_ = text;
}

void EndIfInterrupted() {
  if (!IsInterrupted()) return;
  report.Flush();
  EraseStatusLine();
  if (beforeInterruptedEnd != nullptr) beforeInterruptedEnd();
  EndByInterruption(interruption);
}

}  // namespace trovisk
