// What printing verbs print, and the settings in which they leave the report.

#ifndef TROVISK_TESTS_UNIT_PRINTED_H
#define TROVISK_TESTS_UNIT_PRINTED_H

#include <string>
#include <utility>

#include "frame/report/report.h"

namespace trovisk::test {

// While it lives, the report goes here; its settings are first those of a run's start.
class Printed {
 public:
  Printed() {
    report.Start();
    report.DirectTo(&text_);
  }
  ~Printed() { report.DirectTo(nullptr); }
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;

  // What was printed since the last call.
  std::string Text() {
    report.Flush();
    return std::exchange(text_, {});
  }

  // What the next number looks like: "171" in decimal, "ab" or "AB" in hexadecimal.
  std::string NextNumber() {
    Text();
    report << 171;
    return Text();
  }

 private:
  std::string text_;
};

// What one piece of code prints from a run's first settings on.
template <typename Code>
std::string TextOf(Code code) {
  Printed printed;
  code();
  return printed.Text();
}

}  // namespace trovisk::test

#endif
