#!/usr/bin/python3
"""Makes the pictures of the documentation: screenshots.py PAGES FOLDER

PAGES: a folder with the pages of the sample disk, sound.html, and of the same without its primary GPT header,
damaged.html.
"""
import sys
from pathlib import Path

from browser import Browser

# Name, page, height, place to open, where to look then.
PICTURES = (
    ("map-page", "damaged", 860, "#sector-80112", "scrollTo(0, 0)"),
    ("map-section", "sound", 620, "#sector-1+56", "document.getElementById('sector-1').scrollIntoView()"),
)


def main():
    pages, folder = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    browser = Browser()
    try:
        for name, page, height, place, look in PICTURES:
            browser.look(1280, height)
            browser.open(pages / f"{page}.html", place)
            browser.run(f"document.activeElement.blur(); {look}")
            browser.driver.save_screenshot(str(folder / f"{name}.png"))
    finally:
        browser.close()


main()
