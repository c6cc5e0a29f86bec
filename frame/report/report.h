// The report on its way out, and the error lines beside it. Everything that the program prints goes through
// one of the two objects declared here.
//
// On a terminal every line leaves at its end. Elsewhere the text leaves the program before the next read of
// the disk, before anything goes to standard error and at the end, so that nothing printed waits for a disk
// that hangs, and a sector costs one write, not one for each of its lines.
//
// Numbers follow two settings, which stick and are part of what a report looks like: the base, and whether
// digits above 9 are capitals. A hexadecimal field returns to decimal, but its capitals stay for the rest of
// the run. The printing verbs of this folder change them (frame/report/in_place.h), a decoder never does.

#ifndef TROVISK_FRAME_REPORT_REPORT_H
#define TROVISK_FRAME_REPORT_REPORT_H

#include <algorithm>
#include <array>
#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "frame/bytes.h"
#include "frame/report/settings.h"

namespace trovisk {

// Ends a line.
struct LineEndMark {};
inline constexpr LineEndMark LineEnd;

// What report << shows as a number: every integer but characters and truth values.
template <typename Type>
concept ReportedInteger = std::integral<Type> && !std::same_as<Type, bool> && !std::same_as<Type, char> &&
                          !std::same_as<Type, wchar_t> && !std::same_as<Type, char8_t> &&
                          !std::same_as<Type, char16_t> && !std::same_as<Type, char32_t>;

class Report {
 public:
  // ahead: a report that is handed over before anything is printed here. Such a one keeps nothing back: each
  // piece leaves as it is printed.
  constexpr explicit Report(Output output, Report* ahead = nullptr) : output_(output), ahead_(ahead) {}
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  // How a run finds it: decimal, small letters, nothing kept back. Where it is directed to stays.
  void Start();

  // Text as it is; wide text in the C locale's narrow characters, '?' for those that it does not have, up to
  // the first NUL; integers in the base of the settings, negative ones in hexadecimal as two's complement.
  Report& operator<<(std::string_view text) {
    Append(text);
    return *this;
  }
  Report& operator<<(char character) {
    Append({&character, 1});
    return *this;
  }
  Report& operator<<(WideText text);
  Report& operator<<(LineEndMark mark);
  template <ReportedInteger Number>
  Report& operator<<(Number number) {
    const bool minus = std::cmp_less(number, 0) && !settings_.hexadecimal;
    const auto bits = static_cast<std::make_unsigned_t<Number>>(number);
    AppendNumber(minus ? u64{0} - static_cast<u64>(number) : u64{bits}, minus);
    return *this;
  }

  // Other numbers have verbs of their own or none: a truth value would go out as a character.
  template <typename Other>
  requires(std::is_arithmetic_v<Other> && !ReportedInteger<Other> && !std::same_as<Other, char>) Report&
  operator<<(Other other) = delete;

  // Hands everything printed so far to the operating system, or to the string that it is directed to.
  //
  // A report that can no longer be written ends the process on the spot: with status 1 and one line on
  // standard error, or quietly with status 0 when the reader closed its end of the pipe. After an error line
  // that cannot be written no further one is.
  void Flush() {
    if (used_ != 0) Empty();
  }

  // The status that a process then ends with, where 1 says something else.
  void FailWith(int status) { failureStatus_ = status; }

  // From now on what is printed is appended to the text; null: it goes to the system again. The text has all
  // of it after Flush and after the next DirectTo.
  void DirectTo(std::string* text);

  // Whether control characters must not get through: a terminal acts on them, and who asked for a string
  // shows it in another form.
  bool MustBeSafe() const { return terminal_ || IsCaught(); }
  bool IsCaught() const { return text_ != nullptr; }  // in a string

  // The bytes printed so far.
  u64 Size() const { return handedOver_ + used_; }

 private:
  friend class InPlace;

  // More than the listing of a 4096-byte sector, which so leaves in one write.
  static constexpr std::size_t kBytes = std::size_t{64} * 1024;

  void Append(std::string_view text) {
    if (ahead_ == nullptr && text.size() <= kBytes - used_) {
      std::copy(text.begin(), text.end(), bytes_.data() + used_);
      used_ += text.size();
    } else {
      AppendPiecewise(text);
    }
  }
  void AppendPiecewise(std::string_view text);
  void AppendNumber(u64 value, bool minus);
  void Empty();

  Output output_;
  Report* ahead_;
  ReportSettings settings_;
  bool terminal_ = false;
  int failureStatus_ = 1;
  bool failed_ = false;  // the system has refused some of it
  std::string* text_ = nullptr;
  u64 handedOver_ = 0;
  std::size_t used_ = 0;
  std::array<char, kBytes> bytes_{};
};

// Standard output.
extern Report report;

// Standard error, decimal always: lines that the caller prints whole and ends in '\n'.
extern Report errors;

// Where the run was interrupted, hands over what was printed and ends the process by that interruption.
void EndIfInterrupted();

}  // namespace trovisk

#endif
