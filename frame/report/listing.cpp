#include "frame/report/listing.h"

#include <algorithm>

#include "frame/report/hex_rows.h"
#include "frame/report/in_place.h"
#include "frame/report/put.h"
#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::string_view kDumpHeading = "\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n";

constexpr std::size_t kBlockBytes = 4096;  // formatted in place at once
static_assert(kDumpHeading.size() + kBlockBytes / kRowBytes * kRowText + 1 <= InPlace::kRoom);

// What stands around the rows: nothing, or the column heading and an empty line.
enum class Around { kNothing, kListing };

// Leaves the report in decimal and, once a byte has been shown, with capitals.
void PrintRows(Bytes bytes, std::size_t rows, Around around) {
  if (rows != 0) {
    ReportSettings& settings = InPlace::Settings();
    if (!bytes.empty()) settings.capitals = true;
    settings.hexadecimal = false;
  }
  const std::size_t blockRows = std::min(rows, kBlockBytes / kRowBytes);
  const std::size_t room = kDumpHeading.size() + blockRows * kRowText + 1;
  char* out = InPlace::Room(room);
  if (around == Around::kListing) out = PutText(out, kDumpHeading);
  const std::size_t end = rows * kRowBytes;
  for (std::size_t at = 0; at < end;) {
    const std::size_t blockEnd = std::min(at + kBlockBytes, end);
    const std::size_t wholeEnd = std::clamp(bytes.size() / kRowBytes * kRowBytes, at, blockEnd);
    out = PutRows(out, SliceAt(bytes, at, wholeEnd - at), at);
    for (at = wholeEnd; at < blockEnd; at += kRowBytes)
      out = PutShortRow(out, FromAt(bytes, at), at);
    if (at < end) {
      InPlace::Take(out);
      out = InPlace::Room(room);
    }
  }
  if (around == Around::kListing) *out++ = '\n';
  InPlace::Take(out);
}

}  // namespace

void PrintDumpHeading() {
  InPlace::Take(PutText(InPlace::Room(), kDumpHeading));
}

void PrintListing(Bytes bytes) {
  PrintRows(bytes, bytes.size() / kRowBytes, Around::kListing);
}

void PrintDumpRows(Bytes bytes, std::size_t rows) {
  PrintRows(bytes, rows, Around::kNothing);
}

}  // namespace trovisk
