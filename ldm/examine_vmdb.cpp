// VMDB, the header of a dynamic disk's object database.
//
// Opens the configuration region that the TOCBLOCK states. Big-endian.
// Layout and rules: the Linux-NTFS project's LDM documentation, "VMDB".
// Checked: signature, version, size of a record slot and place of the first one, that the disk group is the
// PRIVHEAD's, the counts of objects. Not checked: the transaction numbers.

#include "ldm/examine_vmdb.h"

#include "frame/global.h"
#include "ldm/examine_words.h"
#include "ldm/vblk_layout.h"
#include "ldm/vmdb_layout.h"

namespace trovisk {
namespace {

constexpr u64 kVersion = u64{4} << 16 | 10;
constexpr u64 kConsistent = 1;

LdmCounts CountsAt(Bytes bytes, std::size_t volumes, std::size_t components, std::size_t partitions,
                   std::size_t disks) {
  return {Be32At(bytes, volumes), Be32At(bytes, components), Be32At(bytes, partitions), Be32At(bytes, disks)};
}

struct Kind {
  std::string_view name;
  u64 LdmCounts::*count;
};
constexpr Kind kKinds[] = {{"volumes", &LdmCounts::volumes},
                           {"components", &LdmCounts::components},
                           {"partitions", &LdmCounts::partitions},
                           {"disks", &LdmCounts::disks}};

std::string Named(std::string_view what, std::string_view kind) {
  return std::string("VMDB ").append(what).append(" ").append(kind);
}

}  // namespace

VmdbFacts ExamineVmdb(u64 sector, u64 lastOnDisk, const PrivheadFacts& head, std::vector<Check>& checks) {
  VmdbFacts facts{.sector = sector, .recordsOffset = 512, .committed = {}, .pending = {}};
  const auto bytes = sector <= lastOnDisk ? ReadSectors(sector, 1) : std::nullopt;
  facts.found = bytes && bytes->size() >= 512 && EqualsText(SliceAt(*bytes, 0, 4), "VMDB");
  if (!facts.found) {
    checks.push_back({sector, "VMDB", Verdict::kMissing, "no VMDB", "the header of the database"});
    return facts;
  }
  checks.push_back({sector, "VMDB", Verdict::kGood, "VMDB", "VMDB"});
  const u64 version = Be32At(*bytes, vmdb::kMajorVersion);
  checks.push_back(CheckEqual(sector, "VMDB version", Version(version), Version(kVersion)));
  checks.push_back(
      CheckEqual(sector, "VMDB size of a record", Be32At(*bytes, vmdb::kVblkSize), vblk::kSlotSize));
  const u64 offset = Be32At(*bytes, vmdb::kVblkOffset);
  checks.push_back(CheckEqual(sector, "VMDB offset of the records", offset, 512));
  checks.push_back(CheckEqual(sector, "VMDB disk group",
                              SmallLetters(SafeAscii(SliceAt(*bytes, vmdb::kGroupId, 64))), head.groupGuid));
  facts.lastSequence = Be32At(*bytes, vmdb::kSequence);
  facts.updateStatus = Be16At(*bytes, vmdb::kUpdateStatus);
  facts.committed = CountsAt(*bytes, vmdb::kCommittedVolumes, vmdb::kCommittedComponents,
                             vmdb::kCommittedPartitions, vmdb::kCommittedDisks);
  facts.pending = CountsAt(*bytes, vmdb::kPendingVolumes, vmdb::kPendingComponents, vmdb::kPendingPartitions,
                           vmdb::kPendingDisks);
  return facts;
}

void JudgeCounts(const VmdbFacts& vmdb, const LdmCounts& active, const LdmCounts& created, bool unsettled,
                 std::vector<Check>& checks) {
  if (!vmdb.found) return;
  for (const auto& [name, count] : kKinds) {
    checks.push_back(CheckEqual(vmdb.sector, Named("committed", name), vmdb.committed.*count, active.*count));
  }
  const bool settled = !unsettled && vmdb.updateStatus == kConsistent && created == LdmCounts{};
  for (const auto& [name, count] : kKinds) {
    const u64 found = vmdb.pending.*count;
    const u64 all = active.*count;
    Check check{vmdb.sector, Named("pending", name), Verdict::kNotChecked, std::to_string(found),
                "no rule is published for a transaction under way"};
    if (settled) {
      check.verdict = found == 0 || found == all ? Verdict::kGood : Verdict::kBad;
      check.expected = all == 0 ? "0" : "0 or " + std::to_string(all);
    }
    checks.push_back(check);
  }
}

}  // namespace trovisk
