// The two copies of a GUID partition table against each other, and the partitions of one copy.
//
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout": the copies differ in their own places alone, and
// partitions lie inside the usable sectors, none over another.

#include <algorithm>

#include "gpt/examine_gpt.h"

namespace trovisk {
namespace {

// Of each kind of trouble so many are named one by one.
constexpr std::size_t kMostNamed = 16;

std::string ExtentText(const GptPartition& partition) {
  std::string text = "entry ";
  text.append(std::to_string(partition.number)).append(": ").append(std::to_string(partition.first));
  return text.append(" to ").append(std::to_string(partition.last));
}

// One check for all: good, or bad with the first troubles by name.
Check Summary(const GptCopy& copy, std::string_view name, const std::vector<std::string>& troubles, u64 count,
              std::string expected) {
  if (count == 0) {
    return {copy.sector, std::string(name), Verdict::kGood, std::to_string(copy.usedEntries) + " entries",
            std::move(expected)};
  }
  std::string found;
  for (const std::string& trouble : troubles)
    found.append(found.empty() ? "" : "; ").append(trouble);
  if (count > troubles.size())
    found.append("; and ").append(std::to_string(count - troubles.size())).append(" more");
  return {copy.sector, std::string(name), Verdict::kBad, std::move(found), std::move(expected)};
}

void CheckRange(const GptCopy& copy, std::vector<Check>& checks) {
  std::vector<std::string> troubles;
  u64 count = 0;
  for (const GptPartition& partition : copy.partitions) {
    if (partition.first <= partition.last && partition.first >= copy.firstUsable &&
        partition.last <= copy.lastUsable) {
      continue;
    }
    if (++count <= kMostNamed) troubles.push_back(ExtentText(partition));
  }
  checks.push_back(Summary(copy, "GPT partitions lie in the usable sectors", troubles, count,
                           std::to_string(copy.firstUsable) + " to " + std::to_string(copy.lastUsable)));
}

void CheckOverlaps(const GptCopy& copy, std::vector<Check>& checks) {
  std::vector<const GptPartition*> sorted;
  for (const GptPartition& partition : copy.partitions) {
    if (partition.first <= partition.last) sorted.push_back(&partition);
  }
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const GptPartition* a, const GptPartition* b) { return a->first < b->first; });
  std::vector<std::string> troubles;
  u64 count = 0;
  const GptPartition* reaching = nullptr;  // of those so far the one that ends last
  for (const GptPartition* partition : sorted) {
    if (reaching != nullptr && partition->first <= reaching->last && ++count <= kMostNamed) {
      troubles.push_back(ExtentText(*partition) + " over " + ExtentText(*reaching));
    }
    if (reaching == nullptr || partition->last > reaching->last) reaching = partition;
  }
  checks.push_back(Summary(copy, "GPT partitions do not overlap", troubles, count, "none over another"));
}

}  // namespace

void CheckGptAgreement(const GptCopy& primary, const GptCopy& backup, std::vector<Check>& checks) {
  if (!primary.present || !backup.present) return;
  const auto compare = [&](std::string_view what, const auto& ofBackup, const auto& ofPrimary) {
    checks.push_back(
        CheckEqual(backup.sector, std::string("GPT copies agree on the ").append(what), ofBackup, ofPrimary));
  };
  checks.push_back(
      CheckEqual(primary.sector, "GPT primary header names the backup", primary.otherLba, backup.sector));
  checks.push_back(
      CheckEqual(backup.sector, "GPT backup header names the primary", backup.otherLba, primary.sector));
  compare("disk GUID", GuidText(backup.diskGuid), GuidText(primary.diskGuid));
  compare("first usable sector", backup.firstUsable, primary.firstUsable);
  compare("last usable sector", backup.lastUsable, primary.lastUsable);
  compare("number of entries", backup.entryCount, primary.entryCount);
  compare("size of an entry", backup.entrySize, primary.entrySize);
  compare("array's CRC-32", Hex32(backup.arrayCrc), Hex32(primary.arrayCrc));
}

void CheckGptPartitions(const GptCopy& copy, std::vector<Check>& checks) {
  CheckRange(copy, checks);
  CheckOverlaps(copy, checks);
}

}  // namespace trovisk
