"""NTFS volumes made by mkntfs behind a type-0x07 partition: their boot code is none of the known ones, so the sector
is shown raw as an unknown boot sector, and nothing of the volume is registered."""

import os
import struct
import tempfile

from comparison import expect, finish, report, sparse_image, table_of_contents, tool

VOLUME_BYTES = 16 << 20


def make(folder, sector_size, cluster_size, start):
    """A disk whose one partition, from the sector start, holds the volume. Gives its path and the volume's first
    sector as mkntfs wrote it."""
    volume = os.path.join(folder, "volume")
    sparse_image(volume, VOLUME_BYTES)
    tool("mkntfs", "--quiet", "--fast", "--force", "--sector-size", sector_size, "--cluster-size", cluster_size,
         "--partition-start", start, "--heads", 255, "--sectors-per-track", 63, volume)
    image = os.path.join(folder, f"ntfs.{sector_size}.{cluster_size}.{start}.img")
    sparse_image(image, start * sector_size + VOLUME_BYTES)
    with open(volume, "rb") as source, open(image, "r+b") as disk:
        disk.seek(0x1BE + 4)
        disk.write(struct.pack("<B3xII", 0x07, start, VOLUME_BYTES // sector_size))
        disk.seek(0x1FE)
        disk.write(b"\x55\xAA")
        disk.seek(start * sector_size)
        content = source.read()
        disk.write(content)
    return image, content[:sector_size]


def listing(sector):
    """The raw dump of a sector."""
    lines = ["", "       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f", ""]
    for offset in range(0, len(sector), 16):
        row = sector[offset:offset + 16]
        characters = "".join(chr(byte) if 0x20 <= byte < 0x7F else "." for byte in row)
        lines.append(f"0x{offset:03X}  " + "".join(f"{byte:02X} " for byte in row) + "    " + characters)
    return "\n".join([*lines, "", ""])


def compare(image, sector_size, start, boot_sector):
    """The report of the volume's first sector, and what the whole disk's run registers."""
    expect(f"{image}: OEM name and end mark of mkntfs", (boot_sector[3:11], boot_sector[510:512]),
           (b"NTFS    ", b"\x55\xAA"))
    text = report(image, sector_size, start)
    expect(f"{image}: report", text.partition("\nLoading TOC ...\n\n")[2],
           f"Reading sector # {start} [Unknown boot sector]\n" + listing(boot_sector))
    expect(f"{image}: table of contents", table_of_contents(report(image, sector_size)),
           {0: "Master Boot Record", start: "NTFS Boot Sector"})


with tempfile.TemporaryDirectory() as scratch:
    for bytes_per_sector, cluster, first in ((512, 512, 63), (512, 4096, 2048), (512, 65536, 2048), (2048, 4096, 512),
                                             (4096, 4096, 256), (4096, 65536, 63)):
        path, first_sector = make(scratch, bytes_per_sector, cluster, first)
        compare(path, bytes_per_sector, first, first_sector)
finish()
