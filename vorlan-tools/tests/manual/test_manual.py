# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The manual page and the completions know every subcommand and option of the program, and no others."""

from __future__ import annotations

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from random_runs import TOOLS, VORLAN, tools

ROOT = Path(__file__).resolve().parents[3]
PAGE = ROOT / "man" / "vorlan-tools.1"
BASH = ROOT / "completions" / "vorlan-tools.bash"
ZSH = ROOT / "completions" / "_vorlan-tools"
OPTION = r"(?:--[a-z][a-z-]*[a-z]|-[a-zA-Z@](?![\w-]))"


def subcommands() -> list[str]:
    text = tools("--help").decode()
    return re.findall(r"^  ([a-z]+) ", text[text.index("Subcommands:"):], re.MULTILINE)


def options_of(subcommand: str) -> set[str]:
    """All spellings that the help of a subcommand lists, but for the help itself."""
    listed = re.findall(rf"^  ((?:{OPTION},?)+)", tools(subcommand, "--help").decode(), re.MULTILINE)
    return {name for names in listed for name in names.split(",")} - {"-h", "--help"}


def section_of(subcommand: str) -> str:
    """The section of the page, as plain text without escapes."""
    text = PAGE.read_text().replace("\\-", "-")
    begin = text.index(f".SH {subcommand.upper()}\n")
    return re.sub(r"\\f[BIR]", "", text[begin:text.index("\n.SH ", begin + 1)])


class ManualTest(unittest.TestCase):
    """What the program says of itself is the truth."""

    def test_every_subcommand_has_a_section_with_its_options(self) -> None:
        self.assertIn("convert", subcommands())
        for subcommand in subcommands():
            listed = re.findall(rf"(?<![\w-]){OPTION}", "\n".join(
                line for before, line in zip(["", *section_of(subcommand).split("\n")],
                                             section_of(subcommand).split("\n")) if before == ".TP"))
            self.assertEqual(set(listed), options_of(subcommand), subcommand)

    def test_bash_offers_the_options_of_each_subcommand(self) -> None:
        for subcommand in subcommands():
            script = ('source "$1"; COMP_WORDS=(vorlan-tools "$2" -); COMP_CWORD=2; _vorlan_tools; '
                      'printf "%s\\n" "${COMPREPLY[@]}"')
            done = subprocess.run(["bash", "--norc", "-c", script, "bash", str(BASH), subcommand],
                                  capture_output=True, text=True, check=True)
            self.assertEqual((set(done.stdout.split()) - {"-h", "--help"}, done.stderr),
                             (options_of(subcommand), ""))

    def test_bash_offers_subcommands_and_values(self) -> None:
        def offered(*words: str) -> set[str]:
            script = ('source "$1"; shift; COMP_WORDS=(vorlan-tools "$@"); COMP_CWORD=$#; _vorlan_tools; '
                      'printf "%s\\n" "${COMPREPLY[@]}"')
            done = subprocess.run(["bash", "--norc", "-c", script, "bash", str(BASH), *words], capture_output=True,
                                  text=True, check=True, cwd="/")
            return set(done.stdout.split())

        self.assertEqual(offered("") - {"--help", "--version"}, set(subcommands()))
        self.assertEqual(offered("convert", "-t", ""), {"bed", "gff3", "jsonl", "sam", "bam", "paf", "tsv"})
        self.assertIn("etc", offered("convert", "-o", "et"))

    def test_zsh_knows_the_options_of_each_subcommand(self) -> None:
        text = ZSH.read_text()
        for subcommand in subcommands():
            begin = text.index(f"_vorlan_tools_{subcommand}() {{")
            block = text[begin:text.index("\n}\n", begin)]
            listed = set(re.findall(rf"(?<=[{{,'(*]){OPTION}(?=[}},\[])", block)) - {"-h", "--help"}
            self.assertEqual(listed, options_of(subcommand), subcommand)
            self.assertIn(f"'{subcommand}:", text)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_can_read_its_file(self) -> None:
        done = subprocess.run(["zsh", "-n", str(ZSH)], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_the_page_is_set_without_a_warning(self) -> None:
        done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", str(PAGE)], capture_output=True, text=True, check=True)
        self.assertEqual(done.stderr, "")
        self.assertGreater(len(done.stdout), 3000)

    def test_the_examples_of_the_page_run(self) -> None:
        page = PAGE.read_text().replace("\\-", "-")
        commands = [line for block in re.findall(r"^\.EX\n(.*?)^\.EE", page, re.MULTILINE | re.DOTALL)
                    for line in block.split("\n") if line]
        self.assertGreater(len(commands), 3)
        with tempfile.TemporaryDirectory(prefix="vorlan-tools-manual-") as folder:
            shutil.copy(ROOT / "examples" / "androgen_receptor.fa", Path(folder) / "genome.fa")
            for name, program in (("vorlan", VORLAN), ("vorlan-tools", TOOLS)):
                (Path(folder) / name).symlink_to(program)
            for command in commands:
                done = subprocess.run(["bash", "-c", command], cwd=folder, capture_output=True, text=True, check=False,
                                      env=os.environ | {"PATH": f"{folder}:{os.environ['PATH']}"})
                self.assertEqual(done.returncode, 0, f"{command}: {done.stderr}")

    def test_version(self) -> None:
        version = tools("--version").decode()
        self.assertRegex(version, r"^vorlan-tools \d+\.\d+\.\d+\n$")
        self.assertIn(f'"vorlan {version.split()[1]}"', PAGE.read_text())

    def test_statuses(self) -> None:
        done = subprocess.run([TOOLS], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertEqual(done.stderr.count("\n"), 1)
        tools("nonsense", status=2)
        tools("check", "--nonsense", "-", status=2)
        tools("check", "/nonsense", status=1)
        tools("check", "-", "-g", "-", status=2)


if __name__ == "__main__":
    unittest.main()
