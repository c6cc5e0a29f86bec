// The values of one item of a document, one behind the other in one text: a document has many thousands, most
// of them a few bytes long.

#ifndef TROVISK_MAP_ITEM_VALUES_H
#define TROVISK_MAP_ITEM_VALUES_H

#include <cstring>
#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

class ItemValues {
 public:
  ItemValues() = default;
  ItemValues(std::initializer_list<std::string_view> values) {
    for (const std::string_view value : values)
      Add(value);
  }

  void Add(std::string_view value) {
    const u32 size = static_cast<u32>(value.size());
    char bytes[sizeof size];
    std::memcpy(bytes, &size, sizeof size);
    text_.append(bytes, sizeof size).append(value.substr(0, size));
    ++count_;
  }

  std::size_t Count() const { return count_; }
  std::size_t Bytes() const { return text_.size(); }  // that they take

  // Empty where there is none.
  std::string_view operator[](std::size_t index) const {
    std::string_view rest = text_;
    for (;;) {
      u32 size = 0;
      if (rest.size() < sizeof size) return {};
      std::memcpy(&size, rest.data(), sizeof size);
      rest.remove_prefix(sizeof size);
      if (index-- == 0) return rest.substr(0, size);
      rest.remove_prefix(size);
    }
  }

 private:
  std::string text_;  // of each: its size in bytes, in the machine's order, and its characters
  std::size_t count_ = 0;
};

}  // namespace trovisk

#endif
