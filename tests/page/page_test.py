#!/usr/bin/python3
"""Opens the pages in Chromium and uses them as a person would, by mouse and by keyboard: page_test.py [-v] [NAME...]

NAME: a part of the names of the tests to run; without one all are run.
"""
import sys
import unittest

from browser import Browser
from pages import make_pages

import test_map
import test_reading
import test_safety
import test_sections


def main():
    loader = unittest.TestLoader()
    loader.testNamePatterns = [f"*{name}*" for name in sys.argv[1:] if name != "-v"] or None
    pages = make_pages()
    browser = Browser()
    suite = unittest.TestSuite()
    for module in (test_safety, test_map, test_sections, test_reading):
        for case in module.CASES:
            case.browser = browser
            case.pages = pages
            suite.addTests(loader.loadTestsFromTestCase(case))
    try:
        good = unittest.TextTestRunner(verbosity=1 if "-v" not in sys.argv else 2).run(suite).wasSuccessful()
    finally:
        browser.close()
    sys.exit(not good)


if __name__ == "__main__":
    main()
