#include "map/item_contents.h"

#include <zlib.h>

#include <cstring>

namespace trovisk {
namespace {

void AppendNumber(std::string& text, u64 number) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  text.append(bytes, sizeof bytes);
}

void AppendText(std::string& text, std::string_view piece) {
  AppendNumber(text, piece.size());
  text.append(piece);
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
  std::string plain;
  AppendNumber(plain, contents.fields.size());
  for (const DocumentField& field : contents.fields) {
    AppendText(plain, field.label);
    AppendText(plain, field.value);
    AppendNumber(plain, field.offset ? 1 : 0);
    AppendNumber(plain, field.offset.value_or(0));
    AppendNumber(plain, field.length);
  }
  plain.append(contents.bytes.begin(), contents.bytes.end());

  uLongf size = compressBound(static_cast<uLong>(plain.size()));
  std::vector<u8> compressed(size);
  const std::vector<u8> input(plain.begin(), plain.end());
  if (compress2(compressed.data(), &size, input.data(), static_cast<uLong>(input.size()), Z_BEST_SPEED) !=
      Z_OK)
    throw std::bad_alloc();
  std::string packed;
  AppendNumber(packed, plain.size());
  packed.append(compressed.begin(), compressed.begin() + static_cast<std::ptrdiff_t>(size));
  packed.shrink_to_fit();
  return packed;
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
