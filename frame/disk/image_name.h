// How the disk argument names an image file.

#ifndef TROVISK_FRAME_DISK_IMAGE_NAME_H
#define TROVISK_FRAME_DISK_IMAGE_NAME_H

#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// The N of "PATH@N", a decimal number of bytes per sector, from 1 to 1048576; 0 where the argument does not
// have that form. path then receives what stands in front of it.
template <typename Character>
u32 SectorSizeOfName(const std::basic_string<Character>& argument, std::basic_string<Character>& path) {
  constexpr u32 kLargest = 1048576;
  const std::size_t at = argument.rfind(Character{'@'});
  if (at == argument.npos || at + 1 == argument.size()) return 0;
  u32 size = 0;
  for (const Character digit : argument.substr(at + 1)) {
    if (digit < Character{'0'} || digit > Character{'9'}) return 0;
    size = size * 10 + static_cast<u32>(digit - Character{'0'});
    if (size > kLargest) return 0;
  }
  if (size != 0) path = argument.substr(0, at);
  return size;
}

// The names of the pieces of a raw image that was split, in their order. first: the path of the first one,
// which ends in .000, .001 or .aa.
class PieceNames {
 public:
  // Whether the path is one of a first piece.
  static bool IsFirst(std::string_view path);

  // The piece that stands before this one where both are pieces: disk.001 before disk.002, disk.aa before
  // disk.ab. Empty: the path does not end like that of a further piece, or no first piece of its name is
  // there, so that the endings count something else, such as days.
  static std::string Before(std::string_view path, bool (*exists)(const std::string& path));

  // Whether the path is one of several pieces that stand side by side.
  static bool IsOneOfSeveral(std::string_view path, bool (*exists)(const std::string& path));

  explicit PieceNames(std::string_view first);

  // The path of the piece behind the last one that was given, the second one at first. Numbers go on beyond
  // 999 with four digits, letters as "split" goes on: behind yz either za or zaaa. Empty: there are no more.
  // exists: whether a path is there.
  std::string Next(bool (*exists)(const std::string& path));

  // The path of the piece that Next has looked for in vain, where one of the thousand behind it is there: it
  // is missing. Empty: none is.
  std::string Missing(bool (*exists)(const std::string& path)) const;

 private:
  std::string base_;    // up to and with the dot
  std::string suffix_;  // of the last piece
};

}  // namespace trovisk

#endif
