# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Locale, time zone and the rest of the environment do not change a byte."""

from __future__ import annotations

import shutil
import subprocess
import tempfile

from program_run import ENVIRONMENT, ProgramTest

# Bytes from 128 up are letters in other locales; fractions would show another decimal sign.
RECORDS = (b">one \xdd\xe9 i I\ngttacacacacacgguuuyyyacgt\n"
           b">two\nGATATATTTATATATATATGGCCGNCGGCGGCGCGGCGGCGGT\n")


class Surroundings(ProgramTest):
    ARGUMENTS = ["--maskX", "-m", "-2", "-g", "-3", "--minScore_b", "1.25", "--minScore_a", "-1000",
                 "--minPerfection", "12.5", "-N", "1"]

    def outputs(self, variables: dict[str, str], *arguments: str) -> tuple[int, bytes, bytes, bytes]:
        self.write("in.fa", RECORDS)
        outcome = self.run_program(*self.ARGUMENTS, *arguments, "in.fa", env=ENVIRONMENT | variables)
        return outcome.status, outcome.report, outcome.console_without_clock(), self.read("in.fa.masked")

    def check(self, *variations: dict[str, str]) -> None:
        for form in "01234":
            expected = self.outputs({}, "--outputFormat", form)
            self.assertEqual(expected[0], 0)
            for variables in variations:
                with self.subTest(format=form, variables=variables):
                    self.assertEqual(self.outputs(variables, "--outputFormat", form), expected)

    def test_the_run_shows_decimal_fractions_and_repeats(self) -> None:
        _, report, _, masked = self.outputs({})
        self.assertIn(b"maximum (6, -1000+1.25*unitlength )", report)
        self.assertIn(b"12.5 % - 100 %", report)
        self.assertRegex(report, rb"\d\d\.\d\d[1-9] %")
        self.assertIn(b"XXXXXX", masked)

    def test_the_locale_does_not_matter(self) -> None:
        names = ["C", "POSIX", "C.UTF-8", "de_DE.UTF-8", "de_DE@euro", "tr_TR.UTF-8", "tr_TR.ISO-8859-9", "ja_JP.SJIS",
                 "en_US.ISO-8859-1", "nonsense", ""]
        self.check(*({variable: name} for name in names for variable in ("LC_ALL", "LANG")))

    def test_locales_with_other_decimal_signs_and_letters_do_not_matter(self) -> None:
        folder = self.compiled_locales(("de_DE", "UTF-8"), ("tr_TR", "UTF-8"), ("de_DE", "ISO-8859-1"))
        names = ("de_DE.UTF-8", "tr_TR.UTF-8", "de_DE.ISO-8859-1")
        for name in names:
            shown = subprocess.run(["locale", "-k", "decimal_point"], capture_output=True, check=True,
                                   env=ENVIRONMENT | {"LC_ALL": name, "LOCPATH": folder})
            self.assertEqual(shown.stdout, b'decimal_point=","\n', "the locale is not in use")
        self.check(*({"LC_ALL": name, "LANG": name, "LOCPATH": folder} for name in names))

    def compiled_locales(self, *locales: tuple[str, str]) -> str:
        """A folder with these locales, each a pair of its definition and a set of characters."""
        if shutil.which("localedef") is None:
            self.skipTest("localedef is not installed")
        folder = tempfile.TemporaryDirectory(prefix="vorlan-locales-")
        self.addCleanup(folder.cleanup)
        for definition, characters in locales:
            done = subprocess.run(["localedef", "-i", definition, "-f", characters,
                                   f"{folder.name}/{definition}.{characters}"], capture_output=True, check=False)
            if done.returncode != 0:
                self.skipTest(f"{definition} cannot be compiled: {done.stderr!r}")
        return folder.name

    def test_the_parts_of_the_locale_do_not_matter(self) -> None:
        self.check({"LC_ALL": "", "LC_NUMERIC": "de_DE.UTF-8", "LC_CTYPE": "tr_TR.UTF-8", "LANGUAGE": "de:tr"})

    def test_the_time_zone_does_not_matter(self) -> None:
        self.check(*({"TZ": zone} for zone in ("UTC", "Europe/Berlin", "Pacific/Kiritimati", "XYZ-14:59:59", ":bad",
                                                "")))

    def test_other_variables_do_not_matter(self) -> None:
        self.check({"COLUMNS": "20", "LINES": "5", "TERM": "dumb", "POSIXLY_CORRECT": "1", "NO_COLOR": "1",
                    "VORLAN_OPTIONS": "-D", "VORLAN": "--help", "HOME": "/nonexistent", "TMPDIR": "/nonexistent"})

    def test_no_variable_is_needed(self) -> None:
        self.write("in.fa", RECORDS)
        expected = self.outputs({})
        outcome = self.run_program(*self.ARGUMENTS, "in.fa", env={})
        self.assertEqual((outcome.status, outcome.report, outcome.console_without_clock()), expected[:3])

    def test_two_runs_are_the_same(self) -> None:
        self.assertEqual(self.outputs({}), self.outputs({}))
