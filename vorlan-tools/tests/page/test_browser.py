# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The page in a real browser: what it shows is what `stats --json` says, and everything can be used."""

from __future__ import annotations

import json
import re
import unittest
import xml.etree.ElementTree as ElementTree

from page.browser import BrowserTest
from parts.programs import VORLAN
from stats.test_stats import genome_text


class PageTest(BrowserTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", genome_text(50, 4, 60))
        self.vorlan("in.fa", "report")
        self.numbers = json.loads(self.tools("stats", "report", "-g", "in.fa", "--json", "-").stdout)
        self.genome = self.numbers["genomes"][0]

    def open_report(self, **looks) -> None:
        self.open_page("report", "-g", "in.fa", **looks)

    def sums(self, key: str) -> list[int]:
        return [entry[key] for entry in self.genome["by_unit_length"]]


class Charts(PageTest):
    def datasets(self, section: str) -> dict[str, list]:
        return dict(self.chart(section, "return chart.data.datasets.map(set => [set.label, set.data])"))

    def test_charts_show_the_numbers_that_their_titles_promise(self) -> None:
        self.open_report()
        lengths = [str(entry["unit_length"]) for entry in self.genome["by_unit_length"]]
        for section, title, whole, perfect in (
                ("repeats-by-unit-length", "Repeats by unit length", "repeats", "perfect"),
                ("bases-by-unit-length", "Bases in repeats by unit length", "bases_in_repeats", "bases_in_perfect")):
            self.assertEqual(self.texts(f"#{section} h2"), [title])
            self.assertEqual(self.chart(section, "return chart.data.labels"), lengths)
            self.assertEqual(self.datasets(section), {
                "Perfect": self.sums(perfect), "Imperfect": [a - b for a, b in zip(self.sums(whole), self.sums(perfect))]})
        edits = self.datasets("edits")
        for label, key in (("Mismatches", "mismatches"), ("Insertions", "insertions"), ("Deletions", "deletions")):
            expected = [100 * a / b for a, b in zip(self.sums(key), self.sums("bases_in_repeats"))]
            for value, number in zip(edits[label], expected, strict=True):
                self.assertAlmostEqual(value, number)
        units = self.genome["units"][:15]
        self.assertEqual(self.datasets("bases-by-unit")["Perfect"], [unit["bases_in_perfect"] for unit in units])

    def test_copies_and_landscape(self) -> None:
        self.open_report()
        copies = sum(value or 0 for data in self.datasets("copies").values() for value in data)
        self.assertEqual(copies, self.genome["repeats"])
        landscape = sum(value or 0 for data in self.datasets("landscape").values() for value in data)
        undiverged = sum(bases for entry in self.genome["by_unit_length"] for index, _, bases in entry["by_divergence"]
                         if index == 0)
        self.assertEqual(landscape, self.genome["bases_in_repeats"] - undiverged)
        self.assertGreater(landscape, 0)
        # One class, one group: the bar says what JSON says.
        groups = self.datasets("landscape")
        labels = self.chart("landscape", "return chart.data.labels")
        entry = self.genome["by_unit_length"][0]
        self.assertEqual({label: value for label, value in zip(labels, groups["Unit 1"]) if value},
                         {f"{index - 1}-{index}": bases for index, _, bases in entry["by_divergence"] if index > 0})

    def test_pointing_at_a_bar_shows_its_value(self) -> None:
        self.open_report()
        self.run_script("document.querySelector('#repeats-by-unit-length').scrollIntoView()")
        self.wait_for_frames()
        x, y = self.chart("repeats-by-unit-length", """
            const box = chart.canvas.getBoundingClientRect(); const bar = chart.getDatasetMeta(0).data[2];
            return [box.x + bar.x, box.y + (bar.y + bar.base) / 2]""")
        self.move_to(x, y)
        self.assert_eventually(lambda: self.chart("repeats-by-unit-length", "return chart.tooltip.opacity"), 1)
        shown = self.chart("repeats-by-unit-length", "return [chart.tooltip.opacity, chart.tooltip.title, "
                           "chart.tooltip.body.map(part => part.lines[0])]")
        entry = self.genome["by_unit_length"][2]
        self.assertEqual(shown[1], [f"Unit length: {entry['unit_length']}"])
        self.assertIn(f"Perfect: {entry['perfect']:,}", shown[2])

    def test_a_click_on_the_legend_switches_a_series(self) -> None:
        self.open_report()
        self.run_script("document.querySelector('#repeats-by-unit-length').scrollIntoView()")
        self.wait_for_frames()
        visible = "return [0, 1].map(i => chart.isDatasetVisible(i))"
        x, y = self.chart("repeats-by-unit-length", """
            const box = chart.canvas.getBoundingClientRect(); const item = chart.legend.legendHitBoxes[1];
            return [box.x + item.left + 5, box.y + item.top + 5]""")
        for expected in ([True, False], [True, True]):
            self.click_at(x, y)
            self.assert_eventually(lambda: self.chart("repeats-by-unit-length", visible), expected)

    def test_saving(self) -> None:
        self.open_report()
        self.press("copies", "SVG")
        drawing = ElementTree.fromstring(self.saved(".svg"))
        texts = [element.text for element in drawing.iter("{http://www.w3.org/2000/svg}text")]
        self.assertIn("Copies of the unit", texts)
        self.assertGreater(len(list(drawing.iter("{http://www.w3.org/2000/svg}path"))), 20)
        self.press("copies", "PNG")
        self.assertEqual(self.saved(".png")[:8], b"\x89PNG\r\n\x1a\n")
        self.press("sequences-map", "SVG")
        drawing = ElementTree.fromstring(self.saved(".svg"))
        windows = sum(len(entry["repeats"]) for entry in self.genome["windows"]["sequences"])
        self.assertEqual(sum(element.get("class") == "tile" for element in drawing.iter()), windows)
        self.press("sequences-map", "PNG")
        self.assertEqual(self.saved(".png")[:8], b"\x89PNG\r\n\x1a\n")
        self.press("repeats-by-unit-length", "CSV")
        rows = [line.split(",") for line in self.saved(".csv").decode().split("\r\n")]
        self.assertEqual(rows[0][:3], ["Unit length", "All", "Perfect"])
        self.assertEqual([[int(cell) for cell in row[:3]] for row in rows[1:-1]],
                         [[entry["unit_length"], entry["repeats"], entry["perfect"]] for entry in self.genome["by_unit_length"]])
        self.assert_quiet()

    def test_numbers_of_a_chart_unfold(self) -> None:
        self.open_report()
        self.assertEqual(self.texts("#bases-by-unit-length td"), [])
        self.press("bases-by-unit-length", "Numbers")
        self.assertEqual(self.texts("#bases-by-unit-length tbody td:nth-child(2)"),
                         [f"{bases:,}" for bases in self.sums("bases_in_repeats")])


class Calibration(PageTest):
    def test_shares_thresholds_and_advice(self) -> None:
        self.assertEqual(self.tools("calibrate", "--vorlan", VORLAN, "-g", "in.fa", "--copies", "3", "--json", "a.cal").returncode, 0)
        self.open_page("report", "--calibration", "a.cal")
        said = json.loads(self.read("a.cal"))
        shown = dict(self.chart("calibration", "return chart.data.datasets.map(set => [set.label, set.data])"))
        scores = [int(label) for label in self.chart("calibration", "return chart.data.labels")]
        entry = said["by_unit_length"][0]
        for score, value in zip(scores, shown["Unit 1"], strict=True):
            found = sum(row[1] for row in entry["scores"] if row[0] >= score)
            chance = sum(row[2] for row in entry["scores"] if row[0] >= score) / 3
            self.assertAlmostEqual(value or 0, min(100, 100 * chance / found) if found else 0)
        self.assertEqual(self.texts("#calibration code"), [advice["options"] for advice in said["advice"]])
        thresholds = [[str(found["score"]) + ("" if found["is_sure"] else " ?") for found in entry["thresholds"]]
                      for entry in said["by_unit_length"]]
        self.assertEqual(self.texts("#calibration tbody td:nth-child(5)"), [first for first, _ in thresholds])
        self.assertEqual(self.texts("#calibration tbody td:nth-child(6)"), [second for _, second in thresholds])
        self.assert_quiet()


class Tables(PageTest):
    def test_sorting_and_filtering_units(self) -> None:
        self.open_report()
        column = "#units tbody td:nth-child(8)"
        head = self.find_all("#units thead button")[7]
        self.assertEqual(head.text, "Longest")
        longest = [unit["longest"] for unit in self.genome["units"]]
        self.run_script("arguments[0].scrollIntoView({block: 'center'})", head)
        for order in (True, False):
            head.click()
            self.assertEqual([int(text.replace(",", "")) for text in self.texts(column)], sorted(longest, reverse=order))
        self.find("#units input").send_keys("ag")
        expected = sorted(unit["unit"] for unit in self.genome["units"] if "AG" in unit["unit"])
        self.assertTrue(0 < len(expected) < len(longest))
        self.assertEqual(sorted(self.texts("#units tbody td:nth-child(1)")), expected)
        self.assertIn(f"{len(expected)} of {len(longest)}", self.texts("#units caption")[0])

    def test_alignments_unfold(self) -> None:
        self.open_report()
        repeat = self.genome["longest_repeats"][0]
        self.assertEqual(len(self.find_all("#longest li")), 20)
        self.assertEqual(self.find_all("#longest pre"), [])
        summary = self.find("#longest summary")
        self.run_script("arguments[0].scrollIntoView({block: 'center'})", summary)
        summary.click()
        self.browser.implicitly_wait(2)
        lines = self.find("#longest pre").get_property("textContent").split("\n")
        blocks = [lines[i:i + 3] for i in range(0, len(lines) - 1, 4)]
        self.assertEqual(["".join(rows) for rows in zip(*blocks)], repeat["alignment"])

    def test_key_figures(self) -> None:
        self.open_report()
        figures = dict(zip(self.texts("#key-figures dt"), self.texts("#key-figures dd")))
        for term, key in (("Bases searched", "bases"), ("N among them", "ns"), ("Repeats", "repeats"),
                          ("Bases in repeats, overlaps once", "covered"), ("Sequences", "sequences")):
            self.assertEqual(figures[term], f"{self.genome[key]:,}")
        self.assertEqual(figures["Share of bases in repeats"], f"{self.genome['covered_percent']:.1f} %")
        self.assertEqual(figures["Vorlan"], self.genome["version"])
        settings = dict(zip(self.texts("#key-figures th"), self.texts("#key-figures td")))
        self.assertEqual(settings["Maximum unit length"], "10")


class Map(PageTest):
    def test_windows_tell_and_open(self) -> None:
        self.open_report()
        self.run_script("document.querySelector('#sequences-map').scrollIntoView()")
        self.wait_for_frames()
        entry = self.genome["windows"]["sequences"][1]
        before = len(self.genome["windows"]["sequences"][0]["repeats"])
        place = max(range(len(entry["repeats"])), key=lambda i: entry["repeats"][i])
        x, y = self.run_script("const box = document.querySelectorAll('#sequences-map .tile')[arguments[0]]"
                               ".getBoundingClientRect(); return [box.x + box.width / 2, box.y + box.height / 2]", before + place)
        self.move_to(x, y)
        size = self.genome["windows"]["size"]
        end = min((place + 1) * size, entry["length"])
        count = entry["repeats"][place]
        self.assert_eventually(lambda: bool(self.texts("#tip")[0]), True)
        text = self.texts("#tip")[0]
        self.assertTrue(text.startswith(f"s1: {place * size + 1:,}-{end:,}, {count} repeat"), text)
        self.click_at(x, y)
        self.assert_eventually(lambda: len(self.find_all("#sequences-map .repeats")), 1)
        shown = self.texts("#sequences-map .repeats summary")
        self.assertEqual([re.search(r"s1:([\d,]+)-", line)[1] for line in shown],
                         [f"{repeat['start']:,}" for repeat in entry["longest"][place]])

    def test_keys(self) -> None:
        self.open_report()
        drawing = self.find("#sequences-map svg")
        self.run_script("arguments[0].focus()", drawing)
        for key in ("\ue014", "\ue014", "\ue007"):
            drawing.send_keys(key)
        size = self.genome["windows"]["size"]
        self.assertTrue(self.texts("#sequences-map h3")[0].startswith(f"s0: {size + 1:,}-{2 * size:,}, "))

    def test_colours_hold_equally_many_windows(self) -> None:
        self.open_report()
        fills = self.run_script("return [...document.querySelectorAll('#sequences-map .tile')].map(e => e.getAttribute('fill'))")
        size = self.genome["windows"]["size"]
        shares = [covered / (min((i + 1) * size, entry["length"]) - i * size)
                  for entry in self.genome["windows"]["sequences"] for i, covered in enumerate(entry["covered"])]
        classes: dict[str, list[float]] = {}
        for fill, value in zip(fills, shares, strict=True):
            classes.setdefault(fill, []).append(value)
        self.assertEqual(set(classes.pop("#ffffff", [0.0])), {0.0})
        ordered = sorted(classes.values(), key=min)
        self.assertGreater(len(ordered), 3)
        count = sum(map(len, ordered))
        for lower, upper in zip(ordered, ordered[1:]):
            self.assertLess(max(lower), min(upper))
        for values in ordered:
            # Windows of one share have one colour, so that only those below the upper border count.
            self.assertLessEqual(sum(value < max(values) for value in values), -(-count // 6))


class Looks(PageTest):
    def test_no_width_needs_a_scroll_bar_and_both_schemes_are_readable(self) -> None:
        for width in (400, 1600):
            for scheme, ground in (("light", "rgb(255, 255, 255)"), ("dark", "rgb(20, 23, 27)")):
                with self.subTest(width=width, scheme=scheme):
                    self.open_report(width=width, scheme=scheme)
                    self.assertEqual(self.run_script("return document.documentElement.scrollWidth"), width)
                    colour = "return getComputedStyle(document.body).backgroundColor"
                    self.assertEqual(self.run_script(colour), ground)
                    self.assertEqual(self.chart("copies", "return chart.options.plugins.legend.labels.color"),
                                     "#1b1f24" if scheme == "light" else "#e6e8eb")
                    self.assert_quiet()

    def test_a_screen_reader_finds_names(self) -> None:
        self.open_report()
        nameless = self.run_script("""
            return [...document.querySelectorAll('canvas, button, input, select, svg, section')].filter(e =>
              !(e.getAttribute('aria-label') || e.textContent.trim() || e.labels?.length)).map(e => e.outerHTML)""")
        self.assertEqual(nameless, [])
        self.assertEqual(self.run_script("return document.documentElement.lang"), "en")
        levels = self.run_script("return [...document.querySelectorAll('h1, h2')].map(e => e.tagName)")
        self.assertEqual(levels.count("H1"), 1)


class Paper(PageTest):
    def for_paper(self, is_begun: bool) -> None:
        """As before printing, or as behind it: the browser tells the page, and takes its style for paper."""
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": "print" if is_begun else "", "features": [{"name": "prefers-color-scheme", "value": "dark"}]})
        self.run_script("dispatchEvent(new Event(arguments[0]))", "beforeprint" if is_begun else "afterprint")
        self.wait_for_frames()

    def visible(self, selector: str) -> list[str]:
        return self.run_script("return [...document.querySelectorAll(arguments[0])].filter(e => e.checkVisibility())"
                               ".map(e => e.textContent)", selector)

    def test_nothing_needs_the_pointer(self) -> None:
        self.open_report(scheme="dark")
        self.assertEqual(self.visible(".paper"), [])
        self.for_paper(True)
        settings = dict(zip(self.visible("#key-figures th"), self.visible("#key-figures td")))
        self.assertEqual(settings["Maximum unit length"], "10")
        self.assertEqual(self.visible("#repeats-by-unit-length tbody td:nth-child(2)"),
                         [f"{repeats:,}" for repeats in self.sums("repeats")])
        rows = sum(len(entry["repeats"]) for entry in self.genome["windows"]["sequences"])
        self.assertGreater(rows, 40)
        self.assertIn(f"{rows} rows", self.visible("#sequences-map .paper")[0])
        units = len(self.genome["units"])
        self.assertGreater(units, 40)
        self.assertEqual(len(self.visible("#units tbody tr")), 40)
        self.assertIn(f"The first 40 of {units} rows", self.visible("#units .paper")[0])
        self.assertIn("unfolded", self.visible("#longest .paper")[0])
        self.assertEqual(self.visible(".tools button, #choice, input"), [])
        self.for_paper(False)
        self.assertEqual(self.visible(".paper"), [])
        self.assertEqual(self.texts("#repeats-by-unit-length td"), [])
        self.assertEqual(self.visible("#key-figures th"), [])
        self.assert_quiet()

    def test_paper_is_white_and_holds_all_figures(self) -> None:
        self.open_report(scheme="dark")
        self.for_paper(True)
        self.look_at_paper()
        self.assertEqual(self.run_script("return getComputedStyle(document.body).backgroundColor"), "rgb(255, 255, 255)")
        self.assertEqual(self.chart("copies", "return chart.options.plugins.legend.labels.color"), "#1b1f24")
        beyond = self.run_script("""
            return [...document.querySelectorAll('canvas, svg, table')].filter(e => e.checkVisibility()
              && e.getBoundingClientRect().right > document.body.getBoundingClientRect().right)
              .map(e => e.closest('section').id)""")
        self.assertEqual(beyond, [])
        inside = self.run_script("""
            const frame = document.querySelector('#sequences-map svg').getBoundingClientRect();
            return [...document.querySelectorAll('#sequences-map svg text')].every(e => {
              const box = e.getBoundingClientRect();
              return box.right <= frame.right && box.bottom <= frame.bottom;
            })""")
        self.assertTrue(inside)
        self.for_paper(False)

    def look_at_paper(self) -> None:
        """The width of A4 between its margins; the page was drawn for that of a screen."""
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": 718, "height": 1000, "deviceScaleFactor": 1, "mobile": False})
        self.wait_for_frames()


class SeveralGenomes(PageTest):
    def test_comparison_and_choice(self) -> None:
        self.write("other.fa", genome_text(51, 2, 20))
        self.vorlan("other.fa", "other")
        self.open_page("report", "other")
        numbers = json.loads(self.tools("stats", "report", "other", "--json", "-").stdout)["genomes"]
        self.assertEqual(self.texts("#comparison-table tbody td:nth-child(4)"), [f"{g['repeats']:,}" for g in numbers])
        shown = dict(self.chart("comparison-lengths", "return chart.data.datasets.map(set => [set.label, set.data])"))
        for genome in numbers:
            for value, entry in zip(shown[genome["name"]], genome["by_unit_length"]):
                self.assertAlmostEqual(value, 1e6 * entry["bases_in_repeats"] / genome["bases"])
        self.run_script("const s = document.getElementById('genome'); s.value = 1; s.dispatchEvent(new Event('change'))")
        self.assertEqual(self.texts("#key-figures h2"), ["other"])
        self.assert_quiet()


if __name__ == "__main__":
    unittest.main()
