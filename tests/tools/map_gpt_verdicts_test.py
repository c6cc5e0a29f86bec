"""GUID partition tables with one wrong byte: the map finds something wrong where sgdisk -v does, and nothing else.

Every byte of both headers is changed in turn, some behind them and some of both arrays. sgdisk takes an image to have
512-byte sectors; one of 4096 it sees through a loop device, without which that part counts as skipped.
"""

import os
import random
import re
import subprocess
import tempfile

from comparison import expect, finish, loop_device, sparse_image, the_map, tool

HEADER = 92
ARRAY = 128 * 128
SKIPPED = 77


def sound_by_sgdisk(device):
    """sgdisk mends a damaged copy in memory and then finds no problem: what it says before that counts too."""
    run = subprocess.run(["sgdisk", "-v", device], capture_output=True, text=True, errors="replace", check=False,
                         env=dict(os.environ, LC_ALL="C", PATH=os.environ.get("PATH", "") + ":/usr/sbin:/sbin"))
    text = run.stdout + run.stderr
    return "No problems found" in text and not re.search("corrupt|invalid|damaged|Warning", text)


def sound_by_map(image, sector_size):
    document, status = the_map(image, sector_size)
    wrong = [check for check in document["checks"] if check["verdict"] in ("bad", "missing")]
    expect("the exit status says whether something is wrong", status, 2 if wrong else 0)
    return not wrong


def places(sector_size, sectors):
    """Offsets on the disk, and whether the byte there belongs to the table."""
    last = sectors - 1
    array_sectors = ARRAY // sector_size
    for header, array in ((1, 2), (last, last - array_sectors)):
        for offset in range(HEADER):
            yield header * sector_size + offset, True
        for offset in (HEADER, sector_size - 1):
            yield header * sector_size + offset, False  # reserved: nobody looks at it
        randomly = random.Random(sector_size + header)
        for offset in (0, 127, 128, ARRAY - 1, *(randomly.randrange(ARRAY) for _ in range(40))):
            yield array * sector_size + offset, True


def compare(image, device, sector_size, sectors):
    expect(f"{sector_size}: sgdisk, sound", sound_by_sgdisk(device), True)
    expect(f"{sector_size}: map, sound", sound_by_map(image, sector_size), True)
    disk = os.open(device, os.O_RDWR)
    randomly = random.Random(sector_size)
    for place, counts in places(sector_size, sectors):
        byte = os.pread(disk, 1, place)
        changed = byte[0] ^ randomly.randrange(1, 256)
        os.pwrite(disk, bytes([changed]), place)
        os.fsync(disk)
        what = f"{sector_size}: byte {place % sector_size} of sector {place // sector_size} is {changed:#x}"
        expect(f"{what}: sgdisk", sound_by_sgdisk(device), not counts)
        expect(f"{what}: map", sound_by_map(image, sector_size), not counts)
        os.pwrite(disk, byte, place)
    os.fsync(disk)
    os.close(disk)
    expect(f"{sector_size}: map, sound again", sound_by_map(image, sector_size), True)


skipped = False
with tempfile.TemporaryDirectory() as scratch:
    for size in (512, 4096):
        sectors_of_image = 4096
        image_path = os.path.join(scratch, f"{size}.img")
        sparse_image(image_path, sectors_of_image * size)
        loop = loop_device(image_path, size) if size != 512 else None
        if size != 512 and loop is None:
            skipped = True
            continue
        try:
            tool("sgdisk", "-o", "-a", 1, "-n", "1:256:511", "-c", "1:first", "-n", "2:512:1023", "-t", "2:8200",
                 "-n", "5:1024:1030", "-n", "128:2000:3000", loop or image_path)
            compare(image_path, loop or image_path, size, sectors_of_image)
        finally:
            if loop:
                tool("losetup", "--detach", loop)
finish(SKIPPED if skipped else 0)
