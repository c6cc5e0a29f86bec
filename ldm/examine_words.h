// What the examinations of a dynamic disk share: sums that do not wrap, and words for what was found.

#ifndef TROVISK_LDM_EXAMINE_WORDS_H
#define TROVISK_LDM_EXAMINE_WORDS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"
#include "frame/examination.h"

namespace trovisk {

// None where the sum wraps.
inline std::optional<u64> Sum(u64 a, u64 b) {
  if (b > ~a) return std::nullopt;
  return a + b;
}

// Whether count sectors from first on end at last or before; no sectors always do.
inline bool Within(u64 first, u64 count, u64 last) {
  return count == 0 || (first <= last && count - 1 <= last - first);
}

std::string SmallLetters(std::string text);
// "2.12"; version: major << 16 | minor.
std::string Version(u64 version);
// "2048 sectors from 63".
std::string SectorsFrom(u64 first, u64 count);

// One question asked of many records: one good answer for all of them, or an answer for each that is not, as
// far as there is room.
class ManyChecks {
 public:
  ManyChecks(std::string_view name, std::vector<Check>& checks) : name_(name), checks_(checks) {}

  void Add(Verdict verdict, u64 sector, std::string found, std::string expected);

  // When all were asked. sector: that the good answer is about. Where some were left out a remark says so.
  void Finish(u64 sector, std::string_view good, std::vector<std::string>& remarks);

 private:
  std::string_view name_;
  std::vector<Check>& checks_;
  u64 count_ = 0;
};

}  // namespace trovisk

#endif
