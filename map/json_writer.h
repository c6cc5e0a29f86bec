// A JSON document on its way out, value by value: what is written is not kept.

#ifndef TROVISK_MAP_JSON_WRITER_H
#define TROVISK_MAP_JSON_WRITER_H

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

// Keeps its members in the order in which they were added.
using Json = nlohmann::ordered_json;

// Takes a document piece by piece.
using WriteText = std::function<void(std::string_view)>;

// Programs that keep numbers in a double lose those above 2^53: these become strings of decimal digits.
Json JsonNumber(u64 number);

// The value on one line, in UTF-8 whatever its strings hold: U+FFFD for what is no UTF-8, \uXXXX for what a
// terminal must not see.
std::string JsonText(const Json& value);

// Writes an object or a list whose members come one at a time, two blanks a level, one member a line.
class JsonWriter {
 public:
  explicit JsonWriter(WriteText write) : write_(std::move(write)) {}

  // Begins an object or a list, up to its Close. key: empty in a list and for the document itself.
  void OpenObject(std::string_view key = {}) { Open(key, '{'); }
  void OpenList(std::string_view key) { Open(key, '['); }
  void Close();

  // A member of an object; an item of a list.
  void Member(std::string_view key, const Json& value);
  void Item(const Json& value) { Member({}, value); }

 private:
  void Open(std::string_view key, char bracket);
  std::string LineStart(std::string_view key);

  WriteText write_;
  std::vector<char> open_;  // the brackets that close what is open
  bool empty_ = true;       // nothing stands behind the last bracket yet
};

}  // namespace trovisk

#endif
