// KLOG, one sector of the transaction log of a dynamic disk's object database.
//
// Stands at the start of the log region; every sector states how many there are. The counters are big-endian,
// the transaction identifiers little-endian. Layout: the Linux-NTFS project's LDM documentation, "KLOG".
// Checked: the signature. Not checked: the counters; identifiers beyond the sector are left out.

#include <algorithm>
#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "ldm/ldm_state.h"

namespace trovisk {
namespace {

constexpr std::size_t kSignature = 0x00;  // "KLOG"
constexpr std::size_t kLogCount = 0x0C;   // u32
constexpr std::size_t kKlogCount = 0x10;  // u32, sectors of the log
constexpr std::size_t kKlogIndex = 0x14;  // u32
constexpr std::size_t kIdentifiers = 0x19;
constexpr std::size_t kIdentifierSize = 8;

// As many pairs as lie in the sector: each takes one identifier and the one behind it.
constexpr u32 kMaxPairs = (512 - kIdentifiers) / kIdentifierSize - 1;

constexpr FieldRow kCounterRows[] = {
    {"Log Count       : ", kLogCount, Format::kBe32},
    {"Number of KLOGs : ", kKlogCount, Format::kBe32},
    {"KLOG Index      : ", kKlogIndex, Format::kBe32},
};
static_assert(FieldsFit(kCounterRows, 512));

void PrintReport(SectorView klog) {
  std::cout << "Magic Number    : [KLOG]" << LineEnd;
  PrintFields(klog, kCounterRows);
  const u32 pairs = std::min(Be32<kLogCount>(klog), kMaxPairs);
  for (u32 n = 1; n <= pairs; ++n) {
    // The pairs overlap: what is pending in one is committed in the next.
    const u64 committed = kIdentifiers + kIdentifierSize * (u64{n} - 1);
    std::cout << "Committed Id. # " << n << " : " << Le64At(klog, committed) << LineEnd;
    std::cout << "Pending Id. # " << n << "   : " << Le64At(klog, committed + kIdentifierSize) << LineEnd;
  }
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeKlog(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView klog(buffer);
  if (!EqualsText(Part<kSignature, 4>(klog), "KLOG")) {
    ErrorLine() << "**** No KLOG magic found ****\n";
    return kEndPass;
  }
  if (print) PrintReport(klog);
  const u64 next = sector + 1;
  const u64 last = u64{Be32<kKlogCount>(klog)} + LdmKlogStartSector - 1;
  if (next <= last) AddTocEntry(disk, next, DecodeKlog, L"KLOG Sector");
  return next;
}

}  // namespace trovisk
