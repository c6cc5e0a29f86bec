#include "map/output_file.h"

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

std::vector<std::string> PathsOfDisks(const std::vector<std::string>& disks) {
  std::vector<std::string> paths = disks;
  for (const std::string& argument : disks) {
    std::string path;
    if (SectorSizeOfName(argument, path) != 0) paths.push_back(path);
  }
  return paths;
}

}  // namespace trovisk
