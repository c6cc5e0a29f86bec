// KLOG, one sector of the transaction log of a dynamic disk's object database.
//
// Stands at the start of the log region; every sector states how many there are. The counters are big-endian,
// the transaction identifiers little-endian. Layout: the Linux-NTFS project's LDM documentation, "KLOG".
// Checked: the signature. Not checked: the counters; identifiers beyond the sector are left out.

#include <algorithm>

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/report.h"
#include "frame/sector.h"
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
    {"Magic Number    : [", kSignature, Chars(4), "]"},
    {"Log Count       : ", kLogCount, kBe32},
    {"Number of KLOGs : ", kKlogCount, kBe32},
    {"KLOG Index      : ", kKlogIndex, kBe32},
};
static_assert(FieldsFit(kCounterRows, 512));

void PrintReport(SectorView klog) {
  PrintFields(klog, kCounterRows);
  const u32 pairs = std::min(Be32<kLogCount>(klog), kMaxPairs);
  for (u32 n = 1; n <= pairs; ++n) {
    // The pairs overlap: what is pending in one is committed in the next.
    const u64 committed = kIdentifiers + kIdentifierSize * (u64{n} - 1);
    const u64 pending = committed + kIdentifierSize;
    report << "Committed Id. # " << n;
    PrintNotedLine(" : ", SliceAt(klog, committed, 8), [&] { report << Le64At(klog, committed); });
    report << "Pending Id. # " << n;
    PrintNotedLine("   : ", SliceAt(klog, pending, 8), [&] { report << Le64At(klog, pending); });
  }
  report << LineEnd;
}

}  // namespace

u64 DecodeKlog(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!record) return kEndPass;
  const SectorView klog(*record);
  if (!CheckSignature(Part<kSignature, 4>(klog), "KLOG", "KLOG")) return kEndPass;
  if (print) PrintReport(klog);
  const u64 next = sector + 1;
  const u64 last = u64{Be32<kKlogCount>(klog)} + LdmKlogStartSector - 1;
  if (next <= last) AddTocEntry(disk, next, DecodeKlog, L"KLOG Sector");
  return next;
}

}  // namespace trovisk
