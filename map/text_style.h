// How the map is shown as text.

#ifndef TROVISK_MAP_TEXT_STYLE_H
#define TROVISK_MAP_TEXT_STYLE_H

#include <cstddef>

namespace trovisk {

struct TextStyle {
  bool forPerson = false;  // the table with the bar; else records, a line each, columns separated by tabs
  std::size_t width = 80;  // of the terminal, in columns
  bool colours = false;
  bool utf8 = true;  // whether the terminal shows block characters
  bool all = false;  // every row and every check for a person too; records always have all
};

}  // namespace trovisk

#endif
