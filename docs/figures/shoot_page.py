#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Takes the pictures of the page of the bundled example, light and dark, with Debian's chromium.

    shoot_page.py VORLAN VORLAN_TOOLS FOLDER

writes page_light.png, page_dark.png and page_narrow.png. Needs chromium, chromium-driver and python3-selenium, which
`make test-browser` installs. Fonts differ between machines, so the pictures are not compared by tests.
"""

from __future__ import annotations

import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "vorlan-tools/tests"))

# Width, height, colour scheme.
PICTURES = {"page_light": (1200, 1560, "light"), "page_dark": (1200, 1160, "dark"), "page_narrow": (400, 1600, "light")}


def make_page(vorlan: str, tools: str, folder: Path) -> Path:
    genome = ROOT / "examples/androgen_receptor.fa"
    subprocess.run([vorlan, genome, folder / "report"], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    subprocess.run([tools, "page", folder / "report", "-g", genome, "-o", folder / "page.html"], check=True)
    return folder / "page.html"


def shoot(page: Path, out: Path) -> None:
    import os
    os.environ.setdefault("VORLAN_BINARY", "")
    os.environ.setdefault("VORLAN_TOOLS_BINARY", "")
    from page.browser import start_browser
    browser = start_browser(page.parent)
    try:
        for name, (width, height, scheme) in PICTURES.items():
            browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
                "features": [{"name": "prefers-color-scheme", "value": scheme}]})
            browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
            browser.get(page.as_uri())
            browser.save_screenshot(str(out / f"{name}.png"))
    finally:
        browser.quit()


def main() -> None:
    vorlan, tools, out = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        shoot(make_page(vorlan, tools, Path(folder)), Path(out))


if __name__ == "__main__":
    main()
