"""What the comparisons with other tools share.

A comparison makes a disk image with a tool, runs the program (its path is the script's first argument) on it,
and checks each printed value against what the tool itself says of the image. It ends with status 1 when
anything differs.
"""

import json
import os
import shutil
import subprocess
import sys
import time

_differences = 0


def tool(name, *arguments, text=None):
    """Runs a tool, feeding it text, and gives what it prints. A tool that is missing or fails ends the script."""
    path = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/sbin:/sbin")
    if path is None:
        sys.exit(f"{name} is not installed")
    environment = dict(os.environ, LC_ALL="C", TZ="UTC")
    run = subprocess.run([path, *map(str, arguments)], input=text, capture_output=True, text=True, env=environment)
    if run.returncode != 0:
        sys.exit(f"{name} {arguments} failed:\n{run.stdout}{run.stderr}")
    return run.stdout


def sparse_image(path, size):
    """Makes an image of so many zero bytes."""
    with open(path, "wb") as image:
        image.truncate(size)


def loop_devices_exist():
    """Whether this machine lets this user make loop devices."""
    try:
        os.close(os.open("/dev/loop-control", os.O_RDWR))
    except OSError:
        return False
    return True


def loop_device(image, sector_size):
    """A loop device of that sector size, or None where the machine allows none."""
    if not loop_devices_exist():
        return None
    command = ["losetup", "--find", "--show", "--sector-size", str(sector_size), image]
    environment = dict(os.environ, LC_ALL="C", PATH=os.environ.get("PATH", "") + ":/usr/sbin:/sbin")
    for _ in range(50):  # another process may take the free device that was found
        run = subprocess.run(command, capture_output=True, text=True, check=False, env=environment)
        if run.returncode == 0:
            return run.stdout.strip()
        if "not permitted" in run.stderr or "Permission denied" in run.stderr:
            return None
        time.sleep(0.02)
    sys.exit(f"no loop device: {run.stderr}")


def the_map(image, sector_size):
    """The document that trovisk-map (its path is the script's fourth argument) makes of an image, and its status."""
    run = subprocess.run([sys.argv[4], "--json", f"{image}@{sector_size}"], capture_output=True)
    return json.loads(run.stdout), run.returncode


def report(image, sector_size, *sectors):
    """What the program prints for a whole disk, one sector or a range of sectors."""
    run = subprocess.run([sys.argv[1], f"{image}@{sector_size}", *map(str, sectors)], capture_output=True,
                         text=True, env=dict(os.environ, TZ="UTC"))
    expect(f"exit status on {image} {sectors}", run.returncode, 0)
    return run.stdout


def table_of_contents(whole_disk_report):
    """The rows that a whole-disk run ends with: {sector: description}."""
    rows = whole_disk_report.partition("\tTable Of Contents\n")[2].splitlines()[4:]
    return {int(sector): description for sector, description in (row.split("\t") for row in rows)}


def expect(what, actual, expected):
    """Counts and shows a difference."""
    global _differences
    if actual != expected:
        _differences += 1
        print(f"{what}\n  expected: {expected!r}\n    actual: {actual!r}")


def finish(status=0):
    """Ends the script with status 1 when anything differed, else with the one given."""
    sys.exit(1 if _differences else status)
