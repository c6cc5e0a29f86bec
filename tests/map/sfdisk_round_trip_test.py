#!/usr/bin/env python3
"""The script for sfdisk, fed to sfdisk on an empty image, gives the same partitions: of the sample disks, of disks that
sfdisk has made, and of disks whose primary table is gone.

    sfdisk_round_trip_test.py TROVISK_MAP MAKE_SAMPLES
"""
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import uuid
from pathlib import Path

os.environ["PATH"] += ":/usr/sbin:/sbin"

SECTORS = 200000
TYPES = ("0fc63daf-8483-4772-8e79-3d69d8477de4", "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
         "c12a7328-f81f-11d2-ba4b-00a0c93ec93b")
NAMES = ("", "data", "with \"quotes\"", "back\\slash", "</script>", "$HOME `id`", "comma, start=1", "Größe \u6570",
         "\U0001F4BE", "x" * 36)
ATTRIBUTES = ("", "RequiredPartition", "NoBlockIOProtocol GUID:48", "LegacyBIOSBootable GUID:60,63")


def sfdisk(image, script):
    done = subprocess.run(["sfdisk", "--quiet", "--no-reread", "--no-tell-kernel", image], input=script, text=True,
                          capture_output=True, check=False)
    assert done.returncode == 0, f"sfdisk: {done.stderr}\n{script}"


def empty(image, sectors):
    with open(image, "wb") as file:
        file.truncate(sectors * 512)


def partitions(program, image):
    """What the map says of the partitions, but for where the tables stand."""
    done = subprocess.run([program, "--json", image], capture_output=True, text=True, check=False)
    assert done.returncode in (0, 2), done
    document = json.loads(done.stdout)
    keys = ("kind", "first", "last", "type", "name", "number", "id", "attributes")
    table = sorted(([each[key] for key in keys] + ["active" in each["flags"]] for each in document["extents"]
                    if each["number"] is not None and each["type"] != "0xee"), key=str)
    disk = {key: document["disk"][key] for key in ("id", "first_usable", "last_usable", "table_length")}
    return disk, table


def script(program, image):
    done = subprocess.run([program, "--sfdisk", image], capture_output=True, text=True, check=False)
    assert done.returncode in (0, 2), done
    return done.stdout


def round_trip(program, image, expected, folder, what):
    made = script(program, image)
    copy = folder / "copy.img"
    empty(copy, Path(image).stat().st_size // 512)
    sfdisk(copy, made)
    found = partitions(program, copy)
    assert found == expected, f"{what}:\n{made}\nexpected {expected}\nfound {found}"


def random_gpt(chance):
    entries = chance.choice((4, 128, 128, 200))
    array = -(-entries * 128 // 512)
    lines = ["label: gpt", f"label-id: {uuid.UUID(int=chance.getrandbits(128))}", "unit: sectors",
             f"first-lba: {2 + array}", f"last-lba: {SECTORS - 2 - array}", f"table-length: {entries}", ""]
    numbers = chance.sample(range(1, entries + 1), min(entries, chance.randrange(1, 9)))
    start = 2 + array
    for number in numbers:
        start += chance.randrange(2000)
        size = chance.randrange(1, 20000)
        name = chance.choice(NAMES).replace("\\", "\\x5c").replace('"', "\\x22").replace("$", "\\x24").replace("`", "\\x60")
        line = (f"disk{number} : start={start}, size={size}, type={chance.choice(TYPES)}, "
                f"uuid={uuid.UUID(int=chance.getrandbits(128))}, name=\"{name}\"")
        attributes = chance.choice(ATTRIBUTES)
        lines.append(line + (f', attrs="{attributes}"' if attributes else ""))
        start += size
    return "\n".join(lines) + "\n"


def random_mbr(chance):
    lines = ["label: dos", f"label-id: 0x{chance.getrandbits(32):08x}", "unit: sectors", ""]
    extended = chance.choice((None, 1, 2, 3, 4))
    start = 1
    for number in range(1, 5):
        start += chance.randrange(1, 2000)
        size = chance.randrange(30000, 50000) if number == extended else chance.randrange(1, 20000)
        kind = chance.choice(("05", "0f", "85")) if number == extended else chance.choice(("07", "0e", "0b", "83", "ef"))
        lines.append(f"disk{number} : start={start}, size={size}, type={kind}" + chance.choice(("", ", bootable")))
        if number == extended:
            logical = start
            for which in range(5, chance.randrange(5, 12)):
                logical += chance.randrange(1, 1000)
                length = chance.randrange(1, 3000)
                lines.append(f"disk{which} : start={logical}, size={length}, type=83")
                logical += length
        start += size
    return "\n".join(lines) + "\n"


def without(image, target, *sectors):
    shutil.copyfile(image, target)
    with open(target, "r+b") as file:
        for sector in sectors:
            file.seek(sector * 512)
            file.write(bytes(512))


def main():
    program, make_samples = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        image, hurt = folder / "disk.img", folder / "hurt.img"
        for number in range(20):
            chance = random.Random(number)
            empty(image, SECTORS)
            sfdisk(image, random_gpt(chance))
            expected = partitions(program, image)
            assert expected[1], f"GPT {number}: no partitions"
            round_trip(program, image, expected, folder, f"GPT {number}")
            # The backup has it all.
            for lost in ((1,), (2,), (1, 2)):
                without(image, hurt, *lost)
                round_trip(program, hurt, expected, folder, f"GPT {number} without {lost}")
        for number in range(20):
            empty(image, SECTORS)
            sfdisk(image, random_mbr(random.Random(number)))
            expected = partitions(program, image)
            assert expected[1], f"MBR {number}: no partitions"
            round_trip(program, image, expected, folder, f"MBR {number}")
        subprocess.run([make_samples, folder], check=True)
        round_trip(program, folder / "sample-gpt.img", partitions(program, folder / "sample-gpt.img"), folder, "sample")


main()
