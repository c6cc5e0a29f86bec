#include "frame/report.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <streambuf>
#include <vector>

#include "frame/device.h"

namespace trovisk {
namespace {

// More than the listing of a 4096-byte sector, which so leaves in one write.
constexpr std::size_t kReportBytes = std::size_t{64} * 1024;

class ReportBuffer final : public std::streambuf {
 public:
  ReportBuffer() : bytes_(kReportBytes) { setp(bytes_.data(), bytes_.data() + bytes_.size()); }

  char* Room(std::size_t characters) {
    if (static_cast<std::size_t>(epptr() - pptr()) < characters) Empty();
    return pptr();
  }
  void Take(const char* end) { pbump(static_cast<int>(end - pptr())); }

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
  std::vector<char> bytes_;
  bool failed_ = false;
};

ReportBuffer* reportBuffer = nullptr;
bool onTerminal = false;

// Room for text that is put in place while std::cout writes elsewhere.
std::array<char, kLinesInPlace> otherRoom;

}  // namespace

void StartReport() {
  // Never destroyed: the standard streams flush into it after every other static object is gone.
  if (reportBuffer == nullptr) reportBuffer = new ReportBuffer;
  PrepareReport();
  onTerminal = ReportIsTerminal();
  std::cout.rdbuf(reportBuffer);
  std::cerr.tie(&std::cout);
}

bool ReportOnTerminal() {
  return onTerminal;
}

// Straight to the buffer: after a system call, processors do not predict where a virtual call goes.
void FlushReport() {
  if (std::cout.rdbuf() == reportBuffer) {
    reportBuffer->Empty();
  } else {
    std::cout.rdbuf()->pubsync();
  }
}

std::ostream& LineEnd(std::ostream& out) {
  out.put('\n');
  if (onTerminal) out.flush();
  return out;
}

void PrintLines(std::string_view lines) {
  if (lines.size() > kLinesInPlace) {
    std::cout.rdbuf()->sputn(lines.data(), static_cast<std::streamsize>(lines.size()));
    if (onTerminal) FlushReport();
  } else {
    PrintLinesInPlace(PutText(RoomForLines(), lines));
  }
}

char* RoomForLines() {
  return std::cout.rdbuf() == reportBuffer ? reportBuffer->Room(kLinesInPlace) : otherRoom.data();
}

void PrintLinesInPlace(const char* end) {
  if (std::cout.rdbuf() != reportBuffer) {
    std::cout.rdbuf()->sputn(otherRoom.data(), end - otherRoom.data());
  } else {
    reportBuffer->Take(end);
  }
  if (onTerminal) FlushReport();
}

std::ostream& ErrorLine() {
  FlushReport();
  return std::cerr;
}

}  // namespace trovisk
