#!/usr/bin/env python3
"""Writes the software bill of materials of a release to standard output: SPDX 2.3 in JSON.

    SOURCE_DATE_EPOCH=... sbom.py VERSION COMMIT SOURCES DEB ZIP

Everything in it follows from the arguments, the files and the compilers, so the same release gives the same bill.
"""

import datetime
import hashlib
import json
import os
import re
import subprocess
import sys
import uuid

CONTROL = os.path.join(os.path.dirname(__file__), "..", "debian", "control")
GCC_LICENSE = "GPL-3.0-or-later WITH GCC-exception-3.1"
MINGW_CXX = "x86_64-w64-mingw32-g++-posix"


def preprocessed(compiler, text):
    """What a compiler's preprocessor makes of the last line of a text, without blanks and quotation marks."""
    command = [compiler, "-E", "-P", "-x", "c++", "-"]
    output = subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout
    return output.splitlines()[-1].replace(" ", "").replace('"', "")


def compiler_version(compiler):
    return preprocessed(compiler, "__GNUC__.__GNUC_MINOR__.__GNUC_PATCHLEVEL__\n")


def control_field(name):
    with open(CONTROL, encoding="utf-8") as file:
        return re.search(f"(?m)^{name}: (.*)$", file.read())[1]


def supplier():
    """Who publishes, as SPDX writes it."""
    return "Organization: " + re.sub("<(.*)>", r"(\1)", control_field("Maintainer"))


def package(identifier, name, version, license_name, copyright_text, purpose, **more):
    return {
        "SPDXID": "SPDXRef-" + identifier,
        "name": name,
        "versionInfo": version,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": license_name,
        "licenseDeclared": license_name,
        "copyrightText": copyright_text,
        "primaryPackagePurpose": purpose,
        **more,
    }


def artefact(identifier, version, path, purpose, **more):
    with open(path, "rb") as file:
        content = file.read()
    checksums = [
        {"algorithm": name.upper(), "checksumValue": hashlib.new(name, content).hexdigest()} for name in ("sha1", "sha256")
    ]
    return package(
        identifier,
        "trovisk",
        version,
        "MIT",
        "Copyright (c) 2026 the Trovisk authors",
        purpose,
        packageFileName=os.path.basename(path),
        supplier=supplier(),
        homepage=control_field("Homepage"),
        checksums=checksums,
        **more,
    )


def library(identifier, name, version, license_name):
    return package(identifier, name, version, license_name, "NOASSERTION", "LIBRARY", supplier="NOASSERTION")


def main():
    version, commit, sources, deb, windows_zip = sys.argv[1:]
    created = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
    glibc = preprocessed("c++", "#include <features.h>\n__GLIBC__.__GLIBC_MINOR__\n")
    mingw = preprocessed(MINGW_CXX, "#include <_mingw.h>\n__MINGW64_VERSION_MAJOR.__MINGW64_VERSION_MINOR\n")
    cli11 = preprocessed("c++", "#include <CLI/Version.hpp>\nCLI11_VERSION\n")
    json_version = preprocessed(
        "c++",
        "#include <nlohmann/detail/abi_macros.hpp>\n"
        "NLOHMANN_JSON_VERSION_MAJOR.NLOHMANN_JSON_VERSION_MINOR.NLOHMANN_JSON_VERSION_PATCH\n",
    )
    zlib, zlib_windows = (preprocessed(each, "#include <zlib.h>\nZLIB_VERSION\n") for each in ("c++", MINGW_CXX))
    packages = [
        artefact("Sources", version, sources, "SOURCE", sourceInfo="git commit " + commit),
        artefact("Debian", version, deb, "INSTALL"),
        artefact("Windows", version, windows_zip, "ARCHIVE"),
        library("gcc", "libstdc++ and libgcc", compiler_version("c++"), GCC_LICENSE),
        library("glibc", "glibc", glibc, "LGPL-2.1-or-later"),
        library("gcc-windows", "libstdc++ and libgcc", compiler_version(MINGW_CXX), GCC_LICENSE),
        library("cli11", "CLI11", cli11, "BSD-3-Clause"),
        library("nlohmann-json", "nlohmann-json", json_version, "MIT"),
        library("zlib", "zlib", zlib, "Zlib"),
        library("zlib-windows", "zlib", zlib_windows, "Zlib"),
        library("mingw-w64", "mingw-w64 runtime and winpthreads", mingw, "NOASSERTION"),
    ]
    relationships = [
        ("DOCUMENT", "DESCRIBES", "Sources"),
        ("DOCUMENT", "DESCRIBES", "Debian"),
        ("DOCUMENT", "DESCRIBES", "Windows"),
        ("Debian", "GENERATED_FROM", "Sources"),
        ("Windows", "GENERATED_FROM", "Sources"),
        ("Debian", "STATIC_LINK", "gcc"),
        ("Debian", "DYNAMIC_LINK", "glibc"),
        ("Debian", "DYNAMIC_LINK", "zlib"),
        ("Debian", "STATIC_LINK", "cli11"),
        ("Debian", "STATIC_LINK", "nlohmann-json"),
        ("Windows", "STATIC_LINK", "zlib-windows"),
        ("Windows", "STATIC_LINK", "cli11"),
        ("Windows", "STATIC_LINK", "nlohmann-json"),
        ("Windows", "STATIC_LINK", "gcc-windows"),
        ("Windows", "STATIC_LINK", "mingw-w64"),
    ]
    digests = "".join(each["checksumValue"] for made in packages[:3] for each in made["checksums"])
    bill = {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": "trovisk-" + version,
        "documentNamespace": "urn:uuid:" + str(uuid.uuid5(uuid.NAMESPACE_OID, digests)),
        "creationInfo": {
            "created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": [supplier(), "Tool: packaging/sbom.py-" + version],
        },
        "packages": packages,
        "relationships": [
            {
                "spdxElementId": "SPDXRef-" + of,
                "relationshipType": kind,
                "relatedSpdxElement": "SPDXRef-" + to,
            }
            for of, kind, to in relationships
        ],
    }
    json.dump(bill, sys.stdout, indent=2)
    print()


main()
