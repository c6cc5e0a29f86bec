#include "map/output_file.h"

#include <algorithm>

#include "frame/disk/image_name.h"
#include "frame/examination.h"
#include "frame/help_words.h"

namespace trovisk {

bool OutputFile::Refuse(std::string_view why) {
  Discard();
  complaint_ = SafeUtf8(path_).append(" is not written to: ").append(why).append("\n");
  return false;
}

bool OutputFile::Fail(ErrorCode error) {
  Discard();
  const std::string meaning = MeaningOf(error);
  complaint_ = SafeUtf8(path_) + " cannot be written, error " + std::to_string(static_cast<u32>(error));
  complaint_ += (meaning.empty() ? "" : ": " + meaning) + "\n";
  return false;
}

namespace {

// Digits, or letters and digits behind the letter of a format: what numbers the pieces of an image.
bool NumbersPieces(std::string_view extension) {
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  const auto isLetter = [](char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  };
  if (extension.size() < 2 || extension.size() > 4) return false;
  if (std::all_of(extension.begin(), extension.end(), isDigit)) return true;
  const bool word = std::all_of(extension.begin(), extension.end(),
                                [&](char character) { return isDigit(character) || isLetter(character); });
  const bool numbered = isLetter(extension[0]) && std::any_of(extension.begin(), extension.end(), isDigit);
  return word && (extension.size() == 2 || (extension.size() == 3 && numbered));
}

// The path up to its last dot; empty where what follows does not number pieces.
std::string_view StemOfPieces(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || !NumbersPieces(path.substr(dot + 1))) return {};
  return path.substr(0, dot + 1);
}

std::string_view NameOf(std::string_view path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace

bool IsNamedAsPieceOf(const std::string& path, const std::vector<std::string>& disks) {
  const std::string_view stem = StemOfPieces(NameOf(path));
  if (stem.empty()) return false;
  const std::vector<std::string> paths = PathsOfDisks(disks);
  return std::any_of(paths.begin(), paths.end(),
                     [&](const std::string& disk) { return StemOfPieces(NameOf(disk)) == stem; });
}

std::vector<std::string> PathsOfDisks(const std::vector<std::string>& disks) {
  std::vector<std::string> paths = disks;
  for (const std::string& argument : disks) {
    std::string path;
    if (SectorSizeOfName(argument, path) != 0) paths.push_back(path);
  }
  return paths;
}

}  // namespace trovisk
