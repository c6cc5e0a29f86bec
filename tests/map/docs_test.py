"""The documentation of trovisk-map against the program: docs_test.py TROVISK-MAP MAKE-SAMPLES

An example is a block of plain text below a comment that names the sample disk, and the columns where it is a table:

    <!-- map: sample-gpt.img 80 -->
    <!-- map: sample-gpt.img 100, sector 1 zeroed -->

"..." on a line of its own stands for lines that were left out; each stretch between must be found line by line, in
order, in what the program prints.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parents[2]
PAGES = [TOP / "README.md", TOP / "docs" / "trovisk-map.md"]
PROGRAM, MAKE_SAMPLES = (os.path.abspath(each) for each in sys.argv[1:])
EXAMPLE = re.compile(r"^<!-- map: (sample-\w+\.img)( \d+)?(?:, sector (\d+) zeroed)? -->\n\n```plain\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def lines_of_map(image, width, zeroed):
    """What the program prints on a sample disk in this folder, one of whose sectors may be zeroed, as lines."""
    options = ["--width", width.strip()] if width else []
    sound = pathlib.Path(image).read_bytes()
    if zeroed:
        with open(image, "r+b") as disk:
            disk.seek(512 * int(zeroed))
            disk.write(bytes(512))
    run = subprocess.run([PROGRAM, *options, image], capture_output=True, env=dict(os.environ, LC_ALL="C.UTF-8"))
    pathlib.Path(image).write_bytes(sound)
    return run.stdout.decode("utf-8").split("\n")


def has(lines, example):
    """Whether the stretches of an example stand in the lines, one behind the other."""
    position = 0
    for stretch in re.split(r"^\.\.\.\n", example, flags=re.MULTILINE):
        wanted = stretch.split("\n")[:-1]
        places = range(position, len(lines) - len(wanted) + 1)
        found = next((place for place in places if lines[place:place + len(wanted)] == wanted), None)
        if found is None:
            print("not found:", stretch, sep="\n")
            return False
        position = found + len(wanted)
    return True


failed = False
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    subprocess.run([MAKE_SAMPLES, "."], check=True)
    for page in PAGES:
        text = page.read_text("utf-8")
        examples = EXAMPLE.findall(text)
        if not examples or text.count("```plain\n") != len(examples) or text.count("<!-- map") != len(examples):
            print(f"{page}: has no example, or one that is not marked as such")
            failed = True
        for image, width, zeroed, example in examples:
            if not example or not has(lines_of_map(image, width, zeroed), example):
                print(f"{page}: an example is not what the program prints on {image}{width}")
                failed = True
sys.exit(failed)
