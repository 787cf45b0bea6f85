# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Names and sizes that would break a careless page, in a real browser."""

from __future__ import annotations

import unittest

from page.browser import BrowserTest

ARRAY = b"GATTACAGTC" + b"ACG" * 30 + b"CCTGATTAG" + b"CA" * 20
NAMES = [b"<script>window.broken=1</script>", b"</script><script>window.broken=1</script>", b"<!--<script>",
         b"\"'`onload=window.broken=1//", b"<img/src=x/onerror=window.broken=1>", b"a\xe2\x80\xa8b\xe2\x80\xa9c",
         b"\xff\xfe\xc3\x28", b"&lt;b&gt;&amp;", b"$&$1@@data@@@@scripts@@", b"__proto__", b"]]>", b"x" * 10000, b"\\u003c\\"]


class HostilePage(BrowserTest):
    def open_input(self, text: bytes, **looks) -> None:
        self.write("in.fa", text)
        self.assertEqual(self.vorlan("in.fa", "report").returncode, 0)
        self.open_page("report", **looks)

    def test_names_are_text_everywhere(self) -> None:
        self.open_input(b"".join(b">" + name + b"\n" + ARRAY + b"\n" for name in NAMES), width=400)
        expected = [name.decode(errors="replace") for name in NAMES]
        expected[NAMES.index(b"x" * 10000)] = "x" * 100 + "..."
        self.assertEqual(self.texts("#sequences tbody td:nth-child(1)"), expected)
        self.assertEqual(len(self.find_all("script")), 3)
        self.assertEqual(self.find_all("img, b"), [])
        self.assertIsNone(self.run_script("return window.broken"))
        self.run_script("document.querySelectorAll('details').forEach(e => { e.open = true; })")
        self.run_script("document.querySelectorAll('.tile').forEach(e => e.dispatchEvent(new MouseEvent('mousemove', {bubbles: true})))")
        self.press("sequences-map", "SVG")
        self.assertNotIn(b"<script", self.saved(".svg"))
        self.press("sequences", "CSV")
        self.assertIn(b"\"\"\"'`onload=", self.saved(".csv"))
        self.assertEqual(self.run_script("return document.documentElement.scrollWidth"), 400)
        self.assert_quiet()

    def test_names_of_genomes_are_text_too(self) -> None:
        self.write("in.fa", b">a\n" + ARRAY + b"\n")
        self.vorlan("in.fa", "report")
        flags = [word for name in NAMES[:6] for word in ("--name", name.decode())]
        self.open_page(*["report"] * 6, *flags)
        self.assertEqual(self.texts("#genome option"), [name.decode() for name in NAMES[:6]])
        self.assertIsNone(self.run_script("return window.broken"))
        self.assert_quiet()

    def test_a_hundred_thousand_contigs(self) -> None:
        self.open_input(b"".join(b">c%d\n%s\n" % (i, ARRAY[:60 + i % 30]) for i in range(100000)))
        self.assertLess((self.folder / "page.html").stat().st_size, 1000000)
        self.assertIn("99,940 shorter sequences", self.texts("#sequences-map")[0])
        self.assertEqual(self.texts("#key-figures dd")[2], "100,000")
        self.assert_quiet()

    def test_empty_report_and_genome_without_repeats(self) -> None:
        for text, sequences in ((b">a\nACGT\n", "1"), (b">", "1")):
            self.open_input(text)
            self.assertEqual(self.texts("#key-figures dd")[2:4], [sequences, "0"])
            self.assertIn("No repeats were found", self.texts("#key-figures")[0])
            self.assert_quiet()
        self.vorlan("--firstSeq", "7", "in.fa", "report")
        self.open_page("report")
        self.assertEqual(self.texts("#key-figures dd")[2:4], ["0", "0"])
        self.assert_quiet()

    def test_reports_without_alignments_lengths_and_edits(self) -> None:
        self.write("in.fa", b">a\n" + ARRAY + b"\n")
        for settings in (["--outputFormat", "2"], ["--outputFormat", "0", "--printRepeatSeqMode", "0"], ["--outputFormat", "4"],
                         ["-u", "40", "-U", "60"]):
            with self.subTest(settings=settings):
                self.assertEqual(self.vorlan(*settings, "in.fa", "report").returncode, 0)
                self.open_page("report")
                self.run_script("document.querySelectorAll('details').forEach(e => { e.open = true; })")
                self.assert_quiet()


if __name__ == "__main__":
    unittest.main()
