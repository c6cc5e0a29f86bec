// A file that is written whole or not at all: through a temporary one beside it, which takes its name at the
// end. One file per system implements it. Where an interrupted run ends before that, nothing is left of it.

#ifndef TROVISK_MAP_OUTPUT_FILE_H
#define TROVISK_MAP_OUTPUT_FILE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/error_code.h"

namespace trovisk {

class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { Discard(); }

  // Each gives whether it worked; where it has not, Complaint says why, nothing is left of the temporary
  // file, and what was at the path is as it was.

  // Makes the temporary file. Refused where the path is a disk, a device or a folder, or one of the disks
  // that are read: disks: their arguments, in UTF-8.
  bool Open(const std::string& path, const std::vector<std::string>& disks);
  bool Write(std::string_view text);
  // What was written is on the medium when the path shows it.
  bool Commit();

  void Discard();

  const std::string& Complaint() const { return complaint_; }  // a line

 private:
  // Each gives false.
  bool Refuse(std::string_view why);
  bool Fail(ErrorCode error);

  std::string path_;       // as given
  std::string target_;     // what is replaced: where a link leads
  std::string temporary_;  // empty: there is none
  std::intptr_t handle_ = -1;
  std::string complaint_;
};

// Whether the path is called as a further piece of one of the disks would be: disk.002 beside disk.001,
// disk.E02 beside disk.E01. Pieces are not open yet when an output is.
bool IsNamedAsPieceOf(const std::string& path, const std::vector<std::string>& disks);

// What the files of disks may be called: each argument, and "disk.img" beside "disk.img@4096".
std::vector<std::string> PathsOfDisks(const std::vector<std::string>& disks);

}  // namespace trovisk

#endif
