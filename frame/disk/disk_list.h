// The disks of this machine, for whoever has to name one.

#ifndef TROVISK_FRAME_DISK_DISK_LIST_H
#define TROVISK_FRAME_DISK_DISK_LIST_H

#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

// One of them. Its texts are printable ASCII, whatever the disk calls itself.
struct ListedDisk {
  u64 number = 0;           // as the command line takes it
  std::string device = {};  // its path
  u64 bytes = 0;            // its length; 0 where the system does not say
  std::string model = {};   // empty where the system does not say
};

// In the order of their numbers; those alone that the system lists, which need not be readable. One file per
// system implements it, and knows that system.
std::vector<ListedDisk> ListDisks();

// A length in the largest binary unit that it fills, with one decimal place but for bytes: "465.8 GiB".
std::string SizeText(u64 bytes);

// What the system tells of a disk, for that file: each is silent about text that it cannot use.

// Text without the blanks and line ends around it, '?' for what is not printable ASCII.
std::string Printable(std::string_view text);

// The length of a disk that is written as a decimal number of 512-byte units; 0 where there is no such
// number.
u64 BytesOfUnits(std::string_view text);

// The model in a storage device descriptor of Windows: the vendor's name and the product's.
std::string ModelOf(Bytes descriptor);

}  // namespace trovisk

#endif
