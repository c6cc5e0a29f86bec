// For the files of this folder alone: text formatted in place in the report's buffer, and the settings.
//
// What a range dump prints for every sector is formatted where it leaves from, which spares a copy.

#ifndef TROVISK_FRAME_REPORT_IN_PLACE_H
#define TROVISK_FRAME_REPORT_IN_PLACE_H

#include <algorithm>
#include <string_view>

#include "frame/report/report.h"

namespace trovisk {

class InPlace {
 public:
  // Room for so many characters. Nothing is printed until Take has got the place behind the last one.
  static constexpr std::size_t kRoom = std::size_t{24} * 1024;
  static char* Room() {
    if (Report::kBytes - report.used_ < kRoom) report.Flush();
    return report.bytes_.data() + report.used_;
  }

  // Takes whole lines.
  static void Take(const char* end) {
    report.used_ = static_cast<std::size_t>(end - report.bytes_.data());
    if (report.terminal_) report.Flush();
  }

  static ReportSettings& Settings() { return report.settings_; }
};

// Each puts something and gives the place behind it.

inline char* PutText(char* out, std::string_view text) {
  return std::copy(text.begin(), text.end(), out);
}

// A number as the settings want it, padded with blanks to the width. It takes the larger of kNumberText and
// the width.
inline constexpr std::size_t kNumberText = 20;
char* PutNumber(char* out, u64 value, ReportSettings settings, std::size_t width = 0);

// Wide text in the C locale's narrow characters, as report << shows it. Each takes up to kNarrowText.
inline constexpr std::size_t kNarrowText = 16;
char* PutNarrow(char* out, WideText text);

}  // namespace trovisk

#endif
