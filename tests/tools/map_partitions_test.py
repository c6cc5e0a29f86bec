"""Partitions of disks that sfdisk, sgdisk, fdisk, parted and mkfs made: the map has those that sfdisk, sgdisk and mmls
list, with their types and names, and each volume that mkfs made in them."""

import json
import os
import re
import subprocess
import tempfile

from comparison import expect, finish, sparse_image, the_map, tool

IMAGE_BYTES = 256 << 20
MIB = 1 << 20

# Of the map's extents these are no partition of the table that counts.
DOUBTFUL = {"reversed", "empty", "unsound", "other-reading", "other-copy"}


def by_map(image, sector_size):
    """{number: (first, last, type, name)} of the partitions, and the whole document."""
    document, _ = the_map(image, sector_size)
    partitions = {}
    gpt = document["disk"]["scheme"].startswith("GPT")
    for extent in document["extents"]:
        if extent["kind"] not in ("partition", "logical") or DOUBTFUL & set(extent["flags"]):
            continue
        if gpt != extent["source"].startswith("GPT"):
            continue
        number = extent["number"]
        expect(f"{image}: number {number} stands once", number in partitions, False)
        partitions[number] = (extent["first"], extent["last"], extent["type"].lower(), extent["name"])
    return partitions, document


def by_sfdisk(image):
    table = json.loads(tool("sfdisk", "--json", image))["partitiontable"]
    partitions = {}
    for row in table["partitions"]:
        number = int(re.search(r"\d+$", row["node"])[0])
        code = row["type"].lower() if table["label"] == "gpt" else f"{int(row['type'], 16):#04x}"
        partitions[number] = (row["start"], row["start"] + row["size"] - 1, code, row.get("name", ""))
    return partitions


def by_sgdisk(image, numbers):
    partitions = {}
    for number in numbers:
        text = tool("sgdisk", "-i", number, image)
        code = re.search(r"^Partition GUID code: (\S+)", text, re.MULTILINE)[1].lower()
        first = int(re.search(r"^First sector: (\d+)", text, re.MULTILINE)[1])
        last = int(re.search(r"^Last sector: (\d+)", text, re.MULTILINE)[1])
        name = re.search(r"^Partition name: '(.*)'$", text, re.MULTILINE)[1]
        partitions[number] = (first, last, code, name)
    return partitions


def by_mmls(image, sector_size):
    """{(first, last)} of the allocated extents, without those that hold others."""
    extents = set()
    for line in tool("mmls", "-b", sector_size, image).splitlines():
        row = re.match(r"\d+:\s+(\S+)\s+(\d+)\s+(\d+)\s+\d+", line)
        if row and row[1] not in ("Meta", "-------"):
            extents.add((int(row[2]), int(row[3])))
    return extents


compared = 0


def compare(image, sector_size=512):
    global compared
    ours, document = by_map(image, sector_size)
    containers = {(extent["first"], extent["last"]) for extent in document["extents"] if "container" in extent["flags"]}
    expect(f"{image}: mmls", by_mmls(image, sector_size), {row[:2] for row in ours.values()} - containers)
    compared += 1
    if sector_size == 512:
        expect(f"{image}: sfdisk", by_sfdisk(image), ours)
        compared += 1
    if sector_size == 512 and document["disk"]["scheme"] == "GPT":
        expect(f"{image}: sgdisk", by_sgdisk(image, ours), ours)
        compared += 1
    wrong = [check for check in document["checks"] if check["verdict"] in ("bad", "missing")]
    expect(f"{image}: what is wrong", wrong, [])
    return document


def image_at(scratch, name, sector_size=512):
    path = os.path.join(scratch, name + ".img")
    sparse_image(path, IMAGE_BYTES)
    os.environ["PARTED_SECTOR_SIZE"] = str(sector_size)
    return path


def mbr_disks(scratch):
    image = image_at(scratch, "sfdisk-logical")
    tool("sfdisk", "--quiet", image, text="label: dos\nstart=2048, size=4096, type=83, bootable\n"
         "start=8192, size=200000, type=5\nstart=10240, size=2048, type=83\nstart=14336, size=4096, type=82\n"
         "start=20480, size=8192, type=7\nstart=40960, size=1, type=fd\n")
    compare(image)
    tool("sfdisk", "--quiet", "--delete", image, 6)  # the links around it change
    compare(image)
    tool("sfdisk", "--quiet", "--append", image, text="start=14336, size=2048, type=c\n")
    compare(image)  # its number is the last, its place is not

    image = image_at(scratch, "parted-logical")
    tool("parted", "-s", image, "mklabel", "msdos", "unit", "s", "mkpart", "primary", "ext4", "2048s", "4095s",
         "mkpart", "extended", "8192s", "400000s", "mkpart", "logical", "ntfs", "10240s", "12287s",
         "mkpart", "logical", "fat32", "16384s", "20479s", "mkpart", "logical", "linux-swap", "30000s", "40000s")
    compare(image)

    image = image_at(scratch, "many-logical")
    rows = "".join(f"start={10240 + 4096 * i}, size=2048, type=83\n" for i in range(50))
    tool("sfdisk", "--quiet", image, text="label: dos\nstart=8192, size=300000, type=f\n" + rows)
    compare(image)

    image = image_at(scratch, "large-sectors-mbr", 4096)
    script = os.path.join(scratch, "script")
    with open(script, "w", encoding="ascii") as file:
        file.write("label: dos\nstart=256, size=256, type=83\nstart=1024, size=8192, type=5\n"
                   "start=1300, size=100, type=83\nstart=2000, size=100, type=83\nstart=3000, size=100, type=7\n")
    tool("fdisk", "-b", 4096, image, text=f"I\n{script}\nw\n")
    compare(image, 4096)


def gpt_disks(scratch):
    image = image_at(scratch, "sgdisk")
    tool("sgdisk", "-o", "-a", 1, "-n", "1:2048:2048", "-c", "1:one sector", "-n", "2:3000:5047", "-t", "2:8200",
         "-n", "33:6000:9999", "-t", "33:FD00", "-n", "128:10000:12345", "-t", "128:0700",
         "-c", "128:thirty-six characters, none to spare", image)
    compare(image)
    image = image_at(scratch, "sfdisk-gpt")
    tool("sfdisk", "--quiet", image, text="label: gpt\ntable-length: 256\n"
         'start=8192, size=99, type=DE94BBA4-06D1-4D40-A16A-BFD50179D6AC, name="b"\n'
         '7 : start=4096, size=99, type=0FC63DAF-8483-4772-8E79-3D69D8477DE4, name="a: b, c"\n')
    compare(image)
    for sector_size in (512, 4096):
        image = image_at(scratch, f"parted-gpt-{sector_size}", sector_size)
        tool("parted", "-s", image, "mklabel", "gpt", "unit", "s", "mkpart", '"system part"', "fat32", "2048s", "4095s",
             "set", 1, "esp", "on", "mkpart", "swap", "linux-swap", "4096s", "8191s", "mkpart", "data", "ntfs",
             "9000s", "9999s")
        compare(image, sector_size)


# What makes a volume, and what the map calls it.
MAKERS = {
    "FAT32": ["mkfs.fat", "-F", 32], "FAT16": ["mkfs.fat", "-F", 16], "NTFS": ["mkntfs", "-Q", "-F"],
    "exFAT": ["mkfs.exfat"], "ext4": ["mkfs.ext4", "-q"], "ext2": ["mkfs.ext2", "-q"], "Linux swap": ["mkswap"],
}


def volumes(scratch):
    image = image_at(scratch, "volumes")
    first, size = 2048, 70000
    rows = "".join(f"start={first + i * size}, size={size}\n" for i in range(len(MAKERS)))
    tool("sfdisk", "--quiet", image, text="label: gpt\n" + rows)
    for i, (_, maker) in enumerate(MAKERS.items()):
        volume = os.path.join(scratch, "volume")
        sparse_image(volume, size * 512)
        hidden = ["-h", first + i * size] if maker[0] == "mkfs.fat" else []
        hidden = ["-p", first + i * size, "-H", 255, "-S", 63] if maker[0] == "mkntfs" else hidden
        tool(*maker, *hidden, volume)
        subprocess.run(["dd", f"if={volume}", f"of={image}", "bs=512", f"seek={first + i * size}", "conv=notrunc,sparse",
                        "status=none"], check=True)
    document = compare(image)
    found = {extent["first"]: extent for extent in document["extents"] if extent["kind"] == "volume"}
    for i, name in enumerate(MAKERS):
        volume = found.get(first + i * size, {})
        expect(f"{image}: volume {i + 1}", volume.get("type_name"), name)
        expect(f"{image}: {name} ends in its partition", volume.get("last", 0) < first + (i + 1) * size, True)
    for extent in document["extents"]:
        expect(f"{image}: {extent['type_name']} lies beyond the end", "beyond-end" in extent["flags"], False)


with tempfile.TemporaryDirectory() as folder:
    mbr_disks(folder)
    gpt_disks(folder)
    volumes(folder)
expect("listings compared", compared > 20, True)
finish()
