#include "frame/report.h"

#include <cstdlib>
#include <iostream>
#include <streambuf>
#include <vector>

#include "frame/device.h"

namespace trovisk {
namespace {

// More than the listing of a 4096-byte sector, which so leaves in one write.
constexpr std::size_t kReportBytes = std::size_t{64} * 1024;

class ReportBuffer : public std::streambuf {
 public:
  ReportBuffer() : bytes_(kReportBytes) { setp(bytes_.data(), bytes_.data() + bytes_.size()); }

 protected:
  int_type overflow(int_type character) override {
    Empty();
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
      sputc(traits_type::to_char_type(character));
    }
    return traits_type::not_eof(character);
  }

  int sync() override {
    Empty();
    return 0;
  }

 private:
  void Empty() {
    const auto count = static_cast<std::size_t>(pptr() - pbase());
    setp(bytes_.data(), bytes_.data() + bytes_.size());
    if (count == 0 || failed_) return;
    const ErrorCode error = WriteReport(bytes_.data(), count);
    if (error == 0) return;
    failed_ = true;  // the exit below flushes once more
    if (IsClosedPipe(error)) std::exit(0);
    std::cerr << "Error writing the report, error " << error << '\n';
    std::exit(1);
  }

  std::vector<char> bytes_;
  bool failed_ = false;
};

bool onTerminal = false;

}  // namespace

void StartReport() {
  // Never destroyed: the standard streams flush into it after every other static object is gone.
  static ReportBuffer* const buffer = new ReportBuffer;
  PrepareReport();
  onTerminal = ReportIsTerminal();
  std::cout.rdbuf(buffer);
  std::cerr.tie(&std::cout);
}

bool ReportOnTerminal() {
  return onTerminal;
}

void FlushReport() {
  std::cout.flush();
}

std::ostream& LineEnd(std::ostream& out) {
  out.put('\n');
  if (onTerminal) out.flush();
  return out;
}

void PrintLines(std::string_view lines) {
  std::cout.rdbuf()->sputn(lines.data(), static_cast<std::streamsize>(lines.size()));
  if (onTerminal) std::cout.flush();
}

std::ostream& ErrorLine() {
  FlushReport();
  return std::cerr;
}

}  // namespace trovisk
