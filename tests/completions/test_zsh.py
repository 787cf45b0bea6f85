# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What zsh offers behind "vorlan", asked of a zsh that runs in a pseudo-terminal.

VORLAN_COMPLETIONS names the folder of the completions, for instance of those installed; by default it is that of the
sources.
"""

from __future__ import annotations

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

import option_texts

FOLDER = Path(os.environ.get("VORLAN_COMPLETIONS", option_texts.ROOT / "completions"))

# A second zsh in a pseudo-terminal completes the line; in place of adding the matches it prints them.
ASK = r"""
zmodload zsh/zpty || exit 1
zpty shell zsh -f -i
typeset end=$'\x04' text
zpty -w shell "PROMPT=; fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -D"
zpty -w shell 'zle -C ask complete-word ask; bindkey "^T" ask
ask() {
  compadd() { local -a found; builtin compadd -O found "$@"; print -rl -- "match:"${^found}; builtin compadd "$@" }
  _main_complete; print -r -- "e""nd:" }'
zpty -w shell 'print -r -- "r""eady:"'
zpty -m -r shell text '*ready:*' || exit 1
zpty -n -w shell "$2"$'\C-t'
zpty -m -r shell text '*end:*' || exit 1
print -r -- "$text"
zpty -d shell
"""

# As the function itself would hand it to zsh: one entry in each line.
ENTRIES = 'fpath=("$1" $fpath); _arguments() { print -rl -- "$@" }; autoload -Uz _vorlan; _vorlan'


def zsh(script: str, *words: str, **settings: object) -> str:
    done = subprocess.run(["zsh", "-f", "-c", script, "zsh", *words], stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, check=True, timeout=60, env={"PATH": "/usr/bin:/bin", "LC_ALL": "C",
                                                                  "TERM": "dumb"}, **settings)
    if done.stderr:
        raise AssertionError(done.stderr)
    return done.stdout


def has_pseudo_terminals() -> bool:
    """Bare systems in a changed root may have none."""
    try:
        ends = os.openpty()
    except OSError:
        return False
    for end in ends:
        os.close(end)
    return True


class Loaded(unittest.TestCase):
    """What can be asked of zsh without a terminal."""

    def test_the_file_can_be_parsed(self) -> None:
        subprocess.run(["zsh", "-n", str(FOLDER / "_vorlan")], check=True, timeout=60)

    def test_the_function_is_loaded_and_specifies_every_option(self) -> None:
        entries = zsh(ENTRIES, str(FOLDER)).split("\n")
        for option in option_texts.read_table()[1]:
            for name in option.spellings():
                with self.subTest(option=name):
                    found = [text for text in entries if text.split("[")[0].split(")")[-1] == name]
                    self.assertEqual(len(found), 1)
                    self.assertIn(f"[{option.summary}]", found[0])

    def test_the_command_is_known_to_completion(self) -> None:
        known = zsh('fpath=("$1" $fpath); autoload -Uz compinit; compinit -u -D; print $_comps[vorlan]', str(FOLDER))
        self.assertEqual(known, "_vorlan\n")


@unittest.skipUnless(has_pseudo_terminals(), "there are no pseudo-terminals")
class Offered(unittest.TestCase):
    def offered(self, line: str) -> set[str]:
        """What is offered at the end of the line."""
        with tempfile.TemporaryDirectory(prefix="vorlan-completion-") as folder:
            for name in ("genome.fa", "other.fa"):
                Path(folder, name).touch()
            printed = zsh(ASK, str(FOLDER), line, cwd=folder)
        # The first match may stand behind the line itself, which the terminal echoes.
        return set(re.findall(r"match:(\S+)", printed))

    def test_options_that_begin_with_the_word_are_offered(self) -> None:
        self.assertEqual(self.offered("vorlan --mi"),
                         {"--minLength", "--minLength_a", "--minLength_b", "--minPerfection", "--minScore",
                          "--minScore_a", "--minScore_b", "--minUnitLen", "--mismatchScore"})

    def test_an_option_that_is_there_is_not_offered_again(self) -> None:
        self.assertEqual(self.offered("vorlan -U 2 --minU"), {"--minUnitLen"})
        self.assertEqual(self.offered("vorlan -u 2 --minU"), set())

    def test_the_values_of_options_that_choose_are_offered(self) -> None:
        self.assertEqual(self.offered("vorlan -M "), {"exact", "extendExact", "imperfect"})
        self.assertEqual(self.offered("vorlan --outputFormat "), {"0", "1", "2", "3", "4"})

    def test_file_names_are_offered_elsewhere(self) -> None:
        self.assertLessEqual({"genome.fa", "other.fa"}, self.offered("vorlan -D "))
