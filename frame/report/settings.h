// What a report is made of besides its text: where it goes, and how it shows numbers.

#ifndef TROVISK_FRAME_REPORT_SETTINGS_H
#define TROVISK_FRAME_REPORT_SETTINGS_H

namespace trovisk {

enum class Output { kReport, kErrors };  // standard output, standard error

struct ReportSettings {
  bool hexadecimal = false;  // else decimal
  bool capitals = false;
};

}  // namespace trovisk

#endif
