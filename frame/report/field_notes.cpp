#include "frame/report/field_notes.h"

#include <utility>

namespace trovisk {
namespace {

std::uintptr_t AddressOf(Bytes bytes) {
  return reinterpret_cast<std::uintptr_t>(
      bytes.data());  // NOLINT(*-reinterpret-cast): compared, not followed
}

}  // namespace

void FieldNotes::NoteRecord(Bytes record) {
  record_ = AddressOf(record);
  size_ = record.size();
}

void FieldNotes::NoteField(std::string_view label, u64 begin, u64 end, Bytes field) {
  FieldNote note{.label = label, .begin = begin, .end = end, .length = field.size(), .offset = {}};
  const std::uintptr_t distance = AddressOf(field) - record_;  // wraps where the field lies elsewhere
  if (distance < size_ && field.size() <= size_ - distance) note.offset = distance;
  notes_.push_back(note);
}

std::vector<FieldNote> FieldNotes::Take() {
  return std::exchange(notes_, {});
}

}  // namespace trovisk
