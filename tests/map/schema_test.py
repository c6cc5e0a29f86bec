#!/usr/bin/env python3
"""The schema of the map: it describes each of its properties, takes every document and nothing else.

    schema_test.py SCHEMA MAKE_DOCUMENTS
"""
import copy
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import jsonschema


def objects(schema):
    """Every subschema, with the words that lead to it."""
    def walk(node, path):
        if isinstance(node, dict):
            yield path, node
            for key, value in node.items():
                yield from walk(value, f"{path}/{key}")
        elif isinstance(node, list):
            for index, value in enumerate(node):
                yield from walk(value, f"{path}/{index}")

    return walk(schema, "")


def values(schema, name, key):
    """The values that an enumeration has."""
    part = schema["$defs"][name]["properties"][key]
    return set(part.get("items", part)["enum"])


def places(document, path=()):
    """Every place of the document: of each list the first and the last item."""
    yield path
    if isinstance(document, dict):
        for key, value in document.items():
            yield from places(value, path + (key,))
    elif isinstance(document, list):
        for index in sorted({0, len(document) - 1} if document else ()):
            yield from places(document[index], path + (index,))


def at(document, path):
    for key in path:
        document = document[key]
    return document


def main():
    schema = json.loads(Path(sys.argv[1]).read_text("utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)

    for path, node in objects(schema):
        if node.get("type") == "object":
            assert node["additionalProperties"] is False, path
            assert node["required"] == list(node["properties"]), f"{path}: a member may be left out"
            for name, part in node["properties"].items():
                assert part.get("description"), f"{path}: {name} is not described"

    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.argv[2], folder], check=True)
        documents = {path.name: json.loads(path.read_text("utf-8")) for path in Path(folder).iterdir()}
    assert set(documents) == {"empty.json", "bare.json", "everything.json"}
    for name, document in documents.items():
        for error in validator.iter_errors(document):
            sys.exit(f"{name}: {list(error.absolute_path)}: {error.message}")

    # One document has every value that an enumeration knows.
    everything = documents["everything.json"]
    assert {each["kind"] for each in everything["extents"]} == values(schema, "extent", "kind")
    assert {flag for each in everything["extents"] for flag in each["flags"]} == values(schema, "extent", "flags")
    assert {each["verdict"] for each in everything["checks"]} == values(schema, "check", "verdict")

    # What is no document: a value of another kind anywhere, a member more or less.
    everything["structures"], everything["extents"] = everything["structures"][-1:], everything["extents"][-1:]
    for path in places(everything):
        if path:
            damaged = copy.deepcopy(everything)
            at(damaged, path[:-1])[path[-1]] = 0.5
            assert not validator.is_valid(damaged), f"takes 0.5 at {path}"
        value = at(everything, path)
        if isinstance(value, dict):
            damaged = copy.deepcopy(everything)
            at(damaged, path)["more"] = 0
            assert not validator.is_valid(damaged), f"takes one more at {path}"
            for key in value:
                damaged = copy.deepcopy(everything)
                del at(damaged, path)[key]
                assert not validator.is_valid(damaged), f"takes {path} without {key}"
    for number in (-1, 2**53 + 1, "9007199254740993.0", "-9007199254740993", "0x20000000000001", "7", True):
        damaged = copy.deepcopy(everything)
        damaged["extents"][0]["first"] = number
        assert not validator.is_valid(damaged), f"takes {number}"


main()
