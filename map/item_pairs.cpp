#include "map/item_pairs.h"

#include <algorithm>

namespace trovisk {
namespace {

// The place in its list of each item that has no other half yet, behind its values under a key.
using Keyed = std::vector<std::pair<std::string, std::size_t>>;

Keyed KeyedItems(const DocumentItems& items, const std::vector<bool>& paired, const ItemKey& key) {
  Keyed keyed;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ItemValues& values = items[i].values;
    if (paired[i] || (values[key.back()].empty() && key.size() < values.Count())) continue;
    std::string text;
    for (const std::size_t value : key)
      text.append(std::to_string(values[value].size())).append(":").append(values[value]);
    keyed.emplace_back(std::move(text), i);
  }
  std::sort(keyed.begin(), keyed.end());
  return keyed;
}

}  // namespace

ItemPairs PairItems(const DocumentItems& before, const DocumentItems& after, std::span<const ItemKey> keys) {
  std::vector<bool> pairedBefore(before.size());
  std::vector<bool> pairedAfter(after.size());
  std::vector<const DocumentItem*> partners(before.size());
  for (const ItemKey& key : keys) {
    const Keyed a = KeyedItems(before, pairedBefore, key);
    const Keyed b = KeyedItems(after, pairedAfter, key);
    for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
      if (i->first == j->first) {
        partners[i->second] = &after[j->second];
        pairedBefore[i->second] = pairedAfter[j->second] = true;
        ++i;
        ++j;
      } else if (i->first < j->first) {
        ++i;
      } else {
        ++j;
      }
    }
  }
  ItemPairs result;
  for (std::size_t i = 0; i < before.size(); ++i)
    result.pairs.emplace_back(&before[i], partners[i]);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (!pairedAfter[i]) result.added.push_back(&after[i]);
  }
  return result;
}

}  // namespace trovisk
