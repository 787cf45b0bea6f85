# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What bash offers behind "vorlan": by the function alone, and through the loader of bash-completion.

VORLAN_COMPLETIONS names the folder of the completions, for instance of those installed; by default it is that of the
sources.
"""

from __future__ import annotations

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import option_texts

FOLDER = Path(os.environ.get("VORLAN_COMPLETIONS", option_texts.ROOT / "completions"))
FILE = next(path for path in (FOLDER / "vorlan.bash", FOLDER / "vorlan") if path.exists())
LOADER = "/usr/share/bash-completion/bash_completion"

BY_FUNCTION = 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vorlan; '
# The loader finds a completion by the name of the command and asks to begin again with status 124.
BY_LOADER = ('source "$loader"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
             '_completion_loader vorlan; (($? == 124)) || exit 1; complete -p vorlan >/dev/null || exit 1; _vorlan; ')
PRINT = 'printf "%s\\n" "${COMPREPLY[@]}"'

NAMES = [option.spellings() for option in option_texts.read_table()[1]]


class Bash(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="vorlan-completion-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name in ("genome.fa", "gene list.txt", "other.fa"):
            (self.folder / name).touch()

    def offered(self, *words: str, script: str = BY_FUNCTION) -> list[str]:
        """What is offered for the last word of "vorlan WORD..."."""
        data = self.folder / "data"
        (data / "bash-completion/completions").mkdir(parents=True, exist_ok=True)
        (data / "bash-completion/completions/vorlan").write_bytes(FILE.read_bytes())
        done = subprocess.run(["bash", "--norc", "-c", script + PRINT, "bash", str(FILE), "vorlan", *words],
                              cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, check=True,
                              env={"PATH": "/usr/bin:/bin", "LC_ALL": "C", "XDG_DATA_HOME": str(data),
                                   "HOME": str(self.folder), "loader": LOADER}, timeout=60)
        self.assertEqual(done.stderr, "")
        return [word for word in done.stdout.split("\n") if word not in ("", "data")]

    def test_options_that_begin_with_the_word_are_offered(self) -> None:
        self.assertEqual(sorted(self.offered("--m")),
                         sorted(["--maximum_score_reduction", "--maskX", "--maxPerfection", "--maxUnitLen",
                                 "--minLength", "--minLength_a", "--minLength_b", "--minPerfection", "--minScore",
                                 "--minScore_a", "--minScore_b", "--minUnitLen", "--mismatchScore"]))

    def test_the_loader_of_bash_completion_finds_the_same(self) -> None:
        self.assertEqual(self.offered("--m", script=BY_LOADER), self.offered("--m"))
        self.assertEqual(self.offered("-M", "", script=BY_LOADER), self.offered("-M", ""))

    def test_all_options_are_offered_for_a_hyphen(self) -> None:
        self.assertEqual(sorted(self.offered("-")), sorted(name for names in NAMES for name in names))

    def test_an_option_that_is_there_is_not_offered_again(self) -> None:
        for names in NAMES:
            for name in names:
                self.assertEqual(set(names) & set(self.offered(name, "x", "-")), set(), name)

    def test_the_values_of_options_that_choose_are_offered(self) -> None:
        for name in ("-M", "--searchMode"):
            self.assertEqual(self.offered(name, ""), ["exact", "extendExact", "imperfect"])
            self.assertEqual(self.offered("genome.fa", name, "ex"), ["exact", "extendExact"])
        self.assertEqual(self.offered("--outputFormat", ""), ["0", "1", "2", "3", "4"])
        for name in ("--printRepeatSeqMode", "--reportUnit", "--NPerfectionMode"):
            self.assertEqual(self.offered(name, ""), ["0", "1", "2"])

    def test_nothing_is_offered_where_any_number_may_stand(self) -> None:
        for name in ("-u", "--minUnitLen", "-m", "--minScore_b"):
            self.assertEqual(self.offered(name, ""), [])

    def test_file_names_are_offered_elsewhere(self) -> None:
        self.assertEqual(sorted(self.offered("")), ["gene list.txt", "genome.fa", "other.fa"])
        self.assertEqual(sorted(self.offered("-D", "gen")), ["gene list.txt", "genome.fa"])
        self.assertEqual(self.offered("-M", "exact", "genome.fa", "o"), ["other.fa"])

    def test_behind_two_hyphens_there_are_only_file_names(self) -> None:
        (self.folder / "-x.fa").touch()
        self.assertEqual(self.offered("--", "-"), ["-x.fa"])
        self.assertEqual(self.offered("--", "-M", "gen"), self.offered("gen"))
