// VMDB, the header of a dynamic disk's object database: its version, its disk group and how many objects of
// each kind it holds, committed and pending.
//
// Opens the configuration region; the VBLK records follow it. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "VMDB".
// Checked: the signature. Not checked: the size and offset of the records, which no decoder uses.

#include "frame/report/field_table.h"
#include "frame/report/report.h"
#include "frame/sector.h"
#include "ldm/vmdb_layout.h"

namespace trovisk {
namespace {

using namespace vmdb;

constexpr ValueName kUpdateStatuses[] = {
    {1, "[Consistent]"},
    {2, "[Creation Phase]"},
    {3, "[Deletion Phase]"},
};

constexpr FieldRow kHeaderRows[] = {
    {"Magic Number                     : [", kSignature, Chars(4), "]"},
    {"Sequence?                        : ", kSequence, kBe32, " (purpose unknown)"},
    {"Size of VBLK                     : ", kVblkSize, kBe32, " (sectors)"},
    {"VBLK Offset                      : ", kVblkOffset, kBe32},
    {"Update Status                    : ", kUpdateStatus, Named(2, kUpdateStatuses, "0x")},
    {"Major Number                     : 0x", kMajorVersion, HexBytes(2)},
    {"Minor Number                     : 0x", kMinorVersion, HexBytes(2)},
    {"Disk Group Name                  : [", kGroupName, Chars(31), "]"},
    {"Disk Group ID GUID               : {", kGroupId, Chars(64), "}"},
};
constexpr FieldRow kCountRows[] = {
    {"Committed Sequence               : ", kCommittedSequence, kBe64},
    {"Pending Sequence                 : ", kPendingSequence, kBe64},
    {"# of Committed Volume VBLKs      : ", kCommittedVolumes, kBe32},
    {"# of Pending Volume VBLKs        : ", kPendingVolumes, kBe32},
    {"# of Committed Component VBLKs   : ", kCommittedComponents, kBe32},
    {"# of Pending Component VBLKs     : ", kPendingComponents, kBe32},
    {"# of Committed Partition VBLKs   : ", kCommittedPartitions, kBe32},
    {"# of Pending Partition VBLKs     : ", kPendingPartitions, kBe32},
    {"# of Committed Disk VBLKs        : ", kCommittedDisks, kBe32},
    {"# of Pending Disk VBLKs          : ", kPendingDisks, kBe32},
    {"Last Access Time                 : ", kLastAccess, kBeFileTime},
};
static_assert(FieldsFit(kHeaderRows, 512) && FieldsFit(kCountRows, 512));

void PrintReport(SectorView vmdb) {
  PrintFields(vmdb, kHeaderRows);
  report << LineEnd;
  PrintFields(vmdb, kCountRows);
  report << LineEnd;
}

}  // namespace

u64 DecodeVmdb(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView vmdb(*buffer);
  if (!CheckSignature(Part<kSignature, 4>(vmdb), "VMDB", "VMDB")) return kEndPass;
  if (print) PrintReport(vmdb);
  return sector + 1;
}

}  // namespace trovisk
