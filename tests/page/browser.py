"""Chromium, without a window, for the tests of the page."""
import json
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

FLAGS = ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--hide-scrollbars", "--disable-gpu",
         "--force-device-scale-factor=1", "--disable-background-networking", "--disable-component-update", "--no-first-run")


class Browser:
    """One tab, and what it says and asks for."""

    def __init__(self):
        options = webdriver.ChromeOptions()
        for flag in FLAGS:
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.look()

    def look(self, width=1280, height=900, scheme="light", media=""):
        features = [{"name": "prefers-color-scheme", "value": scheme}, {"name": "prefers-reduced-motion", "value": "reduce"}]
        self.cdp("Emulation.setEmulatedMedia", {"media": media, "features": features})
        self.cdp("Emulation.setDeviceMetricsOverride",
                 {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def cdp(self, command, arguments=None):
        return self.driver.execute_cdp_cmd(command, arguments or {})

    def open(self, page, fragment="", ready=True):
        """Opens the page afresh; waits until its script has done its work."""
        self.driver.get("about:blank")
        self.driver.get_log("browser")
        self.driver.get_log("performance")
        self.driver.get(page.as_uri() + fragment)
        if ready:
            self.wait("return document.documentElement.classList.contains('ready')")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, script, *arguments, seconds=20):
        """Waits until the script gives something that counts as true, and returns it."""
        end = time.monotonic() + seconds
        while not (answer := self.run(script, *arguments)) and time.monotonic() < end:
            time.sleep(0.015)
        return answer

    def complaints(self):
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self):
        """What was asked for over any protocol, but for what stands in the address line."""
        asked = []
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent" and message["params"].get("type") != "Document":
                asked.append(message["params"]["request"]["url"])
        return asked

    def close(self):
        self.driver.quit()
