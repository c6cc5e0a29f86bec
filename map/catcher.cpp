#include "map/catcher.h"

#include <utility>

#include "frame/report/report.h"

namespace trovisk {

Catcher::Catcher() : start_(report.Size()) {
  report.DirectTo(&text_);
  errors.DirectTo(&messages_);
  fieldNotes = &notes_;
}

Catcher::~Catcher() {
  fieldNotes = nullptr;
  report.DirectTo(nullptr);
  errors.DirectTo(nullptr);
}

Catcher::Caught Catcher::Take() {
  report.Flush();
  errors.Flush();
  Caught caught{.text = std::exchange(text_, {}), .messages = {}, .fields = notes_.Take()};
  for (std::size_t from = 0; from < messages_.size();) {
    const std::size_t end = std::min(messages_.find('\n', from), messages_.size());
    caught.messages.push_back(messages_.substr(from, end - from));
    from = end + 1;
  }
  messages_.clear();
  for (FieldNote& note : caught.fields) {
    note.begin -= start_;
    note.end -= start_;
  }
  start_ += caught.text.size();
  return caught;
}

}  // namespace trovisk
