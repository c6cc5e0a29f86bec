// Where the fields stand that a report's tables print, for whoever catches the report: beside the text, which
// bytes of the record each value comes from.

#ifndef TROVISK_FRAME_REPORT_FIELD_NOTES_H
#define TROVISK_FRAME_REPORT_FIELD_NOTES_H

#include <optional>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

struct FieldNote {
  std::string_view label;  // as the report has it; empty: what stands in front of the value on its line
  u64 begin = 0;           // of the value in the report: counted as Report::Size counts
  u64 end = 0;
  u64 length = 0;             // bytes of the record
  std::optional<u64> offset;  // bytes from the start of the record that was read last; none: not part of it
};

class FieldNotes {
 public:
  // The record that was read last. What it holds is not kept, only where it lies.
  void NoteRecord(Bytes record);
  void NoteField(std::string_view label, u64 begin, u64 end, Bytes field);
  std::vector<FieldNote> Take();

 private:
  std::uintptr_t record_ = 0;
  std::size_t size_ = 0;
  std::vector<FieldNote> notes_;
};

// Where fields are noted; null, as a rule: nowhere.
inline FieldNotes* fieldNotes = nullptr;

}  // namespace trovisk

#endif
