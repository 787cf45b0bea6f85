# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Debian's chromium, without a window, showing a page from disk."""

from __future__ import annotations

import json
import time
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.remote.webelement import WebElement

from parts.programs import ProgramTest

FLAGS = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync", "--hide-scrollbars"]


def start_browser(downloads: Path) -> webdriver.Chrome:
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for flag in FLAGS:
        options.add_argument(flag)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    options.add_experimental_option("prefs", {"download.default_directory": str(downloads)})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class BrowserTest(ProgramTest):
    """A page of a genome in a browser of its own."""

    def setUp(self) -> None:
        super().setUp()
        self.downloads = self.folder / "downloads"
        self.downloads.mkdir()
        self.browser = start_browser(self.downloads)
        self.addCleanup(self.browser.quit)

    def look(self, width: int = 1600, height: int = 1000, scheme: str = "light") -> None:
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open_page(self, *words: str, **looks) -> None:
        """Makes a page of reports and shows it."""
        outcome = self.tools("page", *words, "-o", "page.html")
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        self.look(**looks)
        self.browser.get((self.folder / "page.html").as_uri())

    def run_script(self, script: str, *arguments):
        return self.browser.execute_script(script, *arguments)

    def find(self, selector: str) -> WebElement:
        return self.browser.find_element("css selector", selector)

    def find_all(self, selector: str) -> list[WebElement]:
        return self.browser.find_elements("css selector", selector)

    def press(self, section: str, label: str) -> None:
        button = next(found for found in self.find_all(f"#{section} .tools button") if found.text == label)
        self.run_script("arguments[0].scrollIntoView({block: 'center'})", button)
        button.click()

    def texts(self, selector: str) -> list[str]:
        return self.run_script("return [...document.querySelectorAll(arguments[0])].map(e => e.textContent)", selector)

    def chart(self, section: str, script: str):
        """The value of a script about the `chart` of a section."""
        return self.run_script("const chart = Chart.getChart(document.querySelector(`#${arguments[0]} canvas`)); " + script,
                               section)

    def saved(self, ending: str) -> bytes:
        """The one file that was saved, which is taken away."""
        for _ in range(100):
            files = [path for path in self.downloads.iterdir() if path.suffix == ending]
            if files and files[0].stat().st_size > 0:
                data = files[0].read_bytes()
                files[0].unlink()
                return data
            time.sleep(0.05)
        raise AssertionError(f"no file {ending} was saved")

    def move_to(self, x: float, y: float) -> None:
        self.browser.execute_cdp_cmd("Input.dispatchMouseEvent", {"type": "mouseMoved", "x": x, "y": y})

    def click_at(self, x: float, y: float) -> None:
        for kind in ("mousePressed", "mouseReleased"):
            self.browser.execute_cdp_cmd("Input.dispatchMouseEvent", {"type": kind, "x": x, "y": y, "button": "left",
                                                                      "clickCount": 1})

    def assert_quiet(self) -> None:
        """Nothing on the console, and no request but those for the page itself and for data in it."""
        self.assertEqual(self.browser.get_log("browser"), [])
        messages = [json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance")]
        requests = [message["params"]["request"]["url"] for message in messages
                    if message["method"] == "Network.requestWillBeSent"]
        page = (self.folder / "page.html").as_uri()
        self.assertIn(page, requests)
        self.assertEqual([url for url in requests if url != page and not url.startswith(("data:", "blob:", "chrome:"))], [])
