"""Sections: fields and bytes mark each other, what is equal is folded, search and links lead to places."""
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

MARKED_BYTES = """return [...document.querySelectorAll(`#sector-${arguments[0]} td.marked[data-at]`)]
  .map((cell) => Number(cell.dataset.at)).sort((a, b) => a - b);"""
MARKED_FIELDS = """return [...document.querySelectorAll(`#sector-${arguments[0]} tr.marked th`)].map((cell) => cell.textContent);"""


# Whether the middle of an element can be seen: nothing else stands over it.
IN_SIGHT = """const box = arguments[0].getBoundingClientRect();
  const seen = document.elementFromPoint(box.left + Math.min(box.width, 40) / 2, box.top + box.height / 2);
  return !!seen && arguments[0].contains(seen);"""


class Sections(unittest.TestCase):
    def tearDown(self):
        self.browser.look()

    def in_sight(self, selector):
        return self.browser.run(IN_SIGHT, self.browser.driver.find_element("css selector", selector))

    def focused_in_sight(self):
        return self.browser.run(IN_SIGHT, self.browser.driver.switch_to.active_element)

    def open_sector(self, name, sector):
        self.browser.open(self.pages[name].path, f"#sector-{sector}")
        return self.pages[name].document

    def structure(self, name, sector):
        return next(s for s in self.pages[name].document["structures"] if s["sector"] == sector)

    def point_at(self, selector):
        element = self.browser.driver.find_element("css selector", selector)
        self.browser.run("arguments[0].scrollIntoView({ block: 'center' })", element)
        ActionChains(self.browser.driver).move_to_element(element).perform()
        return element

    def search(self, query):
        field = self.browser.driver.find_element("id", "search-field")
        field.clear()
        field.send_keys(query)
        self.browser.wait("return document.getElementById('results').dataset.query === arguments[0]", query)
        return self.browser.run("""return [...document.querySelectorAll("#results a")].map((a) =>
            [a.getAttribute("href"), a.textContent])""")

    def test_every_structure_has_a_section_in_disk_order(self):
        for name in ("sample-gpt", "sample-mbr", "sample-dynamic", "damaged"):
            document = self.pages[name].document
            self.browser.open(self.pages[name].path)
            self.browser.run("document.querySelectorAll('.fold').forEach((fold) => { fold.open = true; })")
            count = len(document["structures"])
            self.browser.wait("return document.querySelectorAll('details.structure').length === arguments[0]", count)
            shown = self.browser.run("return [...document.querySelectorAll('details.structure')].map((s) => [s.id, s.querySelector('h3').textContent])")
            self.assertEqual(shown, [[f"sector-{s['sector']}", s["title"]] for s in document["structures"]])

    def test_a_section_shows_every_field_value_and_byte(self):
        self.open_sector("sample-gpt", 1)
        structure = self.structure("sample-gpt", 1)
        fields = self.browser.run("""return [...document.querySelectorAll("#sector-1 tr[data-field]")].map((row) =>
            [row.cells[0].textContent, row.cells[1].textContent])""")
        self.assertEqual(fields, [[f["label"], f["value"]] for f in structure["fields"]])
        first = self.browser.run("return [...document.querySelectorAll('#sector-1 td[data-at]')].slice(0, 8).map((c) => c.textContent)")
        self.assertEqual(bytes.fromhex("".join(first)), b"EFI PART")
        report = self.browser.run("return document.querySelector('#sector-1 .report').textContent")
        self.assertIn("First Usable LBA            : 34", report)
        self.assertNotIn("raw sector", report)

    def test_pointing_at_a_field_marks_its_bytes(self):
        self.open_sector("sample-gpt", 1)
        structure = self.structure("sample-gpt", 1)
        index, field = next((i, f) for i, f in enumerate(structure["fields"]) if f["label"] == "Disk GUID")
        self.point_at(f"#sector-1 tr[data-field='{index}']")
        self.assertEqual(self.browser.run(MARKED_BYTES, 1), list(range(56, 72)))
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), [field["label"]])
        self.assertEqual(field["offset"], 56)

    def test_pointing_at_a_byte_marks_its_field(self):
        self.open_sector("sample-gpt", 1)
        self.point_at("#sector-1 td[data-at='60']")
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), ["Disk GUID"])
        self.assertEqual(self.browser.run(MARKED_BYTES, 1), list(range(56, 72)))
        self.assertIn("0x03C (60)", self.browser.run("return document.querySelector('#sector-1 .byte-note').textContent"))

    def test_a_click_keeps_the_mark_and_escape_takes_it_away(self):
        self.open_sector("sample-gpt", 1)
        self.point_at("#sector-1 td[data-at='0']").click()
        self.point_at("#sector-1 summary")
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), ["Magic Number"])
        ActionChains(self.browser.driver).send_keys(Keys.ESCAPE).perform()
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), [])

    def test_fields_and_bytes_by_keyboard(self):
        self.open_sector("sample-gpt", 1)
        self.browser.run("document.querySelector('#sector-1 tr[data-field]').focus()")
        ActionChains(self.browser.driver).send_keys(Keys.ARROW_DOWN, Keys.ARROW_DOWN).perform()
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), ["Header Size"])
        self.assertEqual(self.browser.run(MARKED_BYTES, 1), [12, 13, 14, 15])
        self.browser.run("document.querySelector('#sector-1 td[data-at]').focus()")
        ActionChains(self.browser.driver).send_keys(Keys.ARROW_DOWN, Keys.ARROW_DOWN, Keys.ARROW_LEFT).perform()
        self.assertEqual(self.browser.run("return document.activeElement.dataset.at"), "31")
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), ["Primary Header LBA"])

    def test_equal_rows_are_folded_and_unfold(self):
        self.open_sector("sample-gpt", 1)
        fold = self.browser.driver.find_element("css selector", "#sector-1 .hex .folded button")
        self.assertIn("equal rows", fold.text)
        count = int(fold.text.split()[0])
        rows = "return document.querySelectorAll('#sector-1 .hex tbody tr').length"
        before = self.browser.run(rows)
        fold.click()
        self.assertEqual(self.browser.run(rows), before - 1 + count)
        self.assertEqual(self.browser.run(rows), 32)

    def test_unused_entries_are_folded_with_their_number(self):
        self.open_sector("sample-gpt", 5)
        button = self.browser.driver.find_element("css selector", "#sector-5 .fields .folded button")
        self.assertEqual(button.text, "4 unused entries")
        self.assertIn("28 alike", self.browser.run("return document.querySelector('#sector-5 summary').textContent"))

    def test_long_runs_are_folded_and_a_link_into_one_unfolds_it(self):
        document = self.open_sector("large", 4000)
        section = self.browser.wait("const s = document.getElementById('sector-4000'); return s && s.open && s.querySelector('td[data-at]') && s.id")
        self.assertEqual(section, "sector-4000")
        self.assertGreater(len(document["structures"]), 10000)
        self.browser.open(self.pages["large"].path)
        self.assertLess(self.browser.run("return document.querySelectorAll('details.structure').length"), 20)
        self.assertIn("5000 structures", self.browser.run("return document.querySelector('.fold summary').textContent"))

    def test_a_link_opens_its_place(self):
        self.open_sector("sample-gpt", 2048)
        top = self.browser.wait("const s = document.getElementById('sector-2048'); return s.open && s.getBoundingClientRect().top")
        self.assertTrue(40 < top < 300, top)
        self.open_sector("sample-gpt", "1+60")
        self.assertEqual(self.browser.run(MARKED_FIELDS, 1), ["Disk GUID"])
        self.open_sector("sample-gpt", 100000)
        self.assertIn("NTFS", self.browser.run("return document.querySelector('tr.chosen').textContent"))

    def test_a_link_shows_the_title_the_byte_and_the_field(self):
        for width, height in ((1280, 900), (1280, 500), (1000, 700), (390, 800)):
            for name, place in (("sample-gpt", "2048+510"), ("sample-gpt", "2+160"), ("damaged", "1+40"), ("large", "4000+60")):
                with self.subTest(width=width, height=height, place=place):
                    self.browser.look(width, height)
                    self.open_sector(name, place)
                    section = f"#sector-{place.split('+')[0]}"
                    self.assertTrue(self.in_sight(f"{section} h3"))
                    self.assertTrue(self.in_sight(f"{section} td.marked[data-at]"))
                    self.assertTrue(self.in_sight(f"{section} tr.marked th"))

    def test_the_title_stays_in_sight_and_hides_nothing_that_has_the_focus(self):
        for width, height in ((1280, 700), (390, 800)):
            with self.subTest(width=width):
                self.browser.look(width, height)
                self.open_sector("sample-gpt", 2048)
                rows = self.browser.run("return document.querySelectorAll('#sector-2048 tr[data-field]').length")
                self.browser.run("document.querySelector('#sector-2048 tr[data-field]').focus()")
                for key in [Keys.ARROW_DOWN] * (rows // 12) + [Keys.ARROW_UP] * (rows // 12):
                    ActionChains(self.browser.driver, duration=0).send_keys(*[key] * 12).perform()
                    self.assertTrue(self.focused_in_sight() and self.in_sight("#sector-2048 h3"),
                                    self.browser.run("return document.activeElement.textContent"))

    def note(self):
        return self.browser.run("""const note = document.getElementById("place-note");
            return note.checkVisibility() && note.querySelector("p").textContent;""")

    def test_a_link_to_a_sector_without_a_structure_says_what_is_there(self):
        self.open_sector("sample-gpt", 100000)
        self.assertEqual(self.note(), "Nothing was decoded in sector 100000. It lies in NTFS (Microsoft basic data) › NTFS.")
        self.assertEqual(self.browser.run("return document.getElementById('live').textContent"), self.note())
        self.assertTrue(self.in_sight("#place-note p"))
        self.assertTrue(self.in_sight("#readout"))
        self.assertIn("first 96256 last 104447", self.browser.run("return document.getElementById('readout').textContent"))
        self.assertIn("sectors 95232 to 105471", self.browser.run("return document.getElementById('magnifier-range').textContent"))
        self.assertIn("first 96256", self.browser.run("return document.querySelector('#magnifier .item.chosen').ariaLabel"))
        self.assertIn("first 96256", self.browser.run("return document.activeElement.ariaLabel"))
        self.assertEqual(self.browser.run("return document.querySelectorAll('#bars .place').length"), 2)
        self.browser.run("location.hash = '#sector-1'")
        self.assertTrue(self.browser.wait("return document.getElementById('place-note').hidden"))
        self.assertEqual(self.browser.run("return document.querySelectorAll('#bars .place').length"), 0)
        self.open_sector("sample-gpt", 40)
        self.assertEqual(self.note(), "Nothing was decoded in sector 40. Nothing claims it.")

    def test_a_link_to_no_place_says_so(self):
        for place, said in (
                ("#sector-600000", "Sector 600000 lies beyond the end of the disk: its last sector is 196607."),
                ("#sector-400000", "Sector 400000 lies beyond the end of the disk: its last sector is 196607. "
                                   "Unlisted (Linux file system) claims it all the same."),
                ("#sector-" + "9" * 30, f"Sector {'9' * 30} lies beyond the end of the disk: its last sector is 196607."),
                ("#sector-1+512", "Sector 1 has no byte 512: 512 bytes of it were read."),
                ("#sector-first", "This page has no place “sector-first”. Places are called sector-2048 or sector-2048+510."),
                ("#extent-999", "This page has no place “extent-999”. Places are called sector-2048 or sector-2048+510."),
                ("#%E2%80%AEcba", "This page has no place “[U+202E]cba”. Places are called sector-2048 or sector-2048+510.")):
            with self.subTest(place):
                self.browser.open(self.pages["damaged"].path, place)
                self.assertEqual(self.note(), said)
                self.assertEqual(self.browser.run("return document.getElementById('live').textContent"), said)
        for place in ("", "#checks", "#map", "#sector-1"):
            self.browser.open(self.pages["damaged"].path, place)
            self.assertFalse(self.note())
        self.assertEqual(self.browser.complaints(), [])

    def test_checks_lead_to_their_places(self):
        self.browser.open(self.pages["damaged"].path)
        link = self.browser.driver.find_element("css selector", "#checks tr.bad a")
        place = link.get_attribute("href").partition("#")[2]
        link.click()
        self.assertTrue(self.browser.wait("return document.getElementById(arguments[0])?.open || document.querySelector('tr.chosen')", place))

    def test_search_finds_names_labels_values_sectors_and_bytes(self):
        self.browser.open(self.pages["sample-gpt"].path)
        self.assertTrue(any(href.startswith("#extent-") and "SAMPLE FAT" in text for href, text in self.search("sample fat")))
        self.assertTrue(any(href == "#sector-1+40" for href, _ in self.search("First Usable LBA")))
        self.assertTrue(any("ReFS" in text for _, text in self.search("0x3883")) or self.search("supb"))
        self.assertTrue(any(href.startswith("#sector-2+") for href, _ in self.search("partition guid")))
        self.assertTrue(any(text.startswith("1GPT primary header CRC-32 check") for _, text in self.search("header crc good") +
                            self.search("good: gpt primary header crc")))
        self.assertEqual(self.search("(a[b]*"), [])
        self.assertEqual(self.search("79872")[0][0], "#sector-79872")
        self.assertTrue(any(href == "#sector-2048+510" for href, _ in self.search("55 aa")))
        self.assertTrue(any(href == "#sector-1+0" for href, _ in self.search("4546492050415254")))
        self.assertEqual(self.search("nothing has this name"), [])

    def test_search_takes_numbers_with_their_digits_in_groups(self):
        self.browser.open(self.pages["sample-gpt"].path)
        wanted = self.search("73728")
        self.assertEqual(wanted[0][0], "#sector-73728")
        for typed in ("73 728", "73\u202f728", "73\u2009728", "73,728"):
            with self.subTest(typed):
                self.assertEqual(self.search(typed), wanted)
        self.assertEqual(self.search("last 73 727"), self.search("last 73727"))
        self.assertTrue(any(href == "#sector-1+0" for href, _ in self.search("45 46 49 20")))
        self.assertFalse(any(href == "#sector-73728" for href, _ in self.search("73,7,28") + self.search("7 3728")))

    def test_what_was_found_stands_between_whole_words(self):
        self.browser.open(self.pages["damaged"].path)
        self.search("126976")
        snippets = self.browser.run("""return [...document.querySelectorAll("#results .snippet")].map((s) => s.textContent)""")
        self.assertIn("…1: 2048 to 73727; entry 9: 126976 to 131071 over entry 12: 122880 to 500000, expected none…", snippets)

    def test_search_by_keyboard_alone(self):
        self.browser.open(self.pages["sample-gpt"].path)
        ActionChains(self.browser.driver).send_keys("/").perform()
        self.assertEqual(self.browser.run("return document.activeElement.id"), "search-field")
        self.search("Backup GPT Header")
        ActionChains(self.browser.driver).send_keys(Keys.ARROW_DOWN, Keys.ENTER).perform()
        self.assertTrue(self.browser.wait("return document.getElementById('sector-196607').open"))
        self.assertTrue(self.browser.run("return document.getElementById('results').hidden"))

    def test_copies_as_text(self):
        self.browser.cdp("Browser.grantPermissions", {"permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
        self.open_sector("sample-gpt", 1)
        self.browser.driver.find_element("css selector", "#sector-1 .copy").click()
        self.browser.wait("return document.querySelector('#sector-1 .copy').textContent === 'Copied'")
        text = self.browser.driver.execute_async_script("navigator.clipboard.readText().then(arguments[0])")
        self.assertIn("Primary GPT Header\nsector 1\n", text)
        self.assertIn("Disk GUID\t9ABCDEF0-1234-5678-9ABC-DEF012345678\t0x038–047", text)
        self.assertIn("0x000  45 46 49 20 50 41 52 54", text)


CASES = [Sections]
