// The known boot code: which stretch of a boot sector each named piece of code occupies, and the SHA-256 by
// which it is recognised. A digest tells code as exactly as a copy would, and needs none of a vendor's code.

#ifndef TROVISK_REFIMAGES_CATALOGUE_H
#define TROVISK_REFIMAGES_CATALOGUE_H

#include <optional>
#include <span>

#include "frame/bytes.h"
#include "refimages/sha256.h"

namespace trovisk {

enum class BootCode {
  // Master boot records
  kMbrMsDos330,             // MS-DOS 3.30 to Windows 95 A
  kMbrWindows95B,           // Windows 95 B, 98, 98 SE, ME: up to the disk time stamp
  kMbrWindows95BContinued,  // and behind it
  kMbrWindows2000,          // Windows 2000, XP, 2003
  kMbrUsbKey,               // generic USB key code
  kMbrWindowsVista,         // Windows Vista, 7
  kMbrWindows2008R2,        // Windows 2008 R2 and onwards
  // Volume boot sectors
  kFatMsWin41,
  kFatMsDos50,
  kFat32MsWin41,
  kFat32MsDos50,
  kFat32Vista,
  kFat32Windows8,
  kNtfsW1999,  // Windows 2000, XP, 2003
  kNtfsVista,
  kNtfsWindows7,
  kNtfsWindows8Beta,
  kNtfsWindows8,  // Windows 8, 10
  kExFat,
};

inline constexpr std::size_t kBootCodeCount = static_cast<std::size_t>(BootCode::kExFat) + 1;

struct BootCodeDigest {
  u64 sample;  // what SampleHash gives of the stretch: rules other codes out at once
  Sha256Digest whole;
};

struct BootCodeRow {
  BootCode code;
  std::size_t offset;                    // bytes from the start of the sector
  std::size_t length;                    // bytes
  std::optional<BootCodeDigest> digest;  // none: not known, matches nothing
};

// The rows in the order of the enumeration. The tests link rows of their own.
std::span<const BootCodeRow> BootCodeCatalogue();

// The row of one piece of code.
const BootCodeRow& RowOf(BootCode code);

// The stretch of the sector that the code would occupy, whatever is there.
Bytes StretchOf(BootCode code, SectorView sector);

// Whether exactly that code stands in the sector. Of the sector asked about last nothing is computed twice:
// who identifies a boot sector and the decoder that it is handed to ask the same.
bool Matches(BootCode code, SectorView sector);

// A hash of eight 64-bit words of the stretch, one in 32 bytes from its start on, much cheaper than the
// digest. The words are little-endian; what lies behind the stretch counts as zero.
u64 SampleHash(Bytes stretch);

// The digest of a stretch, for a row of it.
BootCodeDigest DigestOf(Bytes stretch);

}  // namespace trovisk

#endif
