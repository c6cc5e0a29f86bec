// What each decoder's structure is called for programs, and whether it may be absent.

#ifndef TROVISK_MAP_STRUCTURE_NAMES_H
#define TROVISK_MAP_STRUCTURE_NAMES_H

#include <string_view>

#include "frame/toc.h"

namespace trovisk {

struct StructureKind {
  SectorDecoder decoder;
  std::string_view name;         // "gpt_header"
  bool optional = false;         // a place where the structure may stand, or the end of a list of them
  bool volume = false;           // the first sector of a volume: all zeros where nothing was formatted yet
  bool showsToRegister = false;  // registers what it names while it reports, not before
  bool alike = false;            // a long run of them says the same: its first ones speak for all
};

const StructureKind& KindOf(SectorDecoder decoder);

// What a decoder made of a sector.
struct Reading {
  u64 sector = 0;
  u64 next = 0;  // the sector that it returned
  bool complained = false;
  bool readable = false;  // the sector, by itself
};

// Whether the structure is sound as far as its decoder sees, or absent where none need stand.
bool IsValid(SectorDecoder decoder, const Reading& reading);

}  // namespace trovisk

#endif
