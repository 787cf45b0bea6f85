# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The version is the same wherever it stands."""

from __future__ import annotations

import re
import unittest

from manual_page import ROOT, ManualPage
from program_run import ProgramTest

PLACES = {
    "src/config/version.h": r'^#define VORLAN_VERSION "(.*)"$',
    "CHANGELOG.md": r"\A.*?^## (\S+)",
    "CITATION.cff": r'^version: "?([^"\s]+)"?$',
    "debian/changelog": r"\Avorlan \(([^)]*)\) ",
}


def found_in(name: str, pattern: str) -> str:
    return re.search(pattern, (ROOT / name).read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)[1]


class Versions(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.version = found_in("CMakeLists.txt", r"^project\(vorlan VERSION ([\d.]+) ")

    def test_every_file_has_the_version_of_the_build(self) -> None:
        for name, pattern in PLACES.items():
            with self.subTest(file=name):
                self.assertEqual(found_in(name, pattern), self.version)

    def test_the_program_has_the_version_of_the_build(self) -> None:
        report = self.run_program("--version").report
        self.assertIn(f"version: {self.version}.\n".encode("ascii"), report)

    def test_the_pages_have_the_version_of_the_build_and_one_date(self) -> None:
        titles = [ManualPage(name).title() for name in ("vorlan.1", "vorlan-formats.5")]
        self.assertEqual([title[3] for title in titles], [f"vorlan {self.version}"] * 2)
        released = found_in("CITATION.cff", r"^date-released: (\S+)$")
        self.assertEqual({title[2] for title in titles}, {released})


if __name__ == "__main__":
    unittest.main()
