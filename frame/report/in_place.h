// For the files of this folder alone: text formatted in place in the report's buffer, and the settings.
//
// What a range dump prints for every sector is formatted where it leaves from, which spares a copy.

#ifndef TROVISK_FRAME_REPORT_IN_PLACE_H
#define TROVISK_FRAME_REPORT_IN_PLACE_H

#include "frame/report/report.h"

namespace trovisk {

class InPlace {
 public:
  // Room for so many characters, kRoom at most. Nothing is printed until Take has got the place behind the
  // last one.
  static constexpr std::size_t kRoom = std::size_t{24} * 1024;
  static char* Room(std::size_t characters = kRoom) {
    if (Report::kBytes - report.used_ < characters) report.Flush();
    return report.bytes_.data() + report.used_;
  }

  // Takes whole lines.
  static void Take(const char* end) {
    report.used_ = static_cast<std::size_t>(end - report.bytes_.data());
    if (report.terminal_) report.Flush();
  }

  static ReportSettings& Settings() { return report.settings_; }
};

}  // namespace trovisk

#endif
