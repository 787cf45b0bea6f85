# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The page as a file: its numbers are those of `stats --json`, and its size is bounded."""

from __future__ import annotations

import json
import re
import unittest

from parts.programs import ProgramTest
from stats.test_stats import genome_text

DATA = re.compile(rb'<script type="application/json" id="data">(.*?)</script>', re.DOTALL)


class PageText(ProgramTest):
    def page(self, *words: str) -> bytes:
        outcome = self.tools("page", *words)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        return outcome.stdout

    def test_every_number_is_that_of_json(self) -> None:
        self.write("in.fa", genome_text(40, 3, 20))
        self.vorlan("in.fa", "report")
        page = self.page("report", "-g", "in.fa")
        self.tools("stats", "report", "-g", "in.fa", "--json", "a.json")
        self.assertEqual(json.loads(DATA.search(page)[1]), json.loads(self.read("a.json")))
        self.assertEqual(self.page("a.json"), page)
        self.assertEqual(self.page("report", "-g", "in.fa"), page)

    def test_lists_are_cut_and_sums_are_not(self) -> None:
        text = b"".join(b">c%d\n%s\n" % (i, b"ACGTGCTA" * (i % 50) + bytes(b"ACGT"[(i >> 2 * k) & 3] for k in range(7)) * 9)
                        for i in range(2000))
        self.write("in.fa", text)
        self.vorlan("in.fa", "report")
        shown = json.loads(DATA.search(self.page("report"))[1])["genomes"][0]
        said = json.loads(self.tools("stats", "report", "--json", "-").stdout)["genomes"][0]
        self.assertGreater(len(said["units"]), 500)
        self.assertEqual((len(shown["units"]), len(shown["by_sequence"])), (300, 60))
        self.assertEqual(shown["units"], said["units"][:300])
        drawn = {entry["index"] for entry in said["windows"]["sequences"]}
        self.assertEqual(shown["by_sequence"], [entry for entry in said["by_sequence"] if entry["index"] in drawn])
        for key in said:
            if key not in ("units", "by_sequence"):
                self.assertEqual(shown[key], said[key], key)

    def test_data_cannot_end_its_element(self) -> None:
        self.write("in.fa", "></script><!--\u2028\n".encode() + b"ACG" * 20 + b"\n>\xff&amp;\n" + b"AC" * 20 + b"\n")
        self.vorlan("in.fa", "report")
        data = DATA.search(self.page("report"))[1]
        self.assertNotRegex(data, rb"[<>&\x80-\xff]")
        names = [entry["name"] for entry in json.loads(data)["genomes"][0]["by_sequence"]]
        self.assertEqual(names, ["</script><!--\u2028", "\ufffd&amp;"])

    def test_the_file_asks_for_nothing(self) -> None:
        self.write("in.fa", b">a\nACGT\n")
        self.vorlan("in.fa", "report")
        page = self.page("report")
        self.assertIn(b"default-src 'none'", page)
        # Chart.js holds addresses in its comments only; nothing else may.
        without_chart = re.sub(rb"<script>\s*/\*!.*?</script>", b"", page, flags=re.DOTALL)
        self.assertLess(len(without_chart), len(page) - 150000)
        self.assertEqual(set(re.findall(rb"https?://[^\s\"'`]*", without_chart)), {b"http://www.w3.org/2000/svg"})
        self.assertNotIn(b"@@page", page)
        self.assertNotIn(b"@@scripts", page)

    def test_the_output_is_no_input(self) -> None:
        self.write("in.fa", b">a\nACGT\n")
        self.vorlan("in.fa", "report")
        before = self.read("report")
        self.assert_refused(self.tools("page", "report", "-o", "./report"), 2, "same file")
        self.assertEqual(self.read("report"), before)


if __name__ == "__main__":
    unittest.main()
