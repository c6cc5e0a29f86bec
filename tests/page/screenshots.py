#!/usr/bin/python3
"""Makes the pictures of the documentation from the page of the sample disk: screenshots.py PAGE FOLDER"""
import sys
from pathlib import Path

from browser import Browser

# Name, height, place to open, where to look then.
PICTURES = (
    ("map-page", 860, "#sector-80112", "scrollTo(0, 0)"),
    ("map-section", 620, "#sector-1+56", "document.getElementById('sector-1').scrollIntoView()"),
)


def main():
    page, folder = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    browser = Browser()
    try:
        for name, height, place, look in PICTURES:
            browser.look(1280, height)
            browser.open(page, place)
            browser.run(f"document.activeElement.blur(); {look}")
            browser.driver.save_screenshot(str(folder / f"{name}.png"))
    finally:
        browser.close()


main()
