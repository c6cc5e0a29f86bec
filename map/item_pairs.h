// Which items of two lists are the same thing.

#ifndef TROVISK_MAP_ITEM_PAIRS_H
#define TROVISK_MAP_ITEM_PAIRS_H

#include <span>
#include <utility>
#include <vector>

#include "map/document.h"

namespace trovisk {

// Values that tell an item from others: not where the last of them is empty, unless they are all that there
// are.
using ItemKey = std::vector<std::size_t>;

struct ItemPairs {
  std::vector<std::pair<const DocumentItem*, const DocumentItem*>> pairs;  // in the order of the first list;
                                                                           // null: there is none
  std::vector<const DocumentItem*> added;                                  // of the second list, in its order
};

// Pairs the items that have equal values under the first key, then of the rest those under the next. Of
// several equal ones the first goes with the first.
ItemPairs PairItems(const DocumentItems& before, const DocumentItems& after, std::span<const ItemKey> keys);

}  // namespace trovisk

#endif
