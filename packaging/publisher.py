#!/usr/bin/env python3
"""Who publishes the packages: publisher.py DEBIAN-FOLDER

debian/control says it (Maintainer, Homepage). MAINTAINER and HOMEPAGE of the environment take its place, there and
below the last entry of debian/changelog, which has to name the same maintainer.
"""

import os
import re
import sys

PLACEHOLDER = ".example"


def refuse(text):
    sys.exit("publisher.py: " + text)


def main():
    control_path, changelog_path = (os.path.join(sys.argv[1], name) for name in ("control", "changelog"))
    with open(control_path, encoding="utf-8") as file:
        control = file.read()
    with open(changelog_path, encoding="utf-8") as file:
        changelog = file.read()

    published = {}
    for field, form in (("Maintainer", r"[^<>,\n]+ <[^<>@\s]+@[^<>@\s]+\.[^<>@\s]+>"), ("Homepage", r"https?://\S+")):
        value = os.environ.get(field.upper())
        if value:
            if not re.fullmatch(form, value):
                refuse(f"{field.upper()}={value} has not the form of a {field} field")
            control = re.sub(f"(?m)^{field}: .*$", lambda _, line=f"{field}: {value}": line, control)
        published[field] = re.search(f"(?m)^{field}: (.*)$", control)[1]
    trailer = re.search(r"(?m)^ -- (.*)  (.*)$", changelog)
    if os.environ.get("MAINTAINER"):
        changelog = changelog[: trailer.start(1)] + published["Maintainer"] + changelog[trailer.end(1) :]
    elif trailer[1] != published["Maintainer"]:
        refuse(f"debian/changelog names {trailer[1]}, debian/control {published['Maintainer']}")
    for field, value in published.items():
        if re.search(re.escape(PLACEHOLDER) + r"\b", value):
            print(f"{field} is a placeholder: {value}", file=sys.stderr)

    with open(control_path, "w", encoding="utf-8") as file:
        file.write(control)
    with open(changelog_path, "w", encoding="utf-8") as file:
        file.write(changelog)


main()
