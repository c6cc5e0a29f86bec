"""The documentation against the program: every example is part of today's report, and every structure has a page.

An example is a fenced block below a comment that names the sample disk and, as on the command line, the sectors:

    <!-- example: sample-gpt.img 1 -->
    <!-- example: sample-gpt.img 96256, invented boot code -->

The second form is run by the program that knows the boot code that the tests invent. "..." on a line of its own
stands for lines that were left out; each stretch between must be found line by line, in order, in what the program
prints on the sample disk. Tabs stay tabs; the NUL bytes behind a name, which a terminal does not show, are taken
out of the report.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

from comparison import expect, finish

TOP = pathlib.Path(__file__).resolve().parents[2]
INDEX = TOP / "docs" / "README.md"
PROGRAM, MAKE_SAMPLES, INVENTED_CODE_PROGRAM = sys.argv[1:4]

EXAMPLE = re.compile(r"^<!-- example: (sample-\w+\.img)((?: \d+){0,2})(, invented boot code)? -->\n\n```text\n"
                     r"(.*?)^```$", re.MULTILINE | re.DOTALL)


def lines_of_report(program, image, sectors):
    """What the program prints, as lines."""
    run = subprocess.run([program, image, *sectors], capture_output=True, env=dict(os.environ, TZ="UTC"))
    expect(f"exit status on {image} {sectors}", run.returncode, 0)
    return run.stdout.replace(b"\0", b"").decode("utf-8").split("\n")


def position_behind(stretch, lines, start):
    """The position behind the first place from start on where the stretch stands; None when there is none."""
    for position in range(start, len(lines) - len(stretch) + 1):
        if lines[position:position + len(stretch)] == stretch:
            return position + len(stretch)
    return None


def missing_stretch(example, lines):
    """The first stretch of an example that the report does not have in its place; None when all are there."""
    position = 0
    for stretch in re.split(r"^\.\.\.\n", example, flags=re.MULTILINE):
        wanted = stretch.split("\n")[:-1]
        position = position_behind(wanted, lines, position)
        if position is None:
            return stretch
    return None


def compare(page, samples):
    """Every example of one page, of which there is one at least."""
    text = page.read_text("utf-8")
    examples = EXAMPLE.findall(text)
    expect(f"{page}: has an example", bool(examples), True)
    expect(f"{page}: examples and blocks of report lines", text.count("```text\n"), len(examples))
    expect(f"{page}: examples and their comments", text.count("<!-- example"), len(examples))
    for image, sectors, invented, example in examples:
        program = INVENTED_CODE_PROGRAM if invented else PROGRAM
        lines = lines_of_report(program, os.path.join(samples, image), sectors.split())
        expect(f"{page}: not in the report of {image}{sectors}", missing_stretch(example, lines), None)


def files_of_structures():
    """The files that decode a structure: those that begin with a description of it, and do not judge it."""
    folders = ("mbr", "gpt", "volumes", "ldm", "spaces")
    sources = sorted(source for folder in folders for source in (TOP / folder).glob("*.cpp"))
    return {str(source.relative_to(TOP)) for source in sources
            if source.read_text("utf-8").startswith("// ") and not source.name.startswith("examine_")}


def pages_of_index():
    """The pages that the index lists, and the source files that it names beside them."""
    rows = re.findall(r"^\| \[[^]]+\]\(([\w-]+\.md)\) \| (.+?) \|$", INDEX.read_text("utf-8"), re.MULTILINE)
    return [INDEX.parent / page for page, _ in rows], re.findall(r"`([\w/.]+)`", " ".join(cell for _, cell in rows))


pages, sources = pages_of_index()
expect("structures without a page", files_of_structures() - set(sources), set())
expect("sources that are not there", [source for source in sources if not (TOP / source).exists()], [])
expect("sources with more than one page", len(sources), len(set(sources)))
expect("pages of the index and of the folder", set(pages),
       set(INDEX.parent.glob("*.md")) - {INDEX, INDEX.parent / "architecture.md", INDEX.parent / "trovisk-map.md"})
with tempfile.TemporaryDirectory() as folder:
    subprocess.run([MAKE_SAMPLES, folder], check=True)
    for each in [TOP / "README.md", *pages]:
        compare(each, folder)
finish()
