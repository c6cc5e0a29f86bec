#include "map/compare.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>

#include "frame/examination.h"
#include "map/differences.h"
#include "map/document.h"
#include "map/json_map.h"
#include "map/survey.h"

namespace trovisk {
namespace {

constexpr std::size_t kLargest = std::size_t{1} << 28;  // bytes; no map is larger

// Digits alone name a disk, whatever files there are.
bool IsNumber(const std::string& argument) {
  return std::all_of(argument.begin(), argument.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A saved map as it stands in the file, cut where it is too large; none where the file is something else.
std::optional<std::string> SavedMap(const std::string& argument) {
  if (IsNumber(argument)) return std::nullopt;
  std::ifstream file(std::filesystem::path(std::u8string(argument.begin(), argument.end())),
                     std::ios::binary);
  std::string text;
  std::array<char, 65536> piece{};
  while (file && text.size() <= kLargest) {
    file.read(piece.data(), piece.size());
    text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    if (!LooksLikeDocument(text)) break;
  }
  if (!LooksLikeDocument(text)) return std::nullopt;
  return text;
}

// The map of a disk as it would be saved, but for the texts: they follow from the bytes.
std::optional<std::string> SurveyedMap(const std::string& argument) {
  const auto map = SurveyDisk(argument.c_str());
  if (!map) return std::nullopt;
  std::string text;
  const auto structures = [](const std::function<void(const Structure&)>& visit) {
    VisitStructures([&](const Structure& structure) {
      Structure shortened = structure;
      shortened.text.clear();
      visit(shortened);
    });
  };
  WriteMapAsJson(*map, structures, [&](std::string_view piece) { text.append(piece); });
  CloseSurvey();
  return text;
}

std::optional<Document> DocumentOf(const std::string& argument, std::string& complaint) {
  auto text = SavedMap(argument);
  if (!text) text = SurveyedMap(argument);
  if (!text) return std::nullopt;
  std::optional<Document> document;
  if (text->size() > kLargest) {
    complaint = "is too large for a map";
  } else {
    document = ParseDocument(*text, complaint);
  }
  if (!document) complaint = SafeUtf8(argument) + " " + complaint;
  return document;
}

}  // namespace

int CompareMaps(const std::string& before, const std::string& after,
                const std::function<void(std::string_view)>& write, std::string& complaint) {
  const auto first = DocumentOf(before, complaint);
  if (!first) return kMapsNotCompared;
  const auto second = DocumentOf(after, complaint);
  if (!second) return kMapsNotCompared;
  return WriteDifferences(*first, *second, write) == 0 ? kMapsEqual : kMapsDiffer;
}

}  // namespace trovisk
