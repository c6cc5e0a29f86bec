"""The pages that are tested: what trovisk-map writes of each disk, and the document that goes with it."""
import base64
import json
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

from disks import cut_disk, damaged_disk, hostile_disk, huge_disk, large_disk, overlap_disk, wiped_disk

TOP = Path(__file__).resolve().parents[2]
BUILD = TOP / "build/release"
WORK = TOP / "build/pages"


@dataclass
class Page:
    name: str
    path: Path
    document: dict

    @property
    def text(self):
        return self.path.read_text("utf-8")


def trovisk_map(*arguments):
    """Status 2 says that something is wrong with the disk, not with the run."""
    done = subprocess.run([BUILD / "trovisk-map", *arguments], capture_output=True, cwd=WORK, check=False)
    if done.returncode not in (0, 2):
        sys.exit(f"trovisk-map {arguments}: {done.stderr.decode()}")
    return done.stdout


def page_of(disk):
    path = WORK / f"{disk.stem}.html"
    trovisk_map("--html", str(path), disk.name)
    return Page(disk.stem, path, json.loads(trovisk_map("--json", disk.name)))


def make_pages():
    WORK.mkdir(parents=True, exist_ok=True)
    subprocess.run([BUILD / "make_samples", WORK], check=True, capture_output=True)
    disks = [WORK / f"sample-{name}.img" for name in ("gpt", "mbr", "dynamic")]
    disks.append(damaged_disk(WORK / "damaged.img", WORK / "sample-gpt.img"))
    disks.append(cut_disk(WORK / "cut.img", WORK / "sample-gpt.img"))
    disks.append(wiped_disk(WORK / "wiped-headers.img", WORK / "sample-gpt.img", 1, 196607))
    disks.append(wiped_disk(WORK / "wiped-table.img", WORK / "sample-mbr.img", 0))
    disks.append(hostile_disk(WORK / "hostile.img"))
    disks.append(overlap_disk(WORK / "overlap.img"))
    disks.append(large_disk(WORK / "large.img"))
    disks.append(huge_disk(WORK / "huge.img"))
    pages = {disk.stem: page_of(disk) for disk in disks}
    for disk in disks:
        disk.unlink()
    return pages


def as_in_page(document):
    """The document as a page holds it: reports end before their raw dump, sectors before the zeros at their end."""
    for structure in document["structures"]:
        text = structure["text"]
        if structure["structure"] == "raw_sector":
            structure["text"] = text.split("\n", 1)[0]
        else:
            structure["text"] = text.rpartition(f"Reading sector # {structure['sector']} [as a raw sector]")[0] or text
        stored = base64.b64decode(structure["bytes"])
        structure["bytes"] = base64.b64encode(stored.rstrip(b"\0") or stored[:1]).decode()
    return document
