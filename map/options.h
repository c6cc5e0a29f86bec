// What the command line of trovisk-map asks for.

#ifndef TROVISK_MAP_OPTIONS_H
#define TROVISK_MAP_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

enum class MapForm : u8 { kText, kJson, kPage, kSfdisk, kCompare, kList };
enum class ColourChoice : u8 { kAuto, kAlways, kNever };

// Texts are UTF-8; empty: not given.
struct MapOptions {
  std::string disk;
  std::string other;   // --compare: with which the disk is compared
  std::string output;  // the file that is written in place of standard output
  MapForm form = MapForm::kText;
  ColourChoice colour = ColourChoice::kAuto;
  std::size_t width = 0;  // columns; 0: the terminal's
  bool all = false;
};

// Whether the arguments ask for a comparison, well or not: whatever ends that has a status of its own.
bool AsksForComparison(const std::vector<std::string>& arguments);

// Takes the arguments behind the program's name. None where the program is to end, with status: after an
// answer on standard output (0), or a complaint on standard error (as it is).
std::optional<MapOptions> TakeOptions(std::vector<std::string> arguments, int& status);

}  // namespace trovisk

#endif
