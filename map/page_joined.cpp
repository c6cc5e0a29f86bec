// What belongs together, on a page: the volumes of a dynamic disk with their components and partitions, and
// the objects of a storage pool.

#include <algorithm>
#include <limits>
#include <span>

#include "map/page_tables.h"
#include "map/page_text.h"
#include "map/text_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostRows = 4000;
constexpr std::string_view kThisDisk = "<span class=\"badge\">this disk</span>";

// As many of them as are shown.
template <typename Thing>
std::span<const Thing> Shown(const std::vector<Thing>& things) {
  return std::span(things).first(std::min(things.size(), kMostRows));
}

std::string CutLine(std::size_t count) {
  return count > kMostRows ? HtmlCutLine(count - kMostRows) : std::string();
}

// The name as text, or what the object is called by its identifier.
std::string NameOf(const std::string& name, std::string_view thing, u64 id) {
  return name.empty() ? std::string(thing) + " " + std::to_string(id) : HtmlText(name);
}

// HTML, with dots between the parts that are not empty.
std::string Said(std::initializer_list<std::string> parts) {
  std::string said;
  for (const std::string& part : parts) {
    if (!part.empty()) said.append(said.empty() ? " " : " · ").append(part);
  }
  return said;
}

std::string Remarks(const std::vector<std::string>& remarks) {
  if (remarks.empty()) return {};
  std::string html = "<ul class=\"remarks\">\n";
  for (const std::string& remark : remarks)
    html += "<li>" + HtmlText(remark) + "</li>\n";
  return html + "</ul>\n";
}

// A table that scrolls by itself where the screen is too narrow. label: HTML.
std::string ScrollingTable(const std::string& label, const std::string& head, const std::string& rows) {
  return "<section class=\"scrolls\" tabindex=\"0\" aria-label=\"" + label +
         "\">\n<table class=\"parts\">\n" + head + "<tbody>\n" + rows + "</tbody></table>\n</section>\n";
}

std::string PartitionRow(const DynamicPartition& partition, u32 sectorSize) {
  const bool reached = partition.onThisDisk && partition.absoluteStart != std::numeric_limits<u64>::max();
  return std::string(partition.onThisDisk ? "<tr class=\"here\">" : "<tr>") +
         HtmlCell(std::to_string(partition.column), "number") + "<th scope=\"row\">" +
         NameOf(partition.name, "object", partition.id) + "</th>" +
         HtmlCell(NameOf(partition.disk, "object", partition.diskId) +
                  std::string(partition.onThisDisk ? kThisDisk : "")) +
         HtmlCell(reached ? HtmlPlace(partition.absoluteStart) : HtmlNumber(partition.start) + " of its data",
                  "number") +
         HtmlCell(SizeOfSectors(partition.size, sectorSize), "number") +
         HtmlCell(HtmlNumber(partition.volumeOffset), "number") + "</tr>\n";
}

std::string PartitionTable(const std::vector<DynamicPartition>& partitions, const std::string& label,
                           u32 sectorSize) {
  std::string rows;
  for (const DynamicPartition& partition : Shown(partitions))
    rows += PartitionRow(partition, sectorSize);
  return ScrollingTable(label,
                        HtmlHead({{"Column", true},
                                  {"Partition"},
                                  {"Disk"},
                                  {"Starts at", true},
                                  {"Size", true},
                                  {"Offset in component", true}}),
                        rows) +
         CutLine(partitions.size());
}

std::string ComponentItem(const DynamicComponent& component, u32 sectorSize) {
  const std::string name = NameOf(component.name, "component", component.id);
  const std::string stripes =
      component.stripeSize == 0 ? "" : "stripes of " + SizeOfSectors(component.stripeSize, sectorSize);
  return "<li>\n<p><strong>" + name + "</strong>" +
         Said({HtmlText(component.type), HtmlText(component.state),
               component.columns > 1 ? Counted(component.columns, "column") : "", stripes,
               Counted(component.partitions.size(), "partition")}) +
         "</p>\n" + PartitionTable(component.partitions, "Partitions of " + name, sectorSize) + "</li>\n";
}

std::string VolumeItem(const DynamicVolume& volume, u32 sectorSize) {
  std::string html = "<li>\n<details class=\"volume\" open>\n<summary><strong>" +
                     NameOf(volume.name, "volume", volume.id) + "</strong>";
  if (!volume.hint.empty()) html += "<span class=\"badge\">" + HtmlText(volume.hint) + "</span>";
  html += Said({HtmlText(volume.type), SizeOfSectors(volume.size, sectorSize), HtmlText(volume.state)}) +
          "</summary>\n";
  if (!volume.guid.empty()) html += "<p class=\"quiet\">" + HtmlText(volume.guid) + "</p>\n";
  html += "<ul class=\"tree\">\n";
  for (const DynamicComponent& component : Shown(volume.components))
    html += ComponentItem(component, sectorSize);
  return html + "</ul>\n" + CutLine(volume.components.size()) + "</details>\n</li>\n";
}

std::string DiskItem(const DynamicDiskMember& disk) {
  std::string html = "<li><strong>" + NameOf(disk.name, "disk", disk.id) + "</strong>";
  if (disk.thisDisk) html += kThisDisk;
  html += " <span class=\"quiet\">" + HtmlText(disk.guid);
  if (!disk.device.empty()) html += ", last known as " + HtmlText(disk.device);
  return html + "</span></li>\n";
}

std::string SectionHead(const std::string& id, std::string_view title) {
  return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id + "-title\">" +
         std::string(title) + "</h2>\n";
}

std::string DynamicDiskSection(const DynamicDisk& dynamic, u32 sectorSize) {
  std::string html = SectionHead("dynamic-disk", "Dynamic disk") +
                     HtmlFacts({{"Disk group", dynamic.groupName.empty() ? "–" : HtmlText(dynamic.groupName)},
                                {"Group GUID", HtmlText(dynamic.groupGuid)},
                                {"This disk's GUID", HtmlText(dynamic.diskGuid)},
                                {"Data from", HtmlPlace(dynamic.logicalStart)},
                                {"Data", SizeOfSectors(dynamic.logicalSize, sectorSize)},
                                {"Database from", HtmlPlace(dynamic.databaseStart)},
                                {"Database", SizeOfSectors(dynamic.databaseSize, sectorSize)}}) +
                     Remarks(dynamic.remarks) + "<h3>" + Counted(dynamic.disks.size(), "disk") +
                     "</h3>\n<ul>\n";
  for (const DynamicDiskMember& disk : Shown(dynamic.disks))
    html += DiskItem(disk);
  html += "</ul>\n" + CutLine(dynamic.disks.size()) + "<h3>" + Counted(dynamic.volumes.size(), "volume") +
          "</h3>\n<ul class=\"tree\">\n";
  for (const DynamicVolume& volume : Shown(dynamic.volumes))
    html += VolumeItem(volume, sectorSize);
  html += "</ul>\n" + CutLine(dynamic.volumes.size());
  if (!dynamic.orphans.empty()) {
    html += "<h3>Partitions without a volume</h3>\n" +
            PartitionTable(dynamic.orphans, "Partitions without a volume", sectorSize);
  }
  return html + "</section>\n";
}

std::string ObjectRow(const SpacesObject& object) {
  const auto text = [](const std::string& known) { return known.empty() ? "–" : HtmlText(known); };
  return "<tr><th scope=\"row\" class=\"number\">" + std::to_string(object.id) + "</th>" +
         HtmlCell(HtmlText(object.kind)) + HtmlCell(text(object.name)) + HtmlCell(text(object.guid)) +
         HtmlCell(std::to_string(object.parts), "number") + "</tr>\n";
}

std::string StorageSpacesSection(const StorageSpaces& spaces) {
  std::string html = SectionHead("storage-spaces", "Storage Spaces") +
                     HtmlFacts({{"Pool", HtmlText(spaces.poolName)},
                                {"Pool GUID", HtmlText(spaces.poolGuid)},
                                {"This disk's GUID", HtmlText(spaces.diskGuid)},
                                {"SPACEDB", HtmlPlace(spaces.sector)}}) +
                     Remarks(spaces.remarks);
  if (!spaces.objects.empty()) {
    std::string rows;
    for (const SpacesObject& object : Shown(spaces.objects))
      rows += ObjectRow(object);
    html +=
        ScrollingTable("Objects of the pool",
                       HtmlHead({{"Object", true}, {"Kind"}, {"Name"}, {"GUID"}, {"Records", true}}), rows);
    html += CutLine(spaces.objects.size());
  }
  return html + "</section>\n";
}

}  // namespace

std::string JoinedOfPage(const DiskMap& map) {
  std::string html;
  if (map.dynamicDisk) html = DynamicDiskSection(*map.dynamicDisk, map.disk.sectorSize);
  if (map.storageSpaces) html += StorageSpacesSection(*map.storageSpaces);
  return html;
}

}  // namespace trovisk
