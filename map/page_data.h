// The JSON document inside of a page.

#ifndef TROVISK_MAP_PAGE_DATA_H
#define TROVISK_MAP_PAGE_DATA_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

struct z_stream_s;

namespace trovisk {

// Takes a JSON document piece by piece, and writes it as a script element that no browser runs: as it is, but
// for
// '<', '>' and '&', which are escaped, so that no text of the disk ends the element. A document beyond
// kMostPlain is compressed (zlib's form, RFC 1950) and written in base64.
class PageData {
 public:
  static constexpr std::size_t kMostPlain = std::size_t{2} << 20;

  explicit PageData(std::function<void(std::string_view)> write);
  ~PageData();
  PageData(const PageData&) = delete;
  PageData& operator=(const PageData&) = delete;

  void Add(std::string_view piece);
  void Finish();

 private:
  void Compress(std::string_view text, bool last);
  void WritePacked(bool last);

  std::function<void(std::string_view)> write_;
  std::string plain_;                   // what was taken, while it is short
  std::unique_ptr<z_stream_s> stream_;  // none while it is
  std::vector<u8> packed_;              // not written yet: base64 takes three bytes at a time
};

}  // namespace trovisk

#endif
