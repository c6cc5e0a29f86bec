// The words of Linux: block devices and image files, errno.

#include <cerrno>
#include <cstring>

#include "frame/help_words.h"

namespace trovisk {

const HelpWords kHelpWords = {
    .diskArgument = R"(  disk          a number    the disk of that number, counted from 0
                a device    the path of a block device
                an image    the path of an image file
                PATH@N      an image file with sectors of N bytes
)",
    .examples = R"(  trovisk 0                    the first disk as a whole
  trovisk /dev/sda 1           the second sector, where a GPT header stands
  trovisk disk.img@4096 0 63   the first 64 sectors, of 4096 bytes, of an image
)",
    .more = "More: man trovisk\n",
    .naming = R"(A disk is named by its number, by the path of its device (/dev/sda), or by the
path of an image file (disk.img, or disk.img@4096 for sectors of 4096 bytes).
)",
    .accessDenied = "Reading a disk takes the rights of root: run the same command as root (sudo).\n",
};

std::string MeaningOf(ErrorCode error) {
  return error == kErrorWithoutCode ? "" : std::strerror(static_cast<int>(error));
}

bool IsAccessDenied(ErrorCode error) {
  return error == EACCES;
}

}  // namespace trovisk
