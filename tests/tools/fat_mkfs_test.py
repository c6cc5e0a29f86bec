"""FAT volumes made by mkfs.fat in partitions made by sfdisk: every printed value as these tools list it."""

import json
import os
import re
import tempfile

from comparison import expect, finish, report, sparse_image, table_of_contents, tool

START = 2048  # the partition's first sector
PARTITION_TYPE = {12: 0x01, 16: 0x06, 32: 0x0C}
REGISTERED_AS = {12: "FAT Boot Sector", 16: "FAT Boot Sector", 32: "FAT32 Boot Sector"}
MEDIA = {0xF0: "3 1/2 floppy, 1.44MB", 0xF8: "Fixed Hard Drive", 0xF9: "5 1/4 floppy, 1.2MB", 0xFA: "unknown",
         0xFD: "5 1/4 floppy, 360KB"}
HEAD = 4 << 20  # bytes: the boot sectors, FATs and root directory of all volumes here lie within


class Volume:
    """A volume in a file of its own, and what mkfs.fat and fsck.fat say of it."""

    def __init__(self, path, bits, sectors, sector_size, options):
        self.path, self.bits, self.sector_size = path, bits, sector_size
        sparse_image(path, sectors * sector_size)
        self.made = tool("mkfs.fat", "-v", "-F", bits, "-S", sector_size, *options, path)
        self.checked = tool("fsck.fat", "-n", "-v", path)
        self.sectors = self.number(self.checked, r"^ *(\d+) sectors total$")
        self.reserved = self.number(self.checked, r"^ *(\d+) reserved sectors?$")
        self.first_fat = self.number(self.checked, r"^First FAT starts at byte \d+ \(sector (\d+)\)$")
        self.fats = self.number(self.checked, r"^ *(\d+) FATs?, \d+ bit entries$")
        self.fat_size = self.number(self.checked, r"^ *\d+ bytes per FAT \(= (\d+) sectors\)$")
        self.first_data = self.number(self.checked, r"^Data area starts at byte \d+ \(sector (\d+)\)$")
        self.clusters = self.number(self.checked, r"^ *(\d+) data clusters \(\d+ bytes\)$")
        self.hidden = self.number(self.checked, r"^ *(\d+) hidden sectors$")
        # Two tools, one volume.
        expect(f"{path}: hidden sectors", self.hidden, self.number(self.made, r"^hidden sectors 0x([0-9a-f]+);$", 16))
        expect(f"{path}: clusters", self.clusters, self.number(self.made, r"and provides (\d+) clusters\.$"))

    @staticmethod
    def text(listing, pattern):
        """What the pattern's group finds in a listing, where it must stand once."""
        found = re.findall(pattern, listing, re.MULTILINE)
        expect(f"places of {pattern}", len(found), 1)
        return found[0] if found else "0"

    @classmethod
    def number(cls, listing, pattern, base=10):
        return int(cls.text(listing, pattern), base)

    def layout(self):
        """The lines on where FATs, root directory and data begin."""
        lines = [(f"First sector of FAT#{n + 1}", START + self.first_fat + n * self.fat_size) for n in range(self.fats)]
        if self.bits != 32:
            root = self.number(self.checked, r"^Root directory starts at byte \d+ \(sector (\d+)\)$")
            lines.append(("First root dir sector number", START + root))
        return lines + [("First data sector number", START + self.first_data)]

    def parameter_block(self):
        """The lines of the BIOS parameter block. The 16-bit total is in use where it suffices."""
        checked = self.checked
        bytes_per_sector = self.number(checked, r"^ *(\d+) bytes per logical sector$")
        bytes_per_cluster = self.number(checked, r"^ *(\d+) bytes per cluster$")
        fits = self.sectors < 65536
        entries = 0 if self.bits == 32 else self.number(checked, r"^ *(\d+) root directory entries$")
        fat_size = 0 if self.bits == 32 else self.fat_size
        return [("Bytes/Sector", bytes_per_sector),
                ("Sectors/Cluster", bytes_per_cluster // bytes_per_sector),
                ("Reserved Sector Count", self.reserved),
                ("Number of FATs", self.fats),
                ("Root Entry Count", entries),
                ("Total Sectors On Volume", f"{self.sectors if fits else 0} (16-bit count)"),
                ("Media Type", MEDIA[self.number(checked, r"^Media byte 0x([0-9a-f]+) \(", 16)]),
                ("Number of Sectors in FAT", f"{fat_size} (16-bit count)"),
                ("Sectors/Track", self.number(checked, r"^ *(\d+) sectors/track, \d+ heads$")),
                ("Number Of Heads", self.number(checked, r"^ *\d+ sectors/track, (\d+) heads$")),
                ("Hidden Sectors", self.hidden),
                ("Total Sectors On Volume", f"{0 if fits else self.sectors} (32-bit count)")]

    def extended(self, backup):
        """The lines behind it. The serial number is shown as it is stored, its lowest byte first."""
        lines = []
        if self.bits == 32:
            cluster = self.number(self.checked, r"^Root directory start at cluster (\d+) ")
            lines = [("Number of Sectors in FAT", f"{self.fat_size} (32-bit count)"),
                     ("Filesystem Version", "0.0"),
                     ("First Cluster Of Root Dir", cluster),
                     ("Sector Number of FSINFO", 1),
                     ("Backup Boot Sector", backup)]
        drive = self.number(self.made, r"^drive number 0x([0-9a-f]+);$", 16)
        serial = self.number(self.made, r"^Volume ID is ([0-9a-f]+),", 16)
        label = self.text(self.made, r"^Volume ID is [0-9a-f]+, (no volume label|volume label .+)\.$")
        label = "NO NAME" if label == "no volume label" else label.removeprefix("volume label ")
        return lines + [("Drive Number", f"0x{drive:02X}"),
                        ("Extended Boot Signature Byte", "0x29"),
                        ("Volume Serial Number", "0x" + serial.to_bytes(4, "little").hex().upper()),
                        ("Volume Label", f"[ {label:<11} ]"),
                        ("File System Type", f"[ FAT{self.bits}    ]"),
                        ("Sector End Mark", "0xAA55")]

    def boot_sector(self, backup):
        """Every line with a value that the report of the boot sector has."""
        jump = "[0xEB][0x58][0x90]" if self.bits == 32 else "[0xEB][0x3C][0x90]"
        oem_name = self.text(self.checked, r'^System ID "(.*)"$')
        lines = [("Jump Instruction To Boot Code", jump), ("OEM Name", f"[ {oem_name:<8} ]")]
        lines += self.layout() + self.parameter_block() + self.extended(backup)
        return [(label, str(value)) for label, value in lines]

    def fs_info(self):
        """Every line of the report of an FSInfo sector; mkfs.fat begins the search at the root directory."""
        used = self.number(self.checked, r": \d+ files, (\d+)/\d+ clusters$")
        return [("Leading Signature", "[ RRaA ]"),
                ("FSI Structure Signatue", "[ rrAa ]"),
                ("Last known count of free clusters", str(self.clusters - used)),
                ("Cluster number to begin search", "2"),
                ("Sector End Mark", "0xAA55")]


def fields_of(text):
    """Heading and (label, value) lines of a report, up to the raw dump."""
    text = text.partition("Loading TOC ...\n")[2].partition(" [as a raw sector]\n")[0]
    return (re.search(r"^(.+)\n-{10,}$", text, re.MULTILINE) or ["none"])[0].split("\n")[0], re.findall(
        r"^\t?(\S.*?) *: (.*)$", text, re.MULTILINE)


def expect_fields(what, actual, expected):
    """Shows the lines that differ, not all of them."""
    expect(f"{what}: labels", [label for label, _ in actual], [label for label, _ in expected])
    for line, (got, wanted) in enumerate(zip(actual, expected), 1):
        expect(f"{what}: value {line}", got, wanted)


def disk_with(volume, folder):
    """An image whose one partition holds the volume's head, and the partition's first sector as sfdisk lists it.

    sfdisk counts in sectors of 512 bytes on an image; partition entries know of no sector size.
    """
    image = os.path.join(folder, "disk.img")
    sparse_image(image, (START + volume.sectors) * volume.sector_size)
    code = PARTITION_TYPE[volume.bits]
    tool("sfdisk", "--quiet", image, text=f"label: dos\nstart={START}, size={volume.sectors}, type={code:x}\n")
    table = json.loads(tool("sfdisk", "--json", image))["partitiontable"]["partitions"]
    expect(f"{image}: partitions", [(row["start"], row["size"]) for row in table], [(START, volume.sectors)])
    with open(volume.path, "rb") as source, open(image, "r+b") as disk:
        disk.seek(START * volume.sector_size)
        disk.write(source.read(HEAD))
    return image


def compare(folder, name, bits, sectors, sector_size, *options, fits_type=True, backup=6):
    """Makes the volume and compares boot sectors, FSInfo sectors and table of contents.

    fits_type: whether the cluster count is one of the FAT type that mkfs.fat was told to make.
    """
    what = f"{name}, {sector_size}-byte sectors, mkfs.fat -F {bits} {' '.join(map(str, options))}"
    volume = Volume(os.path.join(folder, "volume.img"), bits, sectors, sector_size, options)
    image = disk_with(volume, folder)
    by_count = 12 if volume.clusters < 4085 else 16 if volume.clusters < 65525 else 32
    expect(f"{what}: type by cluster count", by_count == bits, fits_type)

    rows = {0: "Master Boot Record", START: REGISTERED_AS[bits]}
    heading, fields = fields_of(report(image, sector_size, START))
    expect(f"{what}: heading", heading, f"FAT{by_count} Boot Sector")
    if fits_type:
        expect_fields(f"{what}: boot sector", fields, volume.boot_sector(backup))
    else:
        # The layout is the same, the extended block is read as the other type's.
        count = volume.fats
        expect(f"{what}: FATs", fields[2:2 + count], [(label, str(value)) for label, value in volume.layout()[:count]])

    if by_count == 32:
        rows[START + 1] = "FAT32 Fileystem Information sector"
        _, fields = fields_of(report(image, sector_size, START + 1))
        expect_fields(f"{what}: FSInfo", fields, volume.fs_info())
        if volume.hidden == START:
            rows[START + volume.reserved] = "FAT directory sector"
            rows[START + backup] = "Backup FAT boot sector"
            rows[START + backup + 1] = "FAT32 Fileystem Information sector"
    expect(f"{what}: table of contents", table_of_contents(report(image, sector_size)), rows)
    return image, volume


def compare_backup(folder):
    """The backup's report is the primary's with its own sector as the base."""
    image, volume = compare(folder, "backup", 32, 80000, 512, "-h", START, "-b", 12, "-R", 40, backup=12)
    backup = START + 12
    _, fields = fields_of(report(image, 512, backup))
    moved = ("First sector of FAT", "First data sector")
    expected = [(label, str(int(value) + 12)) if label.startswith(moved) else (label, value)
                for label, value in volume.boot_sector(12)]
    expect_fields("backup boot sector", fields, expected)
    _, fields = fields_of(report(image, 512, backup + 1))
    expect_fields("backup FSInfo", fields, volume.fs_info())


with tempfile.TemporaryDirectory() as scratch:
    for bytes_per_sector in (512, 4096):
        for hidden in ([], ["-h", START], ["-h", 63]):
            compare(scratch, "small", 12, 3000, bytes_per_sector, "-s", 1, *hidden)
            compare(scratch, "medium", 16, 40000, bytes_per_sector, "-s", 4, *hidden)
            compare(scratch, "large", 32, 70000, bytes_per_sector, "-s", 1, *hidden)
    compare(scratch, "floppy", 12, 2880, 512, "-s", 1, "-M", "0xf0", "-D", 0, "-r", 224, "-g", "2/18", "-n", "FLOPPY")
    compare(scratch, "32-bit total", 16, 200000, 512, "-s", 4, "-i", "01abcdef", "-n", "A LABEL", "-M", "0xfa")
    compare(scratch, "unaligned", 16, 30000, 512, "-a", "-s", 2, "-f", 1, "-R", 5, "-r", 16, "-D", 129)
    compare(scratch, "one FAT", 32, 280001, 512, "-s", 2, "-f", 1, "-h", 4294967295, "-n", "ELEVENCHARS")
    # FAT32 by its fields, FAT16 by its cluster count, which decides.
    compare(scratch, "few clusters", 32, 40000, 512, "-s", 1, fits_type=False)
    compare_backup(scratch)
finish()
