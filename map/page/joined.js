// What belongs together: the volumes of a dynamic disk group, and the objects of a storage pool.

import { byId, digits, el, sectorLink } from "./dom.js";
import { doc } from "./document.js";
import { big, counted, sizeText } from "./format.js";

function facts(rows) {
  return el(
    "dl",
    { class: "facts-list" },
    rows
      .filter(([, value]) => value !== "" && value !== null)
      .map(([label, value]) => el("div", {}, el("dt", {}, label), el("dd", {}, value))),
  );
}

function remarks(list) {
  return list.length
    ? el(
        "ul",
        { class: "remarks" },
        list.map((remark) => el("li", {}, remark)),
      )
    : "";
}

function size(sectors) {
  return sizeText(big(sectors) * doc.sectorSize);
}

function partitionRow(partition) {
  return el(
    "tr",
    { class: partition.on_this_disk ? "here" : null },
    el("td", { class: "number" }, partition.column),
    el("th", { scope: "row" }, partition.name || `object ${partition.id}`),
    el(
      "td",
      {},
      partition.disk || `object ${partition.disk_id}`,
      partition.on_this_disk ? el("span", { class: "badge" }, "this disk") : "",
    ),
    el(
      "td",
      { class: "number" },
      partition.absolute_start === null ? digits(partition.start) : sectorLink(partition.absolute_start),
    ),
    el("td", { class: "number" }, size(partition.size)),
    el("td", { class: "number" }, digits(partition.volume_offset)),
  );
}

function partitionTable(partitions, name) {
  const heads = ["Column", "Partition", "Disk", "Starts at", "Size", "Offset in component"];
  return el(
    "div",
    { class: "scrolls", tabindex: 0, role: "region", "aria-label": name },
    el(
      "table",
      { class: "parts" },
      el(
        "thead",
        {},
        el(
          "tr",
          {},
          heads.map((head, i) => el("th", { scope: "col", class: i === 1 || i === 2 ? null : "number" }, head)),
        ),
      ),
      el("tbody", {}, partitions.map(partitionRow)),
    ),
  );
}

function component(item) {
  const said = [
    item.type,
    item.state,
    item.columns > 1 ? counted(item.columns, "column") : "",
    Number(item.stripe_size) ? `stripes of ${size(item.stripe_size)}` : "",
    counted(item.partitions.length, "partition"),
  ]
    .filter(Boolean)
    .join(" · ");
  return el(
    "li",
    {},
    el("p", {}, el("strong", {}, item.name || `component ${item.id}`), ` ${said}`),
    partitionTable(item.partitions, `Partitions of ${item.name}`),
  );
}

function volume(item) {
  return el(
    "li",
    {},
    el(
      "details",
      { class: "volume", open: true },
      el(
        "summary",
        {},
        el("strong", {}, item.name || `volume ${item.id}`),
        item.hint ? el("span", { class: "badge" }, item.hint) : "",
        ` ${[item.type, size(item.size), item.state].filter(Boolean).join(" · ")}`,
      ),
      item.guid ? el("p", { class: "quiet" }, item.guid) : "",
      el("ul", { class: "tree" }, item.components.map(component)),
    ),
  );
}

function disks(list) {
  return el(
    "ul",
    { class: "disks" },
    list.map((disk) =>
      el(
        "li",
        {},
        el("strong", {}, disk.name || `disk ${disk.id}`),
        disk.this_disk ? el("span", { class: "badge" }, "this disk") : "",
        el("span", { class: "quiet" }, ` ${disk.guid}`, disk.device ? `, last known as ${disk.device}` : ""),
      ),
    ),
  );
}

function dynamicDisk(dynamic) {
  return el(
    "section",
    { id: "dynamic-disk", "aria-labelledby": "dynamic-title" },
    el("h2", { id: "dynamic-title" }, "Dynamic disk"),
    facts([
      ["Disk group", dynamic.group_name || "–"],
      ["Group GUID", dynamic.group_guid],
      ["This disk's GUID", dynamic.disk_guid],
      ["Data from", sectorLink(dynamic.logical_start)],
      ["Data", size(dynamic.logical_size)],
      ["Database from", sectorLink(dynamic.database_start)],
      ["Database", size(dynamic.database_size)],
    ]),
    remarks(dynamic.remarks),
    el("h3", {}, counted(dynamic.disks.length, "disk")),
    disks(dynamic.disks),
    el("h3", {}, counted(dynamic.volumes.length, "volume")),
    el("ul", { class: "tree" }, dynamic.volumes.map(volume)),
    dynamic.orphans.length
      ? [el("h3", {}, "Partitions without a volume"), partitionTable(dynamic.orphans, "Partitions without a volume")]
      : "",
  );
}

function spaces(pool) {
  return el(
    "section",
    { id: "storage-spaces", "aria-labelledby": "spaces-title" },
    el("h2", { id: "spaces-title" }, "Storage Spaces"),
    facts([
      ["Pool", pool.pool_name],
      ["Pool GUID", pool.pool_guid],
      ["This disk's GUID", pool.disk_guid],
      ["SPACEDB", sectorLink(pool.sector)],
    ]),
    remarks(pool.remarks),
    pool.objects.length
      ? el(
          "div",
          { class: "scrolls", tabindex: 0, role: "region", "aria-label": "Objects of the pool" },
          el(
            "table",
            { class: "parts" },
            el(
              "thead",
              {},
              el(
                "tr",
                {},
                ["Object", "Kind", "Name", "GUID", "Records"].map((head) => el("th", { scope: "col" }, head)),
              ),
            ),
            el(
              "tbody",
              {},
              pool.objects.map((object) =>
                el(
                  "tr",
                  {},
                  el("th", { scope: "row" }, object.id),
                  el("td", {}, object.kind),
                  el("td", {}, object.name || "–"),
                  el("td", {}, object.guid || "–"),
                  el("td", { class: "number" }, object.parts),
                ),
              ),
            ),
          ),
        )
      : "",
  );
}

export function startJoined() {
  const parts = [];
  if (doc.dynamic_disk) parts.push(dynamicDisk(doc.dynamic_disk));
  if (doc.storage_spaces) parts.push(spaces(doc.storage_spaces));
  byId("joined").replaceChildren(...parts);
}
