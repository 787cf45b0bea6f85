# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
""""make deb" builds a package that lintian accepts, with the files of "make install" where Debian wants them."""

from __future__ import annotations

import gzip
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from test_install import DOCUMENTS, FILES, GOLDEN, PROGRAM, ROOT

ZSH = "share/zsh/site-functions/_vorlan"
LICENCE, CHANGES = f"{DOCUMENTS}/LICENSE", f"{DOCUMENTS}/CHANGELOG.md"
# By file of the package, below /usr and without the ending of compressed files: where it comes from.
PACKAGED = {name: source for name, source in FILES.items() if name not in (ZSH, LICENCE, CHANGES)} | {
    "share/zsh/vendor-completions/_vorlan": FILES[ZSH],
    f"{DOCUMENTS}/NEWS.md": FILES[CHANGES],
    f"{DOCUMENTS}/copyright": "debian/copyright",
    f"{DOCUMENTS}/changelog": "debian/changelog",
    "share/lintian/overrides/vorlan": "debian/vorlan.lintian-overrides",
}
TOOLS = {
    "share/bash-completion/completions/vorlan-tools": "completions/vorlan-tools.bash",
    "share/doc/vorlan-tools/changelog": "debian/changelog",
    "share/doc/vorlan-tools/copyright": "debian/copyright",
    "share/lintian/overrides/vorlan-tools": "debian/vorlan-tools.lintian-overrides",
    "share/man/man1/vorlan-tools.1": "man/vorlan-tools.1",
    "share/zsh/vendor-completions/_vorlan-tools": "completions/_vorlan-tools",
}


class Package(unittest.TestCase):
    content: Path
    tools: Path

    @classmethod
    def setUpClass(cls) -> None:
        folder = tempfile.TemporaryDirectory(prefix="vorlan-package-")
        cls.addClassCleanup(folder.cleanup)
        built, cls.content = Path(folder.name, "built"), Path(folder.name, "content")
        subprocess.run(["make", "-C", str(ROOT), "deb", f"DEB_DIR={built}"], check=True, stdin=subprocess.DEVNULL,
                       env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "HOME": folder.name})
        cls.tools = Path(folder.name, "tools")
        for name, content in (("vorlan", cls.content), ("vorlan-tools", cls.tools)):
            package, = built.glob(f"{name}_*.deb")
            subprocess.run(["dpkg-deb", "--extract", str(package), str(content)], check=True)

    def test_the_packages_hold_the_installed_files(self) -> None:
        for content, names in ((self.content, (PROGRAM, *PACKAGED)), (self.tools, ("bin/vorlan-tools", *TOOLS))):
            found = {str(path.relative_to(content)) for path in content.rglob("*") if not path.is_dir()}
            self.assertEqual({name.removesuffix(".gz") for name in found}, {f"usr/{name}" for name in names})

    def test_files_are_those_of_the_sources(self) -> None:
        origins = [(self.content, *entry) for entry in PACKAGED.items()]
        for content, name, source in origins + [(self.tools, *entry) for entry in TOOLS.items()]:
            with self.subTest(file=name):
                path = content / "usr" / name
                packed = path.with_name(path.name + ".gz")
                data = gzip.decompress(packed.read_bytes()) if packed.exists() else path.read_bytes()
                self.assertEqual(data, (ROOT / source).read_bytes())

    def test_the_golden_cases_hold_for_the_packaged_program(self) -> None:
        done = subprocess.run([sys.executable, str(ROOT / "tests/golden/run_golden.py"),
                               str(self.content / "usr" / PROGRAM), *GOLDEN], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.stdout, done.returncode), (f"{len(GOLDEN)} passed, 0 failed\n", 0))
