// What printing verbs write to std::cout, and the formatting state in which they leave it.

#ifndef TROVISK_TESTS_UNIT_PRINTED_H
#define TROVISK_TESTS_UNIT_PRINTED_H

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace trovisk::test {

// While it lives, std::cout writes here; its formatting state is first that of the program's start, and at
// the end what it was before.
class Printed {
 public:
  Printed() : buffer_(std::cout.rdbuf(text_.rdbuf())), flags_(std::cout.flags()), fill_(std::cout.fill(' ')) {
    std::cout.flags(std::ios_base::dec | std::ios_base::skipws);
  }
  ~Printed() {
    std::cout.rdbuf(buffer_);
    std::cout.flags(flags_);
    std::cout.fill(fill_);
  }
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;

  // What was printed since the last call.
  std::string Text() {
    std::string text = text_.str();
    text_.str("");
    return text;
  }

  // What the next numbers look like: 171 plain, and 171 in a width of 5. "171|  171" at the program's start.
  std::string NextNumbers() {
    Text();
    std::cout << 171 << "|" << std::setw(5) << 171;
    return Text();
  }

 private:
  std::ostringstream text_;
  std::streambuf* buffer_;
  std::ios_base::fmtflags flags_;
  char fill_;
};

// What one piece of code prints from the program's first formatting state on.
template <typename Code>
std::string TextOf(Code code) {
  Printed printed;
  code();
  return printed.Text();
}

}  // namespace trovisk::test

#endif
