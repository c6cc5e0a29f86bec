#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

// The bytes that the lead byte of a UTF-8 sequence says that it has; 0 for a byte that leads none.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

}  // namespace

std::size_t ControlCharacter(std::string_view report) {
  for (std::size_t at = 0; at < report.size();) {
    const auto lead = static_cast<unsigned char>(report[at]);
    if (lead >= 0x20 && lead < 0x7F) {  // nearly all of it
      ++at;
      continue;
    }
    const bool harmless = lead == 0 || lead == '\t' || lead == '\n';
    if ((lead < 0x20 && !harmless) || lead == 0x7F) return at;
    const std::size_t length = SequenceLength(lead);
    if (length == 0 || at + length > report.size()) return at;
    for (std::size_t i = 1; i < length; ++i) {
      if ((static_cast<unsigned char>(report[at + i]) & 0xC0) != 0x80) return at;
    }
    if (lead == 0xC2 && static_cast<unsigned char>(report[at + 1]) < 0xA0) return at;
    at += length;
  }
  return kNone;
}

std::string WithoutRawBytes(std::string report) {
  const std::string label = "\nMFT Entry Size                         : ";
  for (std::size_t at = report.find(label); at != std::string::npos; at = report.find(label, at)) {
    at += label.size();
    if (at < report.size()) report.erase(at, 1);
  }
  return report;
}

}  // namespace trovisk::test
