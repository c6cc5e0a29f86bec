// For the files of this folder alone: text put at a place that has room for it. Each function gives the place
// behind what it has put.

#ifndef TROVISK_FRAME_REPORT_PUT_H
#define TROVISK_FRAME_REPORT_PUT_H

#include <algorithm>
#include <string>
#include <string_view>

#include "frame/bytes.h"
#include "frame/report/settings.h"

namespace trovisk {

inline char* PutText(char* out, std::string_view text) {
  return std::copy(text.begin(), text.end(), out);
}

// A number, padded with blanks to the width. It takes the larger of kNumberText and the width.
inline constexpr std::size_t kNumberText = 20;
char* PutNumber(char* out, u64 value, ReportSettings settings, std::size_t width = 0);

// Wide text in the C locale's narrow characters, '?' for those that it does not have, up to the first NUL.
// Each takes up to kNarrowText.
inline constexpr std::size_t kNarrowText = 16;
char* PutNarrow(char* out, WideText text);
std::string Narrow(WideText text);

}  // namespace trovisk

#endif
