"""Master and extended boot records made by sfdisk and fdisk: types, extents and geometry as these tools list them."""

import json
import os
import re
import struct
import tempfile

from comparison import expect, finish, report, sparse_image, table_of_contents, tool

SECTORS = 17_000_000  # more than a cylinder number of ten bits can say

# Code, name in the report, and the description under which the first sector is registered.
TYPES = {
    0x04: ("FAT-16 < 32MBytes", "FAT Boot Sector"),
    0x05: ("Extended", "Supplementary Boot Record"),
    0x06: ("BIGDOS FAT-16", "FAT Boot Sector"),
    0x07: ("NTFS", "NTFS Boot Sector"),
    0x0C: ("Win95 FAT-32 (LBA", "FAT32 Boot Sector"),
    0x0F: ("Win95 Extended (LBA", "Supplementary Boot Record"),
    0x82: ("Linux swap", None),
    0x83: ("Linux ext2", None),
    0x8E: ("Linux LVM", None),
    0xEF: ("EFI (FAT-12/16/32", None),
    0xFD: ("Linux RAID auto", None),
}
EXTENDED = (0x05, 0x0F)


def make(folder, name, sector_size, script):
    """An image partitioned as the script says. sfdisk knows only 512-byte sectors on an image file."""
    image = os.path.join(folder, f"{name}.{sector_size}.img")
    sparse_image(image, SECTORS * sector_size)
    if sector_size == 512:
        tool("sfdisk", "--quiet", image, text=script)
    else:
        script_file = os.path.join(folder, "script")
        with open(script_file, "w", encoding="ascii") as file:
            file.write(script)
        tool("fdisk", "-b", sector_size, image, text=f"I\n{script_file}\nw\n")
    return image


def list_by_sfdisk(image):
    """{number: (active, type, start, size)} and the disk signature."""
    table = json.loads(tool("sfdisk", "--json", image))["partitiontable"]
    partitions = {}
    for row in table["partitions"]:
        number = int(row["node"].removeprefix(table["device"]))
        partitions[number] = (row.get("bootable", False), int(row["type"], 16), row["start"], row["size"])
    return int(table["id"], 16), partitions


def list_by_fdisk(image, sector_size):
    """The same, and {number: (start, end)} as cylinder/head/sector."""
    text = tool("fdisk", "-b", sector_size, "-l", "-o", "Device,Start,Sectors,Id,Start-C/H/S,End-C/H/S,Boot", image)
    signature = int(re.search(r"^Disk identifier: (0x[0-9a-f]+)$", text, re.MULTILINE)[1], 16)
    partitions, geometry = {}, {}
    for row in text.splitlines():
        if not row.startswith(image):
            continue
        device, start, size, code, first, last, *boot = row.split()
        number = int(device.removeprefix(image))
        partitions[number] = (boot == ["*"], int(code, 16), int(start), int(size))
        geometry[number] = (first, last)
    return signature, partitions, geometry


def entries_of(text):
    """The partition entries of a report: None for an empty one, else (active, name, start, end, first, last)."""
    section = text.partition("Partition table entries\n\n")[2].partition("Sector End Mark")[0]
    entry = re.compile(r"\tEmpty\n\n|\t(Active  |Inactive) \[ (.+) \]\n\tC/H/S (\S+) - (\S+)\n"
                       r"\tPartition Sectors \[ (\d+) - (\d+|LARGE) \]\n\n")
    entries = []
    while match := entry.match(section):
        section = section[match.end():]
        status, name, start, end, first, last = match.groups()
        entries.append(name and (status == "Active  ", name, start, end, int(first), int(last)))
    expect("what follows the entries", section, "\n\n")
    return entries


def entry_for(partition, geometry, base):
    """What the report shows of a partition whose entry counts from the sector base."""
    active, code, start, size = partition
    return (active, TYPES[code][0], *geometry, start - base, start - base + size - 1)


def links_of(image, sector_size, outermost):
    """The extended boot records and the first sectors of their links, by the usual convention: links count from
    the outermost extended partition."""
    records, links = [outermost], []
    with open(image, "rb") as file:
        while True:
            file.seek(records[-1] * sector_size + 0x1CE)
            entry = file.read(16)
            if entry[4] not in EXTENDED:
                return records, links
            links.append(struct.unpack_from("<I", entry, 8)[0])
            records.append(outermost + links[-1])


def compare_chain(image, sector_size, outermost, partitions, geometry):
    """The extended boot records that are reached, each with its logical partition. Gives the rows that they add
    to the table of contents."""
    records, links = links_of(image, sector_size, outermost)
    expect(f"{image}: extended boot records", len(records), max(partitions) - 4)
    rows = {outermost: "Supplementary Boot Record"}
    if links:
        # The first link counts from the outermost record by either rule, so the second record is the right one.
        rows[records[1]] = "Supplementary Boot Record"
    if len(links) > 1:
        # The second link counts from the second record here: beyond the third record by that record's distance.
        strayed = records[1] + links[1]
        rows[strayed] = "Supplementary Boot Record"
        expect(f"{image}: the strayed record", entries_of(report(image, sector_size, strayed)), [None, None])
    for index, record in enumerate(records[:2]):
        logical = 5 + index
        entries = entries_of(report(image, sector_size, record))
        expect(f"{image}: entries of record {record}", len(entries), 2)
        expect(f"{image}: logical partition {logical}", entries[0],
               entry_for(partitions[logical], geometry[logical], record))
        link = entries[1] and (entries[1][1], entries[1][4])
        expect(f"{image}: link of record {record}", link, ("Extended", links[index]) if index < len(links) else None)
        if description := TYPES[partitions[logical][1]][1]:
            rows[partitions[logical][2]] = description
    return rows


def compare(image, sector_size):
    """The whole image against the tools' listings."""
    signature, partitions, geometry = list_by_fdisk(image, sector_size)
    if sector_size == 512:
        expect(f"{image}: the two listings", list_by_sfdisk(image), (signature, partitions))

    text = report(image, sector_size, 0)
    expect(f"{image}: signature", re.findall(r"^Disk Signature   : 0x(.*)$", text, re.MULTILINE), [f"{signature:08X}"])
    primaries = [entry_for(partitions[n], geometry[n], 0) if n in partitions else None for n in range(1, 5)]
    expect(f"{image}: primary partitions", entries_of(text), primaries)

    rows = {0: "Master Boot Record"}
    for number, (_, code, start, _) in partitions.items():
        if number > 4:
            continue
        if code in EXTENDED:
            rows |= compare_chain(image, sector_size, start, partitions, geometry)
        elif TYPES[code][1]:
            rows[start] = TYPES[code][1]
    expect(f"{image}: table of contents", table_of_contents(report(image, sector_size)), rows)


# The partitions hold no volume, and one without a FAT boot sector ends the pass: these stand behind everything
# else.
DISKS = {
    "primaries": """label: dos
label-id: 0x1234abcd
start=300, size=1000, type=7, bootable
start=2000, size=3, type=83
start=4000, size=1, type=fd
start=9000, size=7000, type=c
""",
    "high-cylinders": """label: dos
label-id: 0x00abcdef
start=63, size=4095937, type=83
start=5000000, size=3, type=7
start=9000000, size=5000000, type=fd
start=16000000, size=1000000, type=82, bootable
""",
    "sparse-slots": """label: dos
label-id: 0x00000001
2 : start=512, size=512, type=ef
4 : start=1024, size=15000, type=8e
""",
    "one-logical": """label: dos
label-id: 0xfedcba98
start=300, size=700, type=82
start=1000, size=9000, type=f
start=12000, size=4000, type=6
start=3000, size=500, type=7, bootable
""",
    "four-logicals": """label: dos
label-id: 0xffffffff
1 : start=256, size=256, type=7
3 : start=600, size=15000, type=5
5 : start=2700, size=100, type=83
6 : start=4900, size=100, type=7
7 : start=7100, size=100, type=82
8 : start=9300, size=100, type=83
""",
}

with tempfile.TemporaryDirectory() as scratch:
    for disk, script in DISKS.items():
        for bytes_per_sector in (512, 4096):
            compare(make(scratch, disk, bytes_per_sector, script), bytes_per_sector)
finish()
