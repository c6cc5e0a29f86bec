"""Disks of which the tests make pages: GPT disks, entry by entry, as sparse files."""
import shutil
import struct
import uuid
import zlib
from pathlib import Path

SECTOR = 512
LINUX = uuid.UUID("0FC63DAF-8483-4772-8E79-3D69D8477DE4")
BASIC = uuid.UUID("EBD0A0A2-B9E5-4433-87C0-68B6B72699C7")


def entry(number, first, last, name, type_guid=LINUX):
    unique = uuid.UUID(int=number + 1)
    units = name.encode("utf-16-le")[:72].ljust(72, b"\0")
    return type_guid.bytes_le + unique.bytes_le + struct.pack("<QQQ", first, last, 0) + units


def protective_mbr(sectors):
    record = bytearray(SECTOR)
    record[0x1BE:0x1CE] = struct.pack("<BBHBBHII", 0, 0, 2, 0xEE, 0xFF, 0xFFFF, 1, min(sectors - 1, 0xFFFFFFFF))
    record[0x1FE:] = b"\x55\xAA"
    return bytes(record)


def header(own, other, array, sectors, table, count):
    table_sectors = len(table) // SECTOR
    fields = struct.pack("<8sIIIIQQQQ16sQIII", b"EFI PART", 0x10000, 92, 0, 0, own, other, 2 + table_sectors,
                         sectors - 2 - table_sectors, uuid.UUID(int=42).bytes_le, array, count, 128, zlib.crc32(table))
    return (fields[:16] + struct.pack("<I", zlib.crc32(fields)) + fields[20:]).ljust(SECTOR, b"\0")


def gpt_disk(path, sectors, entries, count=128):
    """Writes a sound GPT disk of so many sectors; entries as entry() makes them."""
    table = b"".join(entries).ljust(count * 128, b"\0")
    table_sectors = len(table) // SECTOR
    backup = sectors - 1 - table_sectors
    with open(path, "wb") as disk:
        disk.truncate(sectors * SECTOR)
        disk.write(protective_mbr(sectors) + header(1, sectors - 1, 2, sectors, table, count) + table)
        disk.seek(backup * SECTOR)
        disk.write(table + header(sectors - 1, 1, backup, sectors, table, count))
    return Path(path)


HOSTILE_NAMES = [
    "</script><script>hurt()</script>",
    "<img src=x onerror=hurt()>",
    "<!--<script>",
    "\u202egpj.exe\u2066",
    "\"' & &lt; {{script}}",
    "\x1b[31mred\x07\x00after",
    "\u05e9\u05dc\u05d5\u05dd 12 \u0645\u0631\u062d\u0628\u0627",
    "\ud800lone",
]


def hostile_disk(path):
    def units(name):
        return name.encode("utf-16-le", "surrogatepass")
    entries = []
    for number, name in enumerate(HOSTILE_NAMES):
        made = entry(number, 2048 * (number + 1), 2048 * (number + 2) - 1, "")
        entries.append(made[:56] + units(name)[:72].ljust(72, b"\0"))
    return gpt_disk(path, 2048 * 12, entries)


def large_disk(path, partitions=20000):
    """5,000 sectors of entries, twice."""
    first = 2 + partitions // 4
    entries = [entry(n, first + 8 * n, first + 8 * n + 7, f"Part {n}") for n in range(partitions)]
    return gpt_disk(path, 2 * first + 8 * partitions + 100, entries, partitions)


def huge_disk(path):
    """As many bytes as the file system takes, up to 16 TiB less a page."""
    for sectors in (2**35 - 8, 2**31, 2**28):
        try:
            return gpt_disk(path, sectors, [entry(0, 2048, 4095, "Small"), entry(1, 4096, sectors - 4096, "Rest")])
        except OSError:
            continue
    raise OSError("no sparse files here")


def overlap_disk(path):
    """Two partitions that claim the same sectors, by a table that is sound otherwise."""
    return gpt_disk(path, 40960, [entry(0, 2048, 20479, "First"), entry(1, 16384, 30719, "Second", BASIC)])


def cut_disk(path, sample):
    """The first half of the sample."""
    shutil.copy(sample, path)
    with open(path, "r+b") as disk:
        disk.truncate(98304 * SECTOR)
    return Path(path)


def wiped_disk(path, sample, *sectors):
    """The sample with zeros in the sectors."""
    shutil.copy(sample, path)
    with open(path, "r+b") as disk:
        for sector in sectors:
            disk.seek(sector * SECTOR)
            disk.write(bytes(SECTOR))
    return Path(path)


def damaged_disk(path, sample):
    """The sample with a wrong checksum in its primary header, an overlap, and a partition beyond its end."""
    shutil.copy(sample, path)
    with open(path, "r+b") as disk:
        disk.seek(SECTOR + 40)
        disk.write(struct.pack("<Q", 35))
        disk.seek(2 * SECTOR + 128 + 32)
        disk.write(struct.pack("<QQ", 60000, 77823))
        disk.seek(4 * SECTOR + 3 * 128 + 40)
        disk.write(struct.pack("<Q", 500000))
        disk.seek(2048 * SECTOR)
        disk.write(bytes(SECTOR))
    return Path(path)
