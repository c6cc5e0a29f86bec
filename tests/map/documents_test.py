#!/usr/bin/env python3
"""Documents of real disks: the sample disks, and what is left of them after damage, against the schema; each equals
itself in a comparison, as a file, through a pipe and as a disk.

    documents_test.py TROVISK_MAP MAKE_SAMPLES SCHEMA
"""
import json
import os
import random
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

import jsonschema

ROUNDS = 4  # of damage for each sample


def damaged(disk, number):
    """The same damage in every run: single bytes and whole sectors where the structures are, or the end cut off."""
    chance = random.Random(number)
    data = bytearray(disk)
    used = [sector for sector in range(len(data) // 512) if any(data[sector * 512:sector * 512 + 512])]
    for _ in range(chance.choice((1, 4, 40))):
        sector = chance.choice(used)
        data[sector * 512 + chance.randrange(512)] = chance.choice((0, 0xFF, chance.randrange(256)))
    for _ in range(chance.choice((0, 0, 3))):
        sector = chance.choice(used)
        data[sector * 512:sector * 512 + 512] = bytes([chance.choice((0, 0xFF))]) * 512
    if chance.random() < 0.2:
        del data[chance.randrange(len(data)):]
    return data


def run(*arguments):
    return subprocess.run([str(each) for each in arguments], capture_output=True, check=False)


def write_sparse(path, data):
    with open(path, "wb") as file:
        for start in range(0, len(data), 65536):
            piece = data[start:start + 65536]
            if any(piece):
                file.seek(start)
                file.write(piece)
        file.truncate(len(data))


def compare_through_pipes(program, folder, image, saved):
    pipe = folder / "pipe"
    os.mkfifo(pipe)
    with subprocess.Popen([program, "--compare", pipe, image], stdout=subprocess.PIPE, stderr=subprocess.PIPE) as waiting:
        pipe.write_bytes(saved.read_bytes())
        assert waiting.communicate() == (b"", b"") and waiting.returncode == 0, waiting.returncode
    with subprocess.Popen([program, "--compare", pipe, image], stdout=subprocess.PIPE, stderr=subprocess.PIPE) as waiting:
        pipe.write_bytes(image.read_bytes()[:4096])
        complaint = f"trovisk-map: {pipe} is a pipe that gives no saved map\n".encode()
        assert waiting.communicate() == (b"", complaint) and waiting.returncode == 3, waiting.returncode
    with subprocess.Popen([program, "--compare", pipe, image]) as waiting:
        with open(pipe, "wb") as writer:  # of which no more comes
            writer.write(b'{"extents": [' + b"1," * 100000)
            writer.flush()
            waiting.terminate()
            writer.close()
            assert waiting.wait(60) == -signal.SIGTERM, waiting.returncode


def main():
    program, make_samples, schema = sys.argv[1:]
    validator = jsonschema.Draft202012Validator(json.loads(Path(schema).read_text("utf-8")))
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        subprocess.run([make_samples, folder], check=True)
        complaints = 0
        for sample in sorted(folder.glob("*.img")):
            disk = sample.read_bytes()
            image, saved = folder / "disk", folder / "saved.json"
            for number in range(ROUNDS + 1):
                write_sparse(image, damaged(disk, number) if number else disk)
                made = run(program, "--json", image)
                what = f"{sample.name}, damage {number}"
                assert made.returncode in (0, 2), f"{what}: status {made.returncode}, {made.stderr!r}"
                document = json.loads(made.stdout.decode("utf-8"))
                for error in validator.iter_errors(document):
                    print(f"{what}: {list(error.absolute_path)}: {error.message[:200]}", file=sys.stderr)
                    complaints += 1
                saved.write_bytes(made.stdout)
                compared = run(program, "--compare", saved, image)
                assert (compared.returncode, compared.stdout) == (0, b""), f"{what}: {compared}"
                if number == 0:
                    whole = folder / "whole.json"
                    whole.write_bytes(made.stdout)
                    if sample.name == "sample-gpt.img":
                        compare_through_pipes(program, folder, image, saved)
                else:
                    changed = run(program, "--compare", whole, saved)
                    assert changed.returncode in (0, 1), f"{what}: {changed}"
                    assert bool(changed.stdout) == bool(changed.returncode), f"{what}: {changed}"
        sys.exit(complaints != 0)


main()
