// What a document's item holds beside its values, compressed as long as nobody looks at it: so that the maps
// of two disks with a million partitions each fit into little memory.

#ifndef TROVISK_MAP_ITEM_CONTENTS_H
#define TROVISK_MAP_ITEM_CONTENTS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

// A labelled value, as text: numbers in decimal, lists of words with commas.
struct DocumentField {
  std::string label;
  std::string value;
  std::optional<u64> offset = {};  // bytes from the start of the sector, where the field stands in one place
  u64 length = 0;                  // bytes
};

struct ItemContents {
  std::vector<DocumentField> fields = {};
  std::vector<u8> bytes = {};  // of a structure's sector
};

// Equal contents give equal texts. Empty where there is nothing in them.
std::string Pack(const ItemContents& contents);
ItemContents Unpack(std::string_view packed);

}  // namespace trovisk

#endif
