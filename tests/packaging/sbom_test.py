#!/usr/bin/env python3
"""Holds a bill of materials against what SPDX 2.3 asks of one, and against the files beside it: sbom_test.py FILE"""

import hashlib
import json
import os
import re
import sys

path = sys.argv[1]
with open(path, encoding="utf-8") as file:
    bill = json.load(file)


def check(what, holds):
    if not holds:
        sys.exit(f"{path}: {what}")


check("version", bill["spdxVersion"] == "SPDX-2.3" and bill["dataLicense"] == "CC0-1.0")
check("document", bill["SPDXID"] == "SPDXRef-DOCUMENT" and bill["name"])
check("namespace", re.fullmatch(r"urn:uuid:[0-9a-f-]{36}", bill["documentNamespace"]))
check("time", re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", bill["creationInfo"]["created"]))
for creator in bill["creationInfo"]["creators"]:
    check("creator", re.fullmatch(r"Organization: .+|Tool: .+-[0-9.]+", creator))

identifiers = [bill["SPDXID"]] + [each["SPDXID"] for each in bill["packages"]]
check("identifiers are unique", len(set(identifiers)) == len(identifiers))
related = set()
for relationship in bill["relationships"]:
    ends = relationship["spdxElementId"], relationship["relatedSpdxElement"]
    check(f"relationship {ends}", set(ends) <= set(identifiers))
    related.update(ends)
check("every package stands in a relationship", related == set(identifiers))

named = []
for package in bill["packages"]:
    name = package["SPDXID"]
    check(f"identifier {name}", re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", name))
    check(f"{name}: version", re.fullmatch(r"\d+(\.\d+)+", package["versionInfo"]))
    check(f"{name}: location", package["downloadLocation"] == "NOASSERTION")
    check(f"{name}: not analysed", package["filesAnalyzed"] is False)
    for key in ("name", "licenseConcluded", "licenseDeclared", "copyrightText", "primaryPackagePurpose"):
        check(f"{name}: {key}", package[key])
    if "packageFileName" in package:
        check(f"{name}: supplier", re.fullmatch(r"Organization: .+ \([^@]+@[^@]+\)", package["supplier"]))
        check(f"{name}: homepage", re.fullmatch(r"https?://\S+", package["homepage"]))
        named.append(package["packageFileName"])
        with open(os.path.join(os.path.dirname(path), named[-1]), "rb") as file:
            content = file.read()
        for checksum in package["checksums"]:
            digest = hashlib.new(checksum["algorithm"].lower(), content).hexdigest()
            check(f"{name}: checksum", checksum["checksumValue"] == digest)

folder = os.path.dirname(path) or "."
others = {os.path.basename(path), "SHA256SUMS"}
files = {each for each in os.listdir(folder) if not each.endswith(".dsc")} - others
check("every file is named", set(named) == files)
