// A file that may hold a map as JSON, read once from its start to its end: it may be a pipe.

#ifndef TROVISK_MAP_SAVED_MAP_H
#define TROVISK_MAP_SAVED_MAP_H

#include <array>
#include <fstream>
#include <streambuf>
#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// A stream over the file that ends early where the file asks for more memory than a map ever does.
class SavedMap : public std::streambuf {
 public:
  // path: in UTF-8. Reads the file's start; where it cannot be read that is empty.
  explicit SavedMap(const std::string& path);

  // What the file begins with: 4096 bytes, or all that there are.
  std::string_view Head() const { return {buffer_.data(), head_}; }

  // Why the stream has ended early, in words that go on behind the file's name; empty: it has not.
  const std::string& Complaint() const { return complaint_; }

 protected:
  int_type underflow() override;

 private:
  std::size_t Fill(std::size_t most);
  bool Watch(std::string_view piece);

  std::ifstream file_;
  std::array<char, 65536> buffer_{};
  std::size_t head_ = 0;
  u64 size_ = 0;          // bytes so far
  u64 inText_ = 0;        // 1 and the bytes since a string has begun; 0: in none
  bool escaped_ = false;  // the next character of the string
  std::string complaint_;
};

// Whether a file that begins so is a saved map, not a disk: an object with a member, in text without control
// characters. The end mark of a boot sector is no UTF-8, a GPT header holds zeros, so that no disk with
// partitions is one.
bool LooksLikeDocument(std::string_view head);

// Whether it is one in UTF-16, as some shells redirect.
bool LooksLikeUtf16Document(std::string_view head);

}  // namespace trovisk

#endif
