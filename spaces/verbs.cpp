#include "spaces/verbs.h"

#include <iostream>

#include "frame/decode.h"
#include "frame/dump.h"
#include "frame/fields.h"

namespace trovisk {

void PrintRevision(FixedBytes<4> revision) {
  std::cout << revision[0] * 1000.0 + revision[1] * 100.0 + revision[2] * 10.0 + revision[3] / 100.0;
}

bool ShowAsRawSector(u64 sector, bool print) {
  std::cout << LineEnd;
  if (!SeekToSector(sector)) return false;
  DumpRawSector(L"as a raw sector", sector, print);
  std::cout << LineEnd;
  return true;
}

void PrintUnnamedWords(std::string_view label, Bytes words) {
  for (std::size_t i = 0; i < words.size(); i += 4) {
    std::cout << label;
    PrintHexBytes(SliceAt(words, i, 4));
    std::cout << " (" << Le32At(words, i) << ")" << LineEnd;
  }
}

}  // namespace trovisk
