// Notes a field that is printed by plain code, as the field tables do of themselves.

#ifndef TROVISK_FRAME_REPORT_NOTED_FIELD_H
#define TROVISK_FRAME_REPORT_NOTED_FIELD_H

#include <string_view>

#include "frame/report/field_notes.h"
#include "frame/report/report.h"

namespace trovisk {

// What is printed while it lives is the field's value. field: its bytes, of the record that was read last;
// none of a value that was computed. Without a label of its own the field is called what stands in front of
// it on the line.
class NotedField {
 public:
  explicit NotedField(Bytes field) : NotedField({}, field) {}
  NotedField(std::string_view label, Bytes field) : label_(label), field_(field), begin_(report.Size()) {}
  NotedField(const NotedField&) = delete;
  NotedField& operator=(const NotedField&) = delete;
  ~NotedField() {
    if (fieldNotes != nullptr) fieldNotes->NoteField(label_, begin_, report.Size(), field_);
  }

 private:
  std::string_view label_;
  Bytes field_;
  u64 begin_;
};

// The end of a line: what leads to the value, the value as print prints it, what stands behind it.
template <typename Print>
void PrintNotedLine(std::string_view lead, Bytes field, Print print, std::string_view suffix = {}) {
  report << lead;
  {
    const NotedField noted(field);
    print();
  }
  report << suffix << LineEnd;
}

}  // namespace trovisk

#endif
