"""A page loads nothing, obeys nothing that the disk says, and holds the same document as --json."""
import base64
import hashlib
import json
import re
import unittest
import zlib

from disks import HOSTILE_NAMES
from pages import as_in_page


class Safety(unittest.TestCase):
    def test_no_page_complains_or_asks_for_anything(self):
        for page in self.pages.values():
            with self.subTest(page.name):
                self.browser.open(page.path)
                self.browser.run("document.querySelectorAll('details').forEach((d) => { d.open = true; })")
                self.assertEqual(self.browser.complaints(), [])
                self.assertEqual(self.browser.requests(), [])

    def test_policy_allows_the_one_style_and_the_one_script_by_their_hashes(self):
        text = self.pages["sample-gpt"].text
        policy = re.search(r'Content-Security-Policy" content="([^"]*)"', text)[1]
        self.assertNotIn("unsafe", policy)
        self.assertIn("default-src 'none';", policy)
        for name in ("style", "script"):
            elements = re.findall(rf"<{name}>(.*?)</{name}>", text, re.DOTALL)
            self.assertEqual(len(elements), 1)
            digest = base64.b64encode(hashlib.sha256(elements[0].encode()).digest()).decode()
            self.assertIn(f"{name}-src 'sha256-{digest}'", policy)

    def test_the_browser_refuses_any_other_script(self):
        self.browser.open(self.pages["sample-gpt"].path)
        self.browser.run("""const script = document.createElement("script");
            script.textContent = "window.foreign = true"; document.body.append(script);""")
        self.assertIsNone(self.browser.run("return window.foreign"))
        self.assertTrue(any("Content Security Policy" in said for said in self.browser.complaints()))

    def test_data_is_the_json_document(self):
        for name in ("sample-gpt", "sample-mbr", "sample-dynamic", "damaged", "hostile"):
            with self.subTest(name):
                page = self.pages[name]
                data = re.search(r'<script type="application/json" id="data">(.*?)</script>', page.text, re.DOTALL)[1]
                self.assertNotRegex(data, "[<>&\u2028\u2029]")
                self.assertEqual(json.loads(data), as_in_page(page.document))

    def test_long_documents_are_compressed(self):
        page = self.pages["large"]
        data = re.search(r'<script type="text/plain" id="data">(.*?)</script>', page.text, re.DOTALL)[1]
        self.assertEqual(json.loads(zlib.decompress(base64.b64decode(data))), as_in_page(page.document))

    def test_hostile_names_are_shown_not_obeyed(self):
        page = self.pages["hostile"]
        self.browser.open(page.path)
        names = [e["name"] for e in page.document["extents"] if e["kind"] == "partition" and e["number"] and not e["flags"]]
        self.assertEqual(len(names), len(HOSTILE_NAMES))
        shown = self.browser.run("return [...document.querySelectorAll('#extents tbody th')].map((th) => th.textContent)")
        for name in names:
            self.assertTrue(any(title.startswith(name) for title in shown), name)
        self.assertIn("</script><script>hurt()</script>", names)
        self.assertNotRegex("".join(shown), "[\u202a-\u202e\u2066-\u2069\x1b]")
        self.assertEqual(self.browser.run("return document.querySelectorAll('img, script:not([type])').length"), 1)

    def test_direction_marks_are_named_in_every_section(self):
        self.browser.open(self.pages["hostile"].path)
        self.browser.run("document.querySelectorAll('details').forEach((d) => { d.open = true; })")
        shown = self.browser.wait("""const main = document.querySelector("main").textContent;
            return main.includes("[U+202E]") && main;""")
        self.assertTrue(shown)
        self.assertNotRegex(shown, "[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")

    def test_hostile_names_are_text_without_script_too(self):
        text = self.pages["hostile"].text
        self.assertEqual(text.count("hurt()</script>"), 0)
        self.assertEqual(text.count("<img"), 0)
        self.assertIn("&lt;/script&gt;&lt;script&gt;hurt()", text)
        self.assertIn("{{script}}", text)

    def test_search_and_address_are_no_way_in(self):
        self.browser.open(self.pages["hostile"].path, "#sector-<img src=x onerror=hurt()>")
        self.browser.run("""const field = document.getElementById("search-field");
            field.value = "<img"; field.dispatchEvent(new Event("input"));""")
        found = self.browser.wait("return document.querySelector('#results mark')?.textContent")
        self.assertEqual(found, "<img")
        self.assertEqual(self.browser.run("return document.images.length"), 0)
        self.assertEqual(self.browser.complaints(), [])


class WithoutScript(unittest.TestCase):
    def setUp(self):
        self.browser.cdp("Emulation.setScriptExecutionDisabled", {"value": True})

    def tearDown(self):
        self.browser.cdp("Emulation.setScriptExecutionDisabled", {"value": False})

    def visible_text(self):
        tree = self.browser.cdp("Accessibility.getFullAXTree")["nodes"]
        return " ".join(str(node.get("name", {}).get("value", "")) for node in tree)

    def test_map_checks_and_structures_can_be_read(self):
        page = self.pages["damaged"]
        self.browser.open(page.path, ready=False)
        text = self.visible_text()
        for check in page.document["checks"]:
            if check["verdict"] in ("bad", "missing"):
                self.assertIn(check["check"], text)
        for extent in page.document["extents"]:
            self.assertIn(extent["name"], text)
            self.assertIn(extent["source"], text)
        for structure in page.document["structures"]:
            self.assertIn(structure["title"], text)
        self.assertIn("The disk to scale", text)

    def test_what_belongs_together_can_be_read(self):
        page = self.pages["damaged"]
        self.browser.open(page.path, ready=False)
        text = self.visible_text()
        dynamic = page.document["dynamic_disk"]
        self.assertIn("Dynamic disk", text)
        for disk in dynamic["disks"]:
            self.assertIn(f"{disk['name']}", text)
            self.assertIn(disk["guid"], text)
        for volume in dynamic["volumes"]:
            for part in (volume["name"], volume["guid"], volume["components"][0]["name"]):
                self.assertIn(part, text)
            for partition in volume["components"][0]["partitions"]:
                self.assertIn(partition["name"], text)
        for remark in dynamic["remarks"]:
            self.assertIn(remark, text)
        self.assertIn("last known as the disk on the second shelf from the left", text)
        self.assertIn("stripes of 64.0 KiB", text)
        self.assertIn("Storage Spaces", text)
        self.assertIn(page.document["storage_spaces"]["pool_guid"], text)
        self.assertIn('<td class="number"><a href="#sector-126976">126<span class="group">976</span></a></td>', page.text)
        self.assertNotIn('<section id="dynamic-disk"', self.pages["sample-mbr"].text)

    def test_links_of_checks_lead_to_the_structures(self):
        text = self.pages["damaged"].text
        self.assertIn('href="#sector-1"', text)
        self.assertIn('<tr id="sector-1">', text)


CASES = [Safety, WithoutScript]
