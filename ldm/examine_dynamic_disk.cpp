// The configuration of a dynamic disk: PRIVHEAD, TOCBLOCK, VMDB, VBLK and KLOG, from the sound copies of
// each.
//
// Where they stand each of them says of the next. Layout and rules: the Linux-NTFS project's LDM
// documentation. Each structure's checks stand in a file of its own; here: the signature of the log.

#include <algorithm>

#include "frame/global.h"
#include "ldm/dynamic_disk.h"
#include "ldm/examine_privhead.h"
#include "ldm/examine_records.h"
#include "ldm/examine_tocblock.h"
#include "ldm/examine_vblk.h"
#include "ldm/examine_vmdb.h"
#include "ldm/examine_volumes.h"
#include "ldm/examine_words.h"

namespace trovisk {
namespace {

constexpr u64 kConsistent = 1;

// The slots behind the VMDB, up to the end of the region; on larger sectors in the VMDB's own as well.
VblkPlace PlaceOfVblks(const TocFacts& toc, const VmdbFacts& vmdb, u64 lastOnDisk) {
  VblkPlace place{.first = vmdb.sector + 1, .offset = 0, .last = 0};
  if (disk.bytesPerSector > vmdb.recordsOffset) {
    place = {.first = vmdb.sector, .offset = vmdb.recordsOffset, .last = 0};
  }
  if (toc.configSize != 0) place.last = std::min(toc.configStart + (toc.configSize - 1), lastOnDisk);
  return place;
}

void JudgeGroups(const LdmObjects& objects, const PrivheadFacts& head, u64 databaseSector,
                 std::vector<Check>& checks, std::vector<std::string>& remarks) {
  ManyChecks answers("VBLK disk group", checks);
  for (const LdmGroup& group : objects.groups) {
    if (group.guid != head.groupGuid) {
      answers.Add(Verdict::kBad, group.sector, group.guid, head.groupGuid);
    }
  }
  answers.Finish(databaseSector, head.groupGuid, remarks);
}

void JudgeSequence(const VmdbFacts& vmdb, const VblkSummary& vblks, std::vector<Check>& checks) {
  if (!vmdb.found) return;
  const bool good = vblks.highestSequence <= vmdb.lastSequence;
  checks.push_back({vmdb.sector, "VMDB last sequence number", good ? Verdict::kGood : Verdict::kBad,
                    std::to_string(vmdb.lastSequence), "at least " + std::to_string(vblks.highestSequence)});
}

void JudgeLog(const TocFacts& toc, u64 lastOnDisk, DynamicDisk& dynamic, std::vector<Check>& checks) {
  if (toc.logSize == 0 || toc.logStart > lastOnDisk) return;
  dynamic.areas.push_back({toc.logStart, toc.logStart + (toc.logSize - 1), "KLOG"});
  const auto bytes = ReadSectors(toc.logStart, 1);
  const bool there = bytes && EqualsText(SliceAt(*bytes, 0, 4), "KLOG");
  checks.push_back({toc.logStart, "KLOG", there ? Verdict::kGood : Verdict::kMissing,
                    there ? "KLOG" : "no KLOG", "the start of the log"});
}

void AddRemarks(const LdmObjects& objects, const TocFacts& toc, const VmdbFacts& vmdb,
                std::vector<std::string>& remarks) {
  if (!toc.found)
    remarks.emplace_back("No TOCBLOCK was found: the database was looked for at its usual place.");
  if (vmdb.found && vmdb.updateStatus != kConsistent) {
    remarks.push_back("The database says that a transaction is under way: update status " +
                      std::to_string(vmdb.updateStatus) + ".");
  }
  const LdmCounts& created = objects.created;
  const u64 pending = created.volumes + created.components + created.partitions + created.disks;
  if (pending != 0) {
    remarks.push_back("Records created but not yet active, and left out: " + std::to_string(pending) + ".");
  }
  if (objects.aboutToBeDeleted != 0) {
    remarks.push_back("Records about to be deleted: " + std::to_string(objects.aboutToBeDeleted) + ".");
  }
  for (const auto& [type, count] : objects.unknown) {
    remarks.push_back("Records of the unknown type " + std::to_string(type) + ": " + std::to_string(count) +
                      ".");
  }
}

}  // namespace

std::optional<DynamicDisk> ExamineDynamicDisk(u64 sector, u64 lastOnDisk, std::vector<Check>& checks) {
  auto head = ExaminePrivheads(sector, lastOnDisk, checks);
  if (!head) return std::nullopt;
  DynamicDisk dynamic{.groupName = head->groupName,
                      .groupGuid = head->groupGuid,
                      .diskGuid = head->diskGuid,
                      .logicalStart = head->logicalStart,
                      .logicalSize = head->logicalSize,
                      .databaseStart = head->configStart,
                      .databaseSize = head->configSize,
                      .areas = head->areas,
                      .disks = {},
                      .volumes = {},
                      .orphans = {},
                      .remarks = {}};
  const TocFacts toc = ExamineTocBlocks(*head, lastOnDisk, checks);
  dynamic.areas.insert(dynamic.areas.end(), toc.areas.begin(), toc.areas.end());
  const VmdbFacts vmdb = ExamineVmdb(toc.configStart, lastOnDisk, *head, checks);
  if (vmdb.found) dynamic.areas.push_back({vmdb.sector, vmdb.sector, "VMDB"});

  LdmObjects objects;
  ManyChecks damaged("VBLK records", checks);
  const VblkPlace place = PlaceOfVblks(toc, vmdb, lastOnDisk);
  const VblkSummary vblks = VisitVblks(
      place, [&](const LdmRecord& record) { TakeLdmRecord(record, objects, damaged); }, checks,
      dynamic.remarks);
  damaged.Finish(vmdb.sector, "fields in their data", dynamic.remarks);
  if (place.first <= place.last) dynamic.areas.push_back({vmdb.sector + 1, place.last, "VBLK"});

  const LdmCounts active{objects.volumes.size(), objects.components.size(), objects.partitions.size(),
                         objects.disks.size()};
  JudgeCounts(vmdb, active, objects.created, objects.aboutToBeDeleted != 0, checks);
  JudgeSequence(vmdb, vblks, checks);
  JudgeGroups(objects, *head, vmdb.sector, checks, dynamic.remarks);
  LinkLdmObjects(objects, vmdb.sector, dynamic, checks);
  JudgeVolumes(objects, vmdb.sector, dynamic, checks);
  JudgeLog(toc, lastOnDisk, dynamic, checks);
  AddRemarks(objects, toc, vmdb, dynamic.remarks);
  return dynamic;
}

}  // namespace trovisk
