"""exFAT volumes made by mkfs.exfat, behind a partition of type 0x07. They carry no boot code, and only known boot code
makes an exFAT volume here: they are unknown boot sectors, shown as they are."""

import os
import tempfile

from comparison import expect, finish, report, sparse_image, table_of_contents, tool

START = 2048  # sectors
VOLUME = 32 * 1024 * 1024  # bytes


def dump(sector):
    """The listing of a sector, an empty line before and after it."""
    lines = ["", "       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f", ""]
    for offset in range(0, len(sector), 16):
        row = sector[offset:offset + 16]
        cells = "".join(f"{byte:02X} " for byte in row)
        characters = "".join(chr(byte) if 0x20 <= byte <= 0x7E else "." for byte in row)
        lines.append(f"0x{offset:03X}  {cells}    {characters}")
    return "\n".join(lines) + "\n\n"


def make(folder, name, sector_size, options):
    """A disk image with one volume, and the volume's first sector."""
    volume = os.path.join(folder, "volume")
    sparse_image(volume, VOLUME)
    tool("mkfs.exfat", *options, volume)
    image = os.path.join(folder, f"{name}.{sector_size}.img")
    sparse_image(image, START * sector_size + VOLUME)
    entry = bytes([0, 0, 0, 0, 7, 0, 0, 0]) + START.to_bytes(4, "little") + (VOLUME // sector_size).to_bytes(4, "little")
    with open(volume, "rb") as source, open(image, "r+b") as target:
        contents = source.read()
        target.seek(0x1BE)
        target.write(entry)
        target.seek(0x1FE)
        target.write(b"\x55\xAA")
        target.seek(START * sector_size)
        target.write(contents)
    return image, contents[:sector_size]


def compare(image, sector_size, boot_sector):
    """The volume's first sector, and that nothing else was found."""
    expect(f"{image}: made by mkfs.exfat", boot_sector[3:11], b"EXFAT   ")
    text = report(image, sector_size, START).partition("Loading TOC ...\n\n")[2]
    expect(f"{image}: boot sector", text, f"Reading sector # {START} [Unknown boot sector]\n" + dump(boot_sector))
    rows = {0: "Master Boot Record", START: "NTFS Boot Sector"}
    expect(f"{image}: table of contents", table_of_contents(report(image, sector_size)), rows)


VOLUMES = {
    "plain": [],
    "labelled": ["-L", "TROVISK"],
    "small-clusters": ["-c", "512"],
    "large-clusters": ["-c", "128K"],
    "aligned": ["-b", "4M"],
    "packed": ["--pack-bitmap"],
}

with tempfile.TemporaryDirectory() as scratch:
    for disk, choice in VOLUMES.items():
        for bytes_per_sector in (512, 4096):
            disk_image, first_sector = make(scratch, disk, bytes_per_sector, choice)
            compare(disk_image, bytes_per_sector, first_sector)
finish()
