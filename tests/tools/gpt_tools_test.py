"""GUID partition tables made by sgdisk, sfdisk, fdisk and parted: every printed value as these tools list it.

sfdisk and sgdisk take every image file to have 512-byte sectors, so they see the images of 4096 bytes per sector
through a loop device. Where the machine allows none, fdisk and parted, which can be told the size, are all that
these images are made and listed with, and the test counts as skipped.
"""

import json
import os
import re
import tempfile
import zlib

from comparison import expect, finish, loop_device, report, sparse_image, table_of_contents, tool

IMAGE_BYTES = 64 << 20

# Name in the report, and the description of the first (for LDM the last) sector.
TYPES = {
    "C12A7328-F81F-11D2-BA4B-00A0C93EC93B": ("EFI Partition Scheme", "EFI partition boot sector"),
    "E3C9E316-0B5C-4DB8-817D-F92DF00215AE": ("Windows : Microsoft Reserved Partition", None),
    "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7": ("Windows/Linux : Data Partition", "Generic Boot Sector"),
    "5808C8AA-7E8F-42E0-85D2-E1E90434CFB3": ("Windows : LDM Metadata Partition", "PRIVHEAD sector"),
    "AF9B60A0-1431-4F62-BC68-3311714A69AD": ("Windows : LDM Data Partition", None),
    "DE94BBA4-06D1-4D40-A16A-BFD50179D6AC": ("Windows : Recovery Partition", "Generic Boot Sector"),
    "E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D": ("Windows : Storage Space Partition", "SPACEDB sector"),
    "558D43C5-A1AC-43C0-AAC8-D1472B2923D1": ("Microsoft Storage Replication Db", "DPOM sector"),
    "A19D880F-05FC-4D3B-A006-743F0F84911E": ("Linux : RAID Partition", None),
    "0657FD6D-A4AB-43C4-84E5-0933C84B4F4F": ("Linux : Swap Partition", None),
    "0FC63DAF-8483-4772-8E79-3D69D8477DE4": ("unknown", None),
}
LDM_METADATA = "5808C8AA-7E8F-42E0-85D2-E1E90434CFB3"
STORAGE_REPLICA = "558D43C5-A1AC-43C0-AAC8-D1472B2923D1"
UNUSED = {"Partition Type GUID": "{ 00000000-0000-0000-0000-000000000000 }", "Partition Type": "[ Unused Entry ]"}

ATTRIBUTES = {63: "NO_DRIVE_LETTER", 62: "HIDDEN", 61: "SHADOW_COPY", 60: "READ_ONLY", 0: "PLATFORM_REQUIRED",
              59: "STORAGE_DB"}


# What the program prints, and in its words what a tool says: a header as {label: value}, partitions as
# {number: {label: value}}.

def lines_of(text):
    return dict(re.fullmatch(r"\t?(.+?) *: (.*)", line).groups() for line in text.splitlines())


def header_of(text):
    """The header's lines; text begins with the report of its sector."""
    return lines_of(text.split("\n\n")[1])


def partitions_of(text):
    """The slots of all array sectors of a report, in order."""
    slots = re.findall(r"^\tPartition Type GUID .*\n(?:\t.*\n)+\n", text, re.MULTILINE)
    return {number: lines_of(slot.rstrip("\n")) for number, slot in enumerate(slots, 1)}


def partition(type_guid, unique_guid, start, end, sector_size, attributes, name):
    """One partition as the program shows it. attributes: 64 bits."""
    units = name.encode("utf-16-le")
    padded = name + "\0" * (36 - len(units) // 2) if name else ""
    words = "".join(f"{word} " for bit, word in ATTRIBUTES.items() if attributes >> bit & 1)
    return {
        "Partition Type GUID": f"{{ {type_guid} }}",
        "Partition Type": f"[ {TYPES[type_guid][0]} ]",
        "Partition Unique GUID": f"{{ {unique_guid} }}",
        "Starting LBA": str(start),
        "Ending LBA": str(end),
        "Partition Size": f"{(end - start + 1) * sector_size >> 20} (MiB)",
        "Attributes": words if attributes else "None",
        "Partition Name": f"[{padded} ]",
    }


def attribute_bits(words):
    """The 64 bits behind the words of sfdisk and fdisk."""
    named = {"RequiredPartition": 0, "NoBlockIOProtocol": 1, "LegacyBIOSBootable": 2}
    bits = 0
    for word in words.split():
        numbers = word.removeprefix("GUID:").split(",") if word.startswith("GUID:") else [named[word]]
        for number in numbers:
            bits |= 1 << int(number)
    return bits


def list_by_sgdisk(device, sector_size, numbers):
    text = tool("sgdisk", "-p", device)
    found = re.search(r"Sector size \(logical.*\): (\d+).*\nDisk identifier \(GUID\): (\S+)\n"
                      r"Partition table holds up to (\d+) entries\n"
                      r"Main partition table begins at sector (\d+) and ends at sector (\d+)\n"
                      r"First usable sector is (\d+), last usable sector is (\d+)\n", text)
    header = {
        "Disk GUID": f"{{ {found[2]} }}",
        "Number Of Partition Entries": found[3],
        "First Partition Entry LBA": found[4],
        "Last Partitition Entry LBA": found[5],
        "First Usable LBA": found[6],
        "Last Usable LBA": found[7],
    }
    expect(f"sector size of {device}", int(found[1]), sector_size)
    partitions = {}
    for number in numbers:
        text = tool("sgdisk", "-i", number, device)
        found = re.search(r"code: (\S+) .*\n.*unique GUID: (\S+)\nFirst sector: (\d+) .*\nLast sector: (\d+) .*\n"
                          r"Partition size: .*\nAttribute flags: (\S+)\nPartition name: '(.*)'\n", text)
        partitions[number] = partition(found[1], found[2], int(found[3]), int(found[4]), sector_size,
                                       int(found[5], 16), found[6])
    return header, partitions


def list_by_sfdisk(device, sector_size):
    table = json.loads(tool("sfdisk", "--json", device))["partitiontable"]
    header = {
        "Disk GUID": f"{{ {table['id']} }}",
        "Number Of Partition Entries": table.get("table-length", "128"),
        "First Usable LBA": str(table["firstlba"]),
        "Last Usable LBA": str(table["lastlba"]),
    }
    expect(f"sector size of {device}", table["sectorsize"], sector_size)
    partitions = {}
    for row in table.get("partitions", []):
        number = int(re.fullmatch(r"p?(\d+)", row["node"].removeprefix(table["device"]))[1])
        partitions[number] = partition(row["type"], row["uuid"], row["start"], row["start"] + row["size"] - 1,
                                       sector_size, attribute_bits(row.get("attrs", "")), row.get("name", ""))
    return header, partitions


def list_by_fdisk(image, sector_size):
    text = tool("fdisk", "-b", sector_size, "-x", image)
    labels = {
        "Disk identifier": "Disk GUID",
        "First usable LBA": "First Usable LBA",
        "Last usable LBA": "Last Usable LBA",
        "Alternative LBA": "Backup Header LBA",
        "Partition entries starting LBA": "First Partition Entry LBA",
        "Partition entries ending LBA": "Last Partitition Entry LBA",
        "Allocated partition entries": "Number Of Partition Entries",
    }
    header = {label: re.search(rf"^{name}: (.*)$", text, re.MULTILINE)[1] for name, label in labels.items()}
    header["Disk GUID"] = f"{{ {header['Disk GUID']} }}"
    partitions = {}
    columns = "Device,Start,End,Type-UUID,UUID,Name"
    for row in tool("fdisk", "-b", sector_size, "-l", "-o", columns, image).splitlines():
        if not row.startswith(image):
            continue
        device, start, end, type_guid, unique_guid, *name = row.split(maxsplit=5)
        number = int(device.removeprefix(image))
        # In the C locale the bytes outside ASCII are escaped.
        name = "".join(name).rstrip().encode().decode("unicode_escape").encode("latin-1").decode()
        partitions[number] = partition(type_guid, unique_guid, int(start), int(end), sector_size, 0, name)
        del partitions[number]["Attributes"]  # listed with blanks in them, as the name is
    return header, partitions


def list_by_parted(image, sector_size):
    """{number: (start, end, name)}; parted has no values of the header but the sector size."""
    os.environ["PARTED_SECTOR_SIZE"] = str(sector_size)
    rows = tool("parted", "-sm", image, "unit", "s", "print").splitlines()
    expect(f"parted's view of {image}", rows[1].split(":")[3:6], [str(sector_size)] * 2 + ["gpt"])
    partitions = {}
    for row in rows[2:]:
        number, start, end, _, _, name, _ = row.split(":")
        partitions[int(number)] = (start.rstrip("s"), end.rstrip("s"), name)
    return partitions


# The comparison.

def expect_crcs(image, sector_size, header, where):
    """Both checksums, computed from the image."""
    with open(image, "rb") as file:
        file.seek(int(header["Primary Header LBA"]) * sector_size)
        record = bytearray(file.read(int(header["Header Size"].split()[0])))
        record[16:20] = bytes(4)
        expect(f"{where}: CRC32 Checksum", header["CRC32 Checksum"], f"0x{zlib.crc32(record):08X}")
        file.seek(int(header["First Partition Entry LBA"]) * sector_size)
        size = int(header["Number Of Partition Entries"]) * int(header["Size Of A Partition Entry"].split()[0])
        expect(f"{where}: Partition Entry CRC32", header["Partition Entry CRC32"],
               f"0x{zlib.crc32(file.read(size)):08X}")


def expect_lines(where, actual, expected):
    for label, value in expected.items():
        expect(f"{where}: {label}", actual.get(label), value)


compared = 0


def compare(image, sector_size, devices):
    """Reports of the image against every tool's listing. devices: what sgdisk and sfdisk can list it through."""
    global compared
    last = str(IMAGE_BYTES // sector_size - 1)
    primary = header_of(report(image, sector_size, 1).partition("Reading sector # 1 ")[2])
    text = report(image, sector_size, 1, primary["Last Partitition Entry LBA"])
    partitions = partitions_of(text)
    count = int(primary["Number Of Partition Entries"])
    expect(f"{image}: slots", len(partitions), count)
    used = [number for number, lines in partitions.items() if lines != UNUSED]

    listings = {"fdisk": list_by_fdisk(image, sector_size)}
    for device in devices:
        listings["sgdisk"] = list_by_sgdisk(device, sector_size, used)
        listings["sfdisk"] = list_by_sfdisk(device, sector_size)
    for name, (header, listed) in listings.items():
        expect_lines(f"{image}, {name}", primary, header)
        expect(f"{image}, {name}: partitions", used, list(listed))
        for number, lines in listed.items():
            expect_lines(f"{image}, {name}, partition {number}", partitions.get(number, {}), lines)
    listed = list_by_parted(image, sector_size)
    compared += len(listings) + 1
    expect(f"{image}, parted: partitions", used, list(listed))
    for number, (start, end, name) in listed.items():
        lines = partitions.get(number, {})
        shown = lines["Partition Name"].removeprefix("[").removesuffix(" ]").rstrip("\0")
        if not shown.isascii():
            name = shown  # parted shows only what the C locale has
        expect(f"{image}, parted, partition {number}", (lines["Starting LBA"], lines["Ending LBA"], shown),
               (start, end, name))

    expect_lines(image, primary, {"Magic Number": "[EFI PART]", "Revision": "10", "Header Size": "92 (bytes)",
                                  "Primary Header LBA": "1", "Backup Header LBA": last,
                                  "Size Of A Partition Entry": "128 (bytes)"})
    expect_crcs(image, sector_size, primary, image)
    if all(TYPES[partitions[number]["Partition Type GUID"][2:-2]][1] is None for number in used):
        compare_backup(image, sector_size, last, primary)  # else a partition without a volume ends the pass before
    compare_registrations(image, sector_size, partitions, used)


def compare_backup(image, sector_size, last, primary):
    """The backup header: the primary's values from the other end. Its array's first sector: the first slots."""
    backup = header_of(report(image, sector_size, last).partition(f"Reading sector # {last} [Backup GPT Header]")[2])
    sectors = int(primary["Last Partitition Entry LBA"]) - int(primary["First Partition Entry LBA"])
    changed = {
        "Primary Header LBA": last,
        "Backup Header LBA": "1",
        "First Partition Entry LBA": backup["First Partition Entry LBA"],
        "Last Partitition Entry LBA": str(int(backup["First Partition Entry LBA"]) + sectors),
        "CRC32 Checksum": backup["CRC32 Checksum"],
    }
    expect(f"{image}: backup header", backup, {**primary, **changed})
    expect_crcs(image, sector_size, backup, f"{image}, backup")
    first = backup["First Partition Entry LBA"]
    slots = sector_size // 128
    own = partitions_of(report(image, sector_size, first))
    theirs = partitions_of(report(image, sector_size, primary["First Partition Entry LBA"]))
    expect(f"{image}: first slots of the backup", own, theirs)
    expect(f"{image}: slots of a sector", len(own), slots)


def compare_registrations(image, sector_size, partitions, used):
    contents = table_of_contents(report(image, sector_size))
    for number in used:
        lines = partitions[number]
        type_guid = lines["Partition Type GUID"][2:-2]
        start, end = int(lines["Starting LBA"]), int(lines["Ending LBA"])
        expected = {start: None, end: None}
        expected[end if type_guid == LDM_METADATA else start] = TYPES[type_guid][1]
        if type_guid == STORAGE_REPLICA:
            expected.update({sector: "DPOD sector" for sector in range(start + 1, end)})
        for sector, description in expected.items():
            expect(f"{image}: sector {sector}", contents.get(sector), description)


# The disks.

def make_with_sgdisk(device):
    tool("sgdisk", "-o", "-U", "9ABCDEF0-1234-5678-9ABC-DEF012345678", "-a", 1,
         "-n", "1:2048:2048", "-t", "1:8300", "-c", "1:one sector",
         "-n", "2:3000:5047", "-t", "2:8200", "-A", "2:set:63", "-A", "2:set:0",
         "-n", "7:5048:5100", "-t", "7:8300", "-c", "7:Gr\u00F6\u00DFe \u0416\u65E5", "-A", "7:set:1",
         "-n", "33:6000:9999", "-t", "33:FD00", "-A", "33:set:62", "-A", "33:set:61", "-A", "33:set:60",
         "-A", "33:set:59", "-n", "128:10000:12345", "-t", "128:0C01",
         "-c", "128:thirty-six characters, none to spare", device)


def make_with_sfdisk(device):
    # 64 entries fill whole sectors of either size. Of an array that ends inside a sector the program knows only the
    # sectors before, and counts so.
    every_kind = "\n".join(f'start={2000 + 100 * i}, size=5, type={guid}, name="kind {i}"'
                           for i, guid in enumerate(TYPES))
    tool("sfdisk", "--quiet", device, text=f"label: gpt\ntable-length: 64\nfirst-lba: 100\n{every_kind}\n"
         'start=4000, size=99, type=DE94BBA4-06D1-4D40-A16A-BFD50179D6AC, attrs="RequiredPartition GUID:63,60"\n'
         "50 : start=5000, size=3000, type=0657FD6D-A4AB-43C4-84E5-0933C84B4F4F\n")


def make_with_fdisk(image, sector_size):
    with open(f"{image}.script", "w", encoding="ascii") as script:
        script.write("label: gpt\nfirst-lba: 100\n"
                     'start=300, size=256, type=0FC63DAF-8483-4772-8E79-3D69D8477DE4, name="root"\n'
                     "4 : start=600, size=5000, type=AF9B60A0-1431-4F62-BC68-3311714A69AD\n")
    tool("fdisk", "-b", sector_size, image, text=f"I\n{image}.script\nw\n")


def make_with_parted(image, sector_size):
    os.environ["PARTED_SECTOR_SIZE"] = str(sector_size)
    tool("parted", "-s", image, "mklabel", "gpt", "unit", "s", "mkpart", '"system part"', "fat32", "2048s", "4095s",
         "set", 1, "esp", "on", "mkpart", "swap", "linux-swap", "4096s", "8191s", "mkpart", "msr", "8192s", "8192s",
         "set", 3, "msftres", "on", "mkpart", "data", "ntfs", "9000s", "9999s", "set", 4, "msftdata", "on")


# Four images of either sector size, each as four tools list it; and what is left of that without loop devices.
LISTINGS = 2 * 4 * 4
LISTINGS_WITHOUT_LOOP_DEVICES = 4 * 4 + 2 * 2
SKIPPED = 77  # the status by which ctest knows that something was left out

without_loop_devices = False
with tempfile.TemporaryDirectory() as scratch:
    for bytes_per_sector in (512, 4096):
        for maker in (make_with_sgdisk, make_with_sfdisk, make_with_fdisk, make_with_parted):
            image_path = os.path.join(scratch, f"{maker.__name__}.{bytes_per_sector}.img")
            sparse_image(image_path, IMAGE_BYTES)
            loop = loop_device(image_path, bytes_per_sector) if bytes_per_sector != 512 else None
            without_loop_devices |= bytes_per_sector != 512 and loop is None
            try:
                listable = [image_path] if bytes_per_sector == 512 else [loop] if loop else []
                if maker in (make_with_fdisk, make_with_parted):
                    maker(image_path, bytes_per_sector)
                elif listable:
                    maker(listable[0])
                else:
                    print(f"no loop device of {bytes_per_sector} bytes per sector: {maker.__name__} is left out")
                    continue
                compare(image_path, bytes_per_sector, listable)
            finally:
                if loop:
                    tool("losetup", "--detach", loop)
expect("listings compared", compared, LISTINGS_WITHOUT_LOOP_DEVICES if without_loop_devices else LISTINGS)
finish(SKIPPED if without_loop_devices else 0)
