// Catches what a decoder prints: the report's text, its fields with their places, and the error lines.

#ifndef TROVISK_MAP_CATCHER_H
#define TROVISK_MAP_CATCHER_H

#include <string>
#include <vector>

#include "frame/report/field_notes.h"

namespace trovisk {

// While one lives, nothing is printed. One at a time.
class Catcher {
 public:
  Catcher();
  Catcher(const Catcher&) = delete;
  Catcher& operator=(const Catcher&) = delete;
  ~Catcher();

  struct Caught {
    std::string text;
    std::vector<std::string> messages;  // the error lines
    std::vector<FieldNote> fields;      // begin and end count from the start of the text
  };

  // What was printed since the last time.
  Caught Take();

 private:
  std::string text_;
  std::string messages_;
  FieldNotes notes_;
  u64 start_;
};

}  // namespace trovisk

#endif
