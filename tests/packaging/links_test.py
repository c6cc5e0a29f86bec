#!/usr/bin/env python3
"""Holds every link between the pages of a folder to what lies in it: links_test.py FOLDER"""

import os
import re
import sys

top = os.path.abspath(sys.argv[1])
pages = [os.path.join(folder, name) for folder, _, names in os.walk(top) for name in names if name.endswith(".md")]
broken = []
links = 0
for page in pages:
    with open(page, encoding="utf-8") as file:
        text = re.sub(r"(?ms)^```.*?^```", "", file.read())
    for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)", text):
        if re.match(r"https?:", target):
            continue
        links += 1
        path = os.path.normpath(os.path.join(os.path.dirname(page), target))
        if not path.startswith(top + os.sep) or not os.path.exists(path):
            broken.append(f"{os.path.relpath(page, top)}: {target}")
if broken or links < 50:
    sys.exit("\n".join([f"{links} links, broken:"] + broken))
