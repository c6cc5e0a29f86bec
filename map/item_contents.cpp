#include "map/item_contents.h"

#include <zlib.h>

#include <cstring>

namespace trovisk {
namespace {

void AppendNumber(std::vector<u8>& bytes, u64 number) {
  const std::size_t place = bytes.size();
  bytes.resize(place + sizeof number);
  std::memcpy(bytes.data() + place, &number, sizeof number);
}

void AppendText(std::vector<u8>& bytes, std::string_view text) {
  AppendNumber(bytes, text.size());
  bytes.insert(bytes.end(), text.begin(), text.end());
}

// Only what was packed here is taken out again, so that nothing is missing.
u64 TakeNumber(std::string_view& text) {
  u64 number = 0;
  std::memcpy(&number, text.data(), sizeof number);
  text.remove_prefix(sizeof number);
  return number;
}

std::string_view TakeText(std::string_view& text) {
  const u64 size = TakeNumber(text);
  const std::string_view piece = text.substr(0, size);
  text.remove_prefix(size);
  return piece;
}

}  // namespace

std::string Pack(const ItemContents& contents) {
  if (contents.fields.empty() && contents.bytes.empty()) return {};
  std::vector<u8> plain;
  AppendNumber(plain, contents.fields.size());
  for (const DocumentField& field : contents.fields) {
    AppendText(plain, field.label);
    AppendText(plain, field.value);
    AppendNumber(plain, field.offset ? 1 : 0);
    AppendNumber(plain, field.offset.value_or(0));
    AppendNumber(plain, field.length);
  }
  plain.insert(plain.end(), contents.bytes.begin(), contents.bytes.end());

  std::vector<u8> packed;
  AppendNumber(packed, plain.size());
  uLongf size = compressBound(static_cast<uLong>(plain.size()));
  packed.resize(sizeof(u64) + size);
  if (compress2(packed.data() + sizeof(u64), &size, plain.data(), static_cast<uLong>(plain.size()),
                Z_BEST_SPEED) != Z_OK)
    throw std::bad_alloc();
  return {packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(sizeof(u64) + size)};
}

ItemContents Unpack(std::string_view packed) {
  ItemContents contents;
  if (packed.empty()) return contents;
  uLongf size = static_cast<uLongf>(TakeNumber(packed));
  std::vector<u8> plain(size);
  const std::vector<u8> input(packed.begin(), packed.end());
  if (uncompress(plain.data(), &size, input.data(), static_cast<uLong>(input.size())) != Z_OK)
    throw std::bad_alloc();
  const std::string text(plain.begin(), plain.end());
  std::string_view rest = text;
  for (u64 left = TakeNumber(rest); left > 0; --left) {
    DocumentField field{std::string(TakeText(rest)), std::string(TakeText(rest))};
    const bool placed = TakeNumber(rest) != 0;
    const u64 offset = TakeNumber(rest);
    if (placed) field.offset = offset;
    field.length = TakeNumber(rest);
    contents.fields.push_back(std::move(field));
  }
  contents.bytes.assign(rest.begin(), rest.end());
  return contents;
}

}  // namespace trovisk
