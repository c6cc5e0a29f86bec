#include "map/page_data.h"

#include <zlib.h>

#include <array>

#include "map/base64.h"

namespace trovisk {
namespace {

// '<', '>' and '&' stand in no place of a JSON document but inside of strings.
std::string WithoutMarkup(std::string_view json) {
  std::string text;
  text.reserve(json.size());
  for (const char character : json) {
    switch (character) {
      case '<':
        text += "\\u003c";
        break;
      case '>':
        text += "\\u003e";
        break;
      case '&':
        text += "\\u0026";
        break;
      default:
        text += character;
    }
  }
  return text;
}

}  // namespace

PageData::PageData(std::function<void(std::string_view)> write) : write_(std::move(write)) {}

PageData::~PageData() {
  if (stream_) deflateEnd(stream_.get());
}

void PageData::Add(std::string_view piece) {
  if (stream_) {
    Compress(piece, false);
    return;
  }
  plain_ += WithoutMarkup(piece);
  if (plain_.size() <= kMostPlain) return;
  stream_ = std::make_unique<z_stream_s>();
  if (deflateInit(stream_.get(), Z_DEFAULT_COMPRESSION) != Z_OK) throw std::bad_alloc();
  write_("<script type=\"text/plain\" id=\"data\">");
  Compress(plain_, false);
  plain_ = {};
}

void PageData::Finish() {
  if (stream_) {
    Compress({}, true);
    WritePacked(true);
  } else {
    write_("<script type=\"application/json\" id=\"data\">");
    write_(plain_);
  }
  write_("</script>");
}

void PageData::Compress(std::string_view text, bool last) {
  std::vector<u8> input(text.begin(), text.end());
  std::array<u8, 16384> output;
  stream_->next_in = input.data();
  stream_->avail_in = static_cast<uInt>(input.size());
  do {
    stream_->next_out = output.data();
    stream_->avail_out = static_cast<uInt>(output.size());
    deflate(stream_.get(), last ? Z_FINISH : Z_NO_FLUSH);
    packed_.insert(packed_.end(), output.begin(), output.end() - stream_->avail_out);
  } while (stream_->avail_out == 0);
  WritePacked(false);
}

void PageData::WritePacked(bool last) {
  const std::size_t length = last ? packed_.size() : packed_.size() - packed_.size() % 3;
  if (length == 0) return;
  write_(Base64(Bytes(packed_).first(length)));
  packed_.erase(packed_.begin(), packed_.begin() + static_cast<std::ptrdiff_t>(length));
}

}  // namespace trovisk
