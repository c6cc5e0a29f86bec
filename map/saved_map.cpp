#include "map/saved_map.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::size_t kHead = 4096;
constexpr u64 kLargest = u64{1} << 34;  // bytes: 16,384 structures in sectors of 64 KiB, and what is shown
constexpr u64 kLongestText = u64{1} << 23;  // bytes: more than the listing of a sector of 1 MiB

bool IsSpace(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

// Whether it is UTF-8 of which only the last character may be cut.
bool IsUtf8(std::string_view text) {
  for (std::size_t cut = 0; cut < 4 && cut <= text.size(); ++cut) {
    const std::string whole(text.substr(0, text.size() - cut));
    try {
      nlohmann::json(whole).dump();
      return true;
    } catch (const nlohmann::json::type_error&) {
      continue;
    }
  }
  return false;
}

}  // namespace

SavedMap::SavedMap(const std::string& path)
    : file_(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary) {
  head_ = Fill(kHead);
}

std::size_t SavedMap::Fill(std::size_t most) {
  std::size_t size = 0;
  // A pipe gives less than it was asked for.
  while (file_ && size < most) {
    file_.read(buffer_.data() + size, static_cast<std::streamsize>(most - size));
    size += static_cast<std::size_t>(file_.gcount());
  }
  EndIfInterrupted();  // which may be why no more was read
  setg(buffer_.data(), buffer_.data(), buffer_.data() + size);
  if (!Watch({buffer_.data(), size})) setg(buffer_.data(), buffer_.data(), buffer_.data());
  return size;
}

bool SavedMap::Watch(std::string_view piece) {
  size_ += piece.size();
  for (const char character : piece) {
    const bool quote = character == '"' && !escaped_;
    escaped_ = inText_ != 0 && character == '\\' && !escaped_;
    if (quote) {
      inText_ = inText_ == 0 ? 1 : 0;
    } else if (inText_ != 0 && ++inText_ > kLongestText + 1) {
      complaint_ = "is no map: a text in it is longer than " + std::to_string(kLongestText) + " bytes";
      return false;
    }
  }
  if (size_ > kLargest) complaint_ = "is too large for a map";
  return complaint_.empty();
}

SavedMap::int_type SavedMap::underflow() {
  if (!complaint_.empty() || Fill(buffer_.size()) == 0 || !complaint_.empty()) return traits_type::eof();
  return traits_type::to_int_type(*gptr());
}

bool LooksLikeDocument(std::string_view head) {
  if (head.starts_with("\xEF\xBB\xBF")) head.remove_prefix(3);
  const auto brace = std::find_if_not(head.begin(), head.end(), IsSpace);
  if (brace == head.end() || *brace != '{') return false;
  const auto next = std::find_if_not(brace + 1, head.end(), IsSpace);
  if (next == head.end() || (*next != '"' && *next != '}')) return false;
  const bool controls = std::any_of(head.begin(), head.end(), [](char character) {
    return static_cast<u8>(character) < 0x20 && !IsSpace(character);
  });
  return !controls && IsUtf8(head);
}

bool LooksLikeUtf16Document(std::string_view head) {
  if (!head.starts_with("\xFF\xFE")) return false;
  std::string narrow;
  for (std::size_t i = 2; i + 1 < head.size(); i += 2)
    narrow += head[i + 1] == 0 ? head[i] : '?';
  return LooksLikeDocument(narrow);
}

}  // namespace trovisk
