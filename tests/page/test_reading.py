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

    def test_type_on_paper_can_be_read(self):
        self.browser.look(688, 900, media="print")
        self.browser.open(self.pages["damaged"].path, "#sector-1")
        sizes = self.browser.run("""const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
            const sizes = [];
            for (let text = texts.nextNode(); text; text = texts.nextNode()) {
              const holder = text.parentElement;
              if (text.data.trim() && holder.checkVisibility() && !holder.closest("svg, .unseen, script, style, noscript"))
                sizes.push([parseFloat(getComputedStyle(holder).fontSize) * 0.75, text.data.trim().slice(0, 40)]);
            }
            return sizes.sort((a, b) => a[0] - b[0]);""")
        self.assertGreaterEqual(sizes[0][0], 7.5, sizes[0])
        self.assertLessEqual(sizes[-1][0], 14, sizes[-1])
        self.assertEqual(self.browser.run("return getComputedStyle(document.querySelector('.extents tr')).display"), "table-row")
        self.assertEqual(self.browser.run("return document.querySelectorAll('#sector-1 .hex thead th').length"), 18)
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 688)

    def test_the_picture_is_drawn_anew_for_paper(self):
        widths = """return [...document.querySelectorAll("#overview > svg, #magnifier > svg")].map((drawing) =>
            drawing.viewBox.baseVal.width)"""
        self.browser.open(self.pages["damaged"].path)
        on_screen = self.browser.run(widths)
        self.assertTrue(all(width > 1000 for width in on_screen), on_screen)
        self.browser.run("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(self.browser.run(widths), [660, 660])
        self.browser.run("dispatchEvent(new Event('afterprint'))")
        self.assertEqual(self.browser.run(widths), on_screen)

    def test_what_is_said_of_a_place_breaks_between_its_parts(self):
        for width in (1280, 390, 320):
            with self.subTest(width=width):
                self.browser.look(width, 900)
                self.browser.open(self.pages["sample-gpt"].path, "#sector-100000")
                self.assertIn("first 96256 last 104447", self.browser.run("return document.getElementById('readout').textContent"))
                broken = """const parts = [...document.querySelectorAll(arguments[0])];
                    return [parts.length, parts.filter((part) => part.getClientRects().length > 1).map((part) => part.textContent)]"""
                count, found = self.browser.run(broken, "#readout .fact")
                self.assertEqual((count, found), (4, []))
                swatch, title = self.browser.run("""return ["svg", "strong"].map((name) => {
                    const box = document.querySelector(`#readout ${name}`).getBoundingClientRect();
                    return box.top + box.height / 2; })""")
                self.assertAlmostEqual(swatch, title, delta=6)
                self.browser.open(self.pages["sample-gpt"].path, "#sector-2048+510")
                count, found = self.browser.run(broken, "#sector-2048 .byte-note .fact")
                self.assertEqual((count, found), (3, []))

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
