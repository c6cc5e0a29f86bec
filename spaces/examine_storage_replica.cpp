// DPOM and the log behind it: the log partition of Storage Replica.
//
// The DPOM stands in the partition's first sector; its log takes the sectors behind it without the last one,
// each with a DPOD of its own. There is no published description: the layout is what is known from disks.
// Checked: the signatures of the DPOM and of the first DPOD. Not checked: the other sectors of the log, of
// which there can be 2^31.

#include "spaces/dpom_layout.h"
#include "spaces/storage_spaces.h"

namespace trovisk {
namespace {

void CheckSigned(u64 sector, const std::string& signature, const VolumePlace& place,
                 std::vector<Check>& checks) {
  const auto bytes = sector <= place.lastOnDisk ? ReadSectors(sector, 1) : std::nullopt;
  const bool good = bytes && EqualsText(SliceAt(*bytes, dpom::kSignature, signature.size()), signature);
  checks.push_back({sector, signature, good ? Verdict::kGood : Verdict::kMissing,
                    good ? signature : "no " + signature, "the signature of the " + signature});
}

}  // namespace

VolumeFindings ExamineStorageReplica(const VolumePlace& place) {
  VolumeFindings findings{
      .type = "Storage Replica log", .label = {}, .sectors = place.sectors, .areas = {}, .checks = {}};
  CheckSigned(place.sector, "DPOM", place, findings.checks);
  findings.areas.push_back({place.sector, place.sector, "DPOM"});
  const bool hasLog = place.sectors > 2 && place.sectors - 1 <= ~place.sector;
  if (hasLog) {
    CheckSigned(place.sector + 1, "DPOD", place, findings.checks);
    findings.areas.push_back({place.sector + 1, place.sector + (place.sectors - 2), "log"});
  }
  return findings;
}

}  // namespace trovisk
