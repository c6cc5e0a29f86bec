"""The page can be read by everybody: axe-core finds nothing serious, on every screen, on paper; and pictures of it."""
import base64
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

from pages import TOP

AXE = TOP / "tests/page/node_modules/axe-core/axe.min.js"
SCREENSHOTS = TOP / "build/screenshots"


class Reading(unittest.TestCase):
    def test_axe_finds_nothing_serious(self):
        for name in ("sample-gpt", "sample-dynamic", "damaged"):
            for scheme in ("light", "dark"):
                for width in (1280, 390):
                    with self.subTest(page=name, scheme=scheme, width=width):
                        self.browser.look(width, 900, scheme)
                        sector = self.pages[name].document["structures"][1]["sector"]
                        self.browser.open(self.pages[name].path, f"#sector-{sector}")
                        self.browser.run("""document.querySelectorAll("#checks details").forEach((d) => { d.open = true; });
                            const field = document.getElementById("search-field");
                            field.value = "sector"; field.dispatchEvent(new Event("input"));""")
                        self.browser.wait("return !document.getElementById('results').hidden")
                        self.browser.run(AXE.read_text("utf-8"))
                        found = self.browser.driver.execute_async_script(
                            "const done = arguments[0]; axe.run().then((r) => done(r.violations), (e) => done([String(e)]));")
                        serious = [(v["id"], v["nodes"][0]["html"][:200], v["nodes"][0]["failureSummary"]) for v in found
                                   if v["impact"] in ("serious", "critical")]
                        self.assertEqual(serious, [])

    def test_nothing_is_wider_than_the_screen(self):
        for width in (390, 768, 1280, 2200):
            self.browser.look(width, 900)
            for name in ("sample-gpt", "hostile", "sample-dynamic", "huge"):
                with self.subTest(page=name, width=width):
                    sector = self.pages[name].document["structures"][0]["sector"]
                    self.browser.open(self.pages[name].path, f"#sector-{sector}")
                    self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), width)

    def test_tab_goes_through_the_page_from_top_to_bottom(self):
        self.browser.open(self.pages["sample-gpt"].path)
        seen = []
        for _ in range(16):
            ActionChains(self.browser.driver).send_keys(Keys.TAB).perform()
            seen.append(self.browser.run("""const e = document.activeElement;
                return [e.id || e.className.baseVal || e.textContent.trim().slice(0, 20), e.getBoundingClientRect().top + scrollY];"""))
        names = [name for name, _ in seen]
        for name in ("Skip to the checks", "search-field", "magnifier", "item"):
            self.assertIn(name, names)
        self.assertLess(names.index("search-field"), names.index("magnifier"))

    def test_paper_shows_the_map_the_tables_and_what_is_open(self):
        self.browser.look(media="print")
        self.browser.open(self.pages["sample-gpt"].path, "#sector-1")
        self.assertEqual(self.browser.run("return getComputedStyle(document.getElementById('search')).display"), "none")
        self.assertEqual(self.browser.run("return getComputedStyle(document.getElementById('overview')).display"), "block")
        printed = base64.b64decode(self.browser.cdp("Page.printToPDF", {"printBackground": True})["data"])
        self.assertTrue(printed.startswith(b"%PDF"))
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        (SCREENSHOTS / "sample-gpt.pdf").write_bytes(printed)

    def test_pictures(self):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        for name, page in self.pages.items():
            for width, scheme in ((1280, "light"), (1280, "dark"), (390, "light"), (390, "dark")):
                self.browser.look(width, 1600, scheme)
                self.browser.open(page.path)
                path = SCREENSHOTS / f"{name}-{width}-{scheme}.png"
                self.assertTrue(self.browser.driver.save_screenshot(str(path)))
                self.assertGreater(path.stat().st_size, 10000)

    maxDiff = None

    def tearDown(self):
        self.browser.look()


CASES = [Reading]
