# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
""""make install" puts each file in its place, and what it installs works there.

VORLAN_BUILD names the build folder that is installed from.
"""

from __future__ import annotations

import os
import stat
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
BUILD = os.environ["VORLAN_BUILD"]
PROGRAM = "bin/vorlan"
# Where each file goes below the prefix, and where it comes from.
DOCUMENTS = "share/doc/vorlan"
FILES = {
    **{f"{DOCUMENTS}/{name}": name for name in ("ARCHITECTURE.md", "CHANGELOG.md", "CITATION.cff", "CONTRIBUTING.md",
                                                "LICENSE", "README.md")},
    "share/man/man1/vorlan.1": "man/vorlan.1",
    "share/man/man5/vorlan-formats.5": "man/vorlan-formats.5",
    "share/bash-completion/completions/vorlan": "completions/vorlan.bash",
    "share/zsh/site-functions/_vorlan": "completions/_vorlan",
    **{f"{DOCUMENTS}/{path.relative_to(ROOT)}": str(path.relative_to(ROOT))
       for path in sorted([*(ROOT / "examples").rglob("*"), *(ROOT / "docs").rglob("*.md"),
                           *(ROOT / "docs").rglob("*.svg"), *(ROOT / "docs").rglob("*.png")]) if path.is_file()},
}
GOLDEN = sorted(str(path.parent) for path in (ROOT / "tests/golden").glob("*/cmd"))


def make(*words: str) -> None:
    """What is built is taken as it is, and the caller's settings of make do not reach it."""
    environment = {"PATH": os.environ["PATH"], "LC_ALL": "C"}
    subprocess.run(["make", "-C", str(ROOT), "--assume-old=build", *words],
                   check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, env=environment, umask=0o022)


def install(prefix: str, destination: str, listed: str = "") -> None:
    """The names of the files go to `listed`, or are lost: the list of what the user has installed stays as it is."""
    with tempfile.NamedTemporaryFile() as lost:
        make("install", f"BUILD_DIR={BUILD}", f"PREFIX={prefix}", f"DESTDIR={destination}",
             f"INSTALLED={listed or lost.name}")


def files_below(folder: Path) -> set[str]:
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


class Installed(unittest.TestCase):
    """What a destination folder holds afterwards."""

    stage: Path
    top: Path

    @classmethod
    def setUpClass(cls) -> None:
        folder = tempfile.TemporaryDirectory(prefix="vorlan-install-")
        cls.addClassCleanup(folder.cleanup)
        cls.stage = Path(folder.name)
        cls.top = cls.stage / "opt/some where"
        install("/opt/some where", folder.name)

    def test_each_file_lies_in_its_place_and_no_other(self) -> None:
        found = {str(path.relative_to(self.top)) for path in self.stage.rglob("*") if not path.is_dir()}
        self.assertEqual(found, {PROGRAM, *FILES})

    def test_files_are_those_of_the_sources(self) -> None:
        for name, source in FILES.items():
            with self.subTest(file=name):
                self.assertEqual((self.top / name).read_bytes(), (ROOT / source).read_bytes())

    def test_all_may_read_and_only_the_program_runs(self) -> None:
        for name in (PROGRAM, *FILES):
            with self.subTest(file=name):
                self.assertEqual(stat.S_IMODE((self.top / name).stat().st_mode), 0o755 if name == PROGRAM else 0o644)

    def test_the_program_does_not_know_where_it_was_built_or_staged(self) -> None:
        program = (self.top / PROGRAM).read_bytes()
        self.assertNotIn(str(self.stage).encode(), program)
        dynamic = subprocess.run(["readelf", "--dynamic", str(self.top / PROGRAM)], check=True, capture_output=True)
        self.assertNotIn(b"PATH", dynamic.stdout)

    def test_the_golden_cases_hold_for_the_installed_program(self) -> None:
        done = subprocess.run([sys.executable, str(ROOT / "tests/golden/run_golden.py"), str(self.top / PROGRAM),
                               *GOLDEN], stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
        self.assertEqual((done.stdout, done.returncode), (f"{len(GOLDEN)} passed, 0 failed\n", 0))
        self.assertGreater(len(GOLDEN), 200)

    def test_without_a_destination_the_prefix_is_the_place(self) -> None:
        with tempfile.TemporaryDirectory(prefix="vorlan-prefix-") as prefix:
            install(prefix, "")
            self.assertEqual(files_below(Path(prefix)), {PROGRAM, *FILES})

    def test_uninstalling_leaves_what_others_have_put_there(self) -> None:
        with tempfile.TemporaryDirectory(prefix="vorlan-uninstall-") as folder:
            listed = f"{folder}/installed-files"
            install("/opt/some where", folder, listed)
            top = Path(folder, "opt/some where")
            (top / "share/doc/vorlan/docs/my notes.txt").write_text("kept\n")
            make("uninstall", f"DESTDIR={folder}", f"INSTALLED={listed}")
            self.assertEqual(files_below(Path(folder)), {"opt/some where/share/doc/vorlan/docs/my notes.txt"})
            self.assertFalse((top / "share/doc/vorlan/examples").exists())
            self.assertTrue((top / "bin").exists())
