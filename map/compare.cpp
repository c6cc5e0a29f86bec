#include "map/compare.h"

#include <algorithm>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>

#include "frame/examination.h"
#include "map/differences.h"
#include "map/document.h"
#include "map/saved_map.h"
#include "map/survey.h"

namespace trovisk {
namespace {

// Digits alone name a disk, whatever files there are.
bool IsNumber(const std::string& argument) {
  return std::all_of(argument.begin(), argument.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Of a disk in an image file, or of a saved map. Nothing else is read to see what it is: a device has a size,
// and a pipe can be read once.
bool IsFile(const std::string& argument, bool& pipe) {
  std::error_code error;
  const auto status =
      std::filesystem::status(std::filesystem::path(std::u8string(argument.begin(), argument.end())), error);
  pipe = std::filesystem::is_fifo(status);
  return !IsNumber(argument) && (pipe || std::filesystem::is_regular_file(status));
}

std::optional<Document> SavedDocument(SavedMap& file, std::string& complaint) {
  std::istream text(&file);
  auto document = ParseDocument(text, complaint);
  if (!file.Complaint().empty()) complaint = file.Complaint();
  return file.Complaint().empty() ? std::move(document) : std::nullopt;
}

std::optional<Document> SurveyedDocument(const std::string& argument, std::string& complaint) {
  const auto map = SurveyDisk(argument.c_str());
  if (!map) return std::nullopt;
  auto document = DocumentOf(*map, VisitStructures, complaint);
  CloseSurvey();
  if (!document) complaint = SafeUtf8(argument) + " " + complaint;
  return document;
}

std::optional<Document> DocumentFrom(const std::string& argument, std::string& complaint) {
  bool pipe = false;
  if (!IsFile(argument, pipe)) return SurveyedDocument(argument, complaint);
  const auto file = std::make_unique<SavedMap>(argument);
  std::optional<Document> document;
  if (LooksLikeDocument(file->Head())) {
    document = SavedDocument(*file, complaint);
  } else if (LooksLikeUtf16Document(file->Head())) {
    complaint = "is a map in UTF-16, as a shell has redirected it: write it with --output";
  } else if (pipe) {
    complaint = "is a pipe that gives no saved map";
  } else {
    return SurveyedDocument(argument, complaint);
  }
  if (!document) complaint = SafeUtf8(argument) + " " + complaint;
  return document;
}

}  // namespace

int CompareMaps(const std::string& before, const std::string& after,
                const std::function<void(std::string_view)>& write, std::string& complaint) {
  const auto first = DocumentFrom(before, complaint);
  if (!first) return kMapsNotCompared;
  const auto second = DocumentFrom(after, complaint);
  if (!second) return kMapsNotCompared;
  if (WriteDifferences(*first, *second, write) != 0) return kMapsDiffer;
  if (first->cut.empty()) return kMapsEqual;
  complaint = "no difference was found, but both maps leave something out: " + SafeUtf8(first->cut);
  return kMapsNotCompared;
}

}  // namespace trovisk
