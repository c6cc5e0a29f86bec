// The map as text: a table for a person on a terminal, lines for a program in a pipe.

#ifndef TROVISK_MAP_TEXT_MAP_H
#define TROVISK_MAP_TEXT_MAP_H

#include <string>

#include "map/model.h"

namespace trovisk {

struct TextStyle {
  bool forPerson = false;  // the table with the bar; else one extent a line, columns separated by tabs
  std::size_t width = 80;  // of the terminal, in columns
  bool colours = false;
  bool utf8 = true;  // whether the terminal shows block characters
};

std::string MapAsText(const DiskMap& map, const TextStyle& style);

}  // namespace trovisk

#endif
