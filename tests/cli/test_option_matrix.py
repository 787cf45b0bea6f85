# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every option with good and bad values, alone and in random combinations.

Each run must end in time with the status and the sentence that follow from the values, in no more
memory than the input explains. One thing is excepted: a look-ahead depth far above the recommended 3
to 7, together with other options, may ask for more paths than anyone can wait for. Such runs are ended
soon, and counted. The environment may ask for more:

  VORLAN_MATRIX_COMBINATIONS  how many combinations
  VORLAN_MATRIX_SEED          of which series

The number of runs and of each status is printed at the end.
"""

from __future__ import annotations

import os
import random
import resource
import signal
import struct
from collections import Counter
from dataclasses import dataclass, field

from measured_run import CLOSING_WORDS, MEGABYTE, MeasuredOutcome, MeasuredRunTest
from number_texts import read, values
from option_table import BY_NAME, OPTIONS
from program_run import SANITIZED

COMBINATIONS = int(os.environ.get("VORLAN_MATRIX_COMBINATIONS") or (600 if SANITIZED else 4000))
SEED = int(os.environ.get("VORLAN_MATRIX_SEED") or 1)
MOST_OPTIONS_TOGETHER = 8

# A small record fits into this at the defaults; no value of an option may make the run ask for more.
ADDRESS_SPACE = 60 * MEGABYTE
ROOM_BESIDE_DEFAULT_RUN = (300 if SANITIZED else 16) * MEGABYTE

# In seconds of the processor, which other work on the machine does not use up.
PATIENCE = 60 if SANITIZED else 10
PATIENCE_WITH_DEEP_LOOK_AHEAD = 1
DEEPEST_IN_TIME = 20

DEFAULTS: dict[str, float] = {
    "succN": 2, "reportUnit": 2, "NPerfectionMode": 0, "printRepeatSeqMode": 2, "outputFormat": 1, "flanking": 0,
    "minPerfection": 0, "maxPerfection": 100, "firstSeq": 1, "lastSeq": -1, "maximum_score_reduction": 2**31 - 1,
    "recursion": 5, "minUnitLen": 1, "maxUnitLen": 10, "minLength_b": 0, "minLength_a": 0, "minLength": 0,
    "minScore_b": 1, "minScore_a": 0, "minScore": 6, "mismatchScore": -5, "indelScore": -5}
# Values that let a run go on, so that combinations do more than fail at their first option.
USUAL: dict[str, list[str]] = {
    "succN": ["0", "3", "2147483647"], "reportUnit": ["0", "1", "2"], "NPerfectionMode": ["0", "1", "2"],
    "printRepeatSeqMode": ["0", "1", "2"], "outputFormat": ["0", "1", "2", "3", "4"],
    "flanking": ["3", "1000", "2147483647"], "minPerfection": ["80"], "maxPerfection": ["99.5"],
    "firstSeq": ["2"], "lastSeq": ["1", "2"], "maximum_score_reduction": ["-2147483648", "0", "7", "30", "2147483646"],
    "recursion": ["1", "3", "7", "255", "256", "300"], "minUnitLen": ["1", "2", "5", "300"],
    "maxUnitLen": ["2", "12", "300", "4294967295"], "minLength_b": ["1.5", "1e30"], "minLength_a": ["-7", "12"],
    "minLength": ["2", "12"], "minScore_b": ["0", "1.25", "1e30"], "minScore_a": ["-2147483648", "4"],
    "minScore": ["2", "9"], "mismatchScore": ["-2", "-4", "-2147483648"], "indelScore": ["-2", "-7", "-2147483648"],
    "searchMode": ["exact", "extendExact", "imperfect"]}

CHOICES = {  # in the order in which they are checked
    "outputFormat": (4, b"An outputFormat with a value of %d is unknown.\n\n"),
    "printRepeatSeqMode": (2, b"A printRepeatSeqMode with a value of %d is unknown.\n\n"),
    "NPerfectionMode": (2, b"An option value of %d for the reportUnit option is unknown.\n\n"),
    "reportUnit": (2, b"An option value of %d for the reportUnit option is unknown.\n\n")}
UNKNOWN_CHOICE = b"Sorry, a problem occured when parsing the command line options. "
ABORTED_BY_CHOICE = b"\nAnalysis has been aborted due to errors. Error number: -2\n\n"
CLOSING_LINES = {2: b"# End tandem repeats\n", 4: b""}


@dataclass(frozen=True)
class Expected:
    """`console` ends the standard error of a run, or stands in it when the parser library wrote it."""

    status: int
    console: bytes
    closing_line: bytes = b""
    may_last: bool = False  # too deep a look-ahead


@dataclass
class Tally:
    statuses: Counter[int] = field(default_factory=Counter)
    kinds: Counter[str] = field(default_factory=Counter)
    ended_soon: int = 0
    peak_bytes: int = 0
    slowest: tuple[float, list[str]] = (0.0, [])

    def __str__(self) -> str:
        lines = [f"option matrix, seed {SEED}: {self.kinds.total()} runs"]
        lines += [f"  {count:6} {kind}" for kind, count in self.kinds.items()]
        lines += [f"  {count:6} ended with status {status}" for status, count in sorted(self.statuses.items())]
        lines += [f"  {self.ended_soon:6} looked too deep ahead and were ended after {PATIENCE_WITH_DEEP_LOOK_AHEAD} s",
                  f"  peak memory {self.peak_bytes / MEGABYTE:.1f} MB",
                  f"  slowest {self.slowest[0]:.2f} s: {' '.join(map(repr, self.slowest[1]))}"]
        return "\n".join(lines)


def single(number: float) -> float:
    """Rounded to single precision."""
    return struct.unpack("<f", struct.pack("<f", number))[0]


def parse_failure(name: str, reason: str) -> Expected:
    return Expected(1, f"Argument: {BY_NAME[name].identification()}\n             {reason}\n".encode())


def refusal(given: dict[str, float]) -> bytes | None:
    """What the first failing check of settings that do not fit together says."""
    score, length = (max(given[f"min{rule}"], single(single(given[f"min{rule}_a"]) + given[f"min{rule}_b"]))
                     for rule in ("Score", "Length"))
    checks = [
        (score < 2 and length < 2, b"Sorry, either the minimum score or the minimum length must be larger.\n"),
        (given["mismatchScore"] > -2, b"Sorry, the mismatch score must be smaller or equal to -2.\n"),
        (given["indelScore"] > -2, b"Sorry, the indel score must be smaller or equal to -2.\n"),
        (given["recursion"] <= 0, b"Sorry, the recursion depth must be greater than 0.\n"
                                  b"A value of 0 would corresponds to a perfect search.\n"),
        (given["minUnitLen"] == 0, b"Sorry, the minimum unit length must be greater than 0.\n"),
        (given["maxUnitLen"] < given["minUnitLen"],
         b"I think you have made a mistake here: The maximum unit length must be greater\n"
         b"or equal to the minimum unit length.\n")]
    return next((message for fails, message in checks if fails), None)


def expected_of(settings: list[tuple[str, str]]) -> Expected:
    """What a run with these options, each with its text, must end with."""
    given = dict(DEFAULTS)
    for name, text in settings:
        kind = BY_NAME[name].value
        if name == "searchMode" and text not in kind.split("|"):
            return parse_failure(name, f"Value '{text}' does not meet constraint: {kind}")
        if kind not in ("int", "float") or not text:
            continue
        number = read(name, text)
        if number is None:
            return parse_failure(name, f"Couldn't read argument value from string '{text}'")
        given[name] = single(number) if kind == "float" else number
    for name, (last, words) in CHOICES.items():
        if not 0 <= given[name] <= last:
            return Expected(254, UNKNOWN_CHOICE + words % given[name] + ABORTED_BY_CHOICE)
    if (message := refusal(given)) is not None:
        return Expected(255, message + b"\n\n")
    return Expected(0, CLOSING_WORDS, CLOSING_LINES.get(int(given["outputFormat"]), b"## Finished successfully. ##\n"),
                    len(settings) > 1 and given["recursion"] > DEEPEST_IN_TIME)


def records() -> bytes:
    """Repeats of short and long units with edits and N, background, and records of one base and of none."""
    source = random.Random(5)
    background = bytes(source.choice(b"ACGT") for _ in range(90))
    arrays = b"".join(unit * 7 + b"T" + unit[1:] * 2 + b"NN" + unit * 4 for unit in (b"AC", b"GAT", b"CCTTA", b"ACGTTAGC"))
    return b">a\n%s\n%s\n>b with words\n%s\n>c\nA\n>d\n" % (background, arrays, b"GGCCA" * 9 + b"N" * 9 + background)


class OptionMatrix(MeasuredRunTest):
    time_limit = 900  # for runs that wait instead of working
    tally = Tally()

    @classmethod
    def tearDownClass(cls) -> None:
        print(cls.tally)

    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", records())
        self.most_bytes = self.run_measured("in.fa").peak_bytes + ROOM_BESIDE_DEFAULT_RUN

    def check(self, kind: str, settings: list[tuple[str, str]]) -> None:
        arguments = [argument for name, text in settings
                     for argument in ([f"--{name}", text] if BY_NAME[name].value else [f"--{name}"])]
        self.check_arguments(kind, [*arguments, "in.fa"], expected_of(settings))

    def check_arguments(self, kind: str, arguments: list[str], expected: Expected) -> None:
        patience = PATIENCE_WITH_DEEP_LOOK_AHEAD if expected.may_last else PATIENCE
        outcome = self.run_measured(*arguments, preexec_fn=lambda: set_limits(patience))
        self.tally.kinds[kind] += 1
        self.tally.peak_bytes = max(self.tally.peak_bytes, outcome.peak_bytes)
        with self.subTest(arguments=arguments):
            self.assertLess(outcome.peak_bytes, self.most_bytes)
            if expected.may_last and outcome.status == -signal.SIGXCPU:
                self.tally.ended_soon += 1
                return
            self.tally.statuses[outcome.status] += 1
            self.tally.slowest = max(self.tally.slowest, (outcome.seconds, arguments))
            self.assert_expected(outcome, expected)

    def assert_expected(self, outcome: MeasuredOutcome, expected: Expected) -> None:
        console = outcome.console.read_bytes()
        self.assertEqual(outcome.status, expected.status, console[-300:])
        if expected.status == 1:
            self.assertIn(b"PARSE ERROR: " + expected.console, console)
        else:
            self.assertEqual(console[-len(expected.console):], expected.console)
        self.assertTrue(outcome.report.read_bytes().endswith(expected.closing_line))

    def test_each_option_alone(self) -> None:
        for option in OPTIONS:
            for text in values(option.name) + USUAL.get(option.name, []) if option.value else [""]:
                self.check("one option", [(option.name, text)])

    def test_each_option_without_its_value(self) -> None:
        for option in OPTIONS:
            if option.value:
                self.check_arguments("value missing", ["in.fa", f"--{option.name}"],
                                     parse_failure(option.name, "Missing a value for this argument!"))

    def test_combinations(self) -> None:
        source = random.Random(SEED)
        for _ in range(COMBINATIONS):
            chosen = source.sample(OPTIONS, source.randint(2, MOST_OPTIONS_TOGETHER))
            # Half of the combinations have no bad value.
            bad = source.random() < 0.5
            settings = [(option.name, "" if not option.value else source.choice(
                values(option.name) if bad and source.random() < 0.4 else USUAL[option.name])) for option in chosen]
            self.check("combination", settings)


def set_limits(seconds: int) -> None:
    """For the start of a process. Sanitizers reserve terabytes that they do not use."""
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 5))
    if not SANITIZED:
        resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))
