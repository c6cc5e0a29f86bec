#include "spaces/verbs.h"

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"

namespace trovisk {

void PrintRevisionLine(FixedBytes<4> revision) {
  PrintNotedLine("Revision                    : ", revision, [&] {
    PrintFraction(revision[0] * 1000.0 + revision[1] * 100.0 + revision[2] * 10.0 + revision[3] / 100.0);
  });
}

bool ShowAsRawSector(u64 sector, bool print) {
  report << LineEnd;
  if (DumpAsRawSectorAndGoOn(sector, print) == kEndPass) return false;
  report << LineEnd;
  return true;
}

void PrintUnnamedWords(std::string_view label, Bytes words) {
  for (std::size_t i = 0; i < words.size(); i += 4) {
    const Bytes word = SliceAt(words, i, 4);
    PrintNotedLine(label, word, [&] {
      PrintHexBytes(word);
      report << " (" << Le32At(word, 0) << ")";
    });
  }
}

}  // namespace trovisk
