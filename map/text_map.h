// The map as text: a table for a person on a terminal, lines for a program in a pipe.

#ifndef TROVISK_MAP_TEXT_MAP_H
#define TROVISK_MAP_TEXT_MAP_H

#include <string>

#include "map/model.h"
#include "map/text_style.h"

namespace trovisk {

std::string MapAsText(const DiskMap& map, const TextStyle& style);

// The map's parts for a person, each of whole lines; empty where there is nothing to show.
std::string TableOfExtents(const DiskMap& map, const TextStyle& style);
std::string ChecksForPerson(const DiskMap& map, const TextStyle& style);
std::string JoinedViews(const DiskMap& map, const TextStyle& style);

// What the map says as a whole, in one sentence.
std::string VerdictInWords(const DiskMap& map);

// Records, as the manual page describes them.
std::string MapAsRecords(const DiskMap& map);

}  // namespace trovisk

#endif
