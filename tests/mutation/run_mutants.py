#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Plant small faults in the program, one at a time, and see which test notices each.

    run_mutants.py [--only TEXT] [--again | --remembered] [--write FILE]

The faults stand in mutants.toml. Each is planted in a copy of the tree under build/mutants/, which is
built again as far as needed; then the tests that `make test` runs are run up to the first red one:
the test that caught the fault last time, then layer by layer, quick ones first, and of a layer first
the tests that share a word with the name of the file. A run takes long, so its outcomes are
remembered in build/mutants/tried.json, all but faults that survive without a stated reason: an
interrupted run goes on where it ended, and a later one tries again only those and the faults in
files that have changed since. The other files may have changed, so the table says at which commits
the faults were tried. Prints, and with --write stores, a table: which test of which layer caught
each, and how long it took from the fault to the red test, building included. Every source file must
have a fault, unless mutants.toml says that it holds no code. Status 1 if a fault survives without a
stated reason, or is caught although there is one; 2 if the list of faults does not fit the tree.

    --only TEXT    only faults whose file or name holds TEXT
    --again        forget earlier outcomes, as is due when tests have changed
    --remembered   try nothing: the table has what is remembered, and says how many are not tried yet
    --write FILE   store the table; only after a run with all faults
"""

from __future__ import annotations

import argparse
import datetime
import hashlib
import json
import re
import resource
import shutil
import subprocess
import sys
import time
import tomllib
from collections import Counter
from collections.abc import Callable, Mapping, Sequence
from dataclasses import asdict, dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutants"
TREE = WORK / "tree"
BUILD = WORK / "build"
TRIED = WORK / "tried.json"
GREEN = WORK / "green"

FEWEST_MUTANTS = 60
# A fault may make a program allocate without end.
ADDRESS_SPACE = 4 << 30
# Of a stage; without a fault the longest takes a few minutes on a busy machine.
TIME_LIMIT_SECONDS = 1800

# Little optimisation: the build takes most of the time.
CONFIGURE = ["cmake", "-G", "Ninja", "-S", str(TREE), "-B", str(BUILD), "-DCMAKE_BUILD_TYPE=Release",
             "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG", "-DVORLAN_HARDENING=OFF"]


def limit_memory() -> None:
    resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))


@dataclass(frozen=True)
class Stage:
    """Some tests: what has to be built for them, the commands that run all or one, and how a red one is named."""

    folder: str
    targets: tuple[str, ...]
    command: tuple[str, ...]
    command_of_one: Callable[[str], tuple[str, ...]]
    red_test: re.Pattern[str]
    command_of_words: Callable[[Sequence[str]], tuple[str, ...]] | None = None

    def red_tests(self, command: tuple[str, ...]) -> list[str]:
        """The names of tests that fail; those behind the first may not have been run."""
        try:
            result = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False,
                                    preexec_fn=limit_memory, timeout=TIME_LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            return [f"{self.folder}: time limit"]
        if result.returncode == 0:
            return []
        red = self.red_test.findall(result.stdout)
        # A program of tests that died has begun one last test.
        begun = re.findall(r"^\[ RUN      \] (\S+)", result.stdout, re.MULTILINE)
        if not red and not begun:
            raise RuntimeError(f"{command} failed without a red test:\n{result.stdout[-2000:]}{result.stderr}")
        return red or begun[-1:]

    def is_red(self, test: str) -> bool:
        """Whether this test fails alone; false if there is no such test."""
        return bool(self.red_tests(self.command_of_one(test)))

    def first_red(self, words: Sequence[str]) -> str | None:
        """A test that fails, and fails again alone: on a busy machine a test may miss its time limit."""
        commands = [self.command_of_words(words)] if self.command_of_words and words else []
        for command in (*commands, self.command):
            red = self.red_tests(command)
            if red and (self.is_red(red[0]) or self.red_tests(command)):
                return red[0]
        return None


def gtest_stage(folder: str, target: str) -> Stage:
    """A program of tests as a whole; ctest would start it once for each test."""
    program = str(BUILD / folder / target)
    return Stage(folder, ("vorlan", target), (program, "--gtest_fail_fast"),
                 lambda test: (program, f"--gtest_filter={test}"),
                 re.compile(r"^\[  FAILED  \] (\S+?)(?:,|$)", re.MULTILINE),
                 lambda words: (program, "--gtest_fail_fast",
                                "--gtest_filter=" + ":".join(f"*{word.capitalize()}*" for word in words)))


def golden_stage() -> Stage:
    cases = {path.parent.name: str(path.parent) for path in sorted(TREE.glob("tests/golden/*/cmd"))}
    command = (sys.executable, str(TREE / "tests/golden/run_golden.py"), str(BUILD / "vorlan"))
    return Stage("tests/golden", ("vorlan",), (*command, *cases.values()),
                 lambda test: (*command, cases[test]) if test in cases else ("true",),
                 re.compile(r"^FAILED (\S+)$", re.MULTILINE))


def ctest_stage(folder: str) -> Stage:
    command = ("ctest", "--test-dir", str(BUILD / folder), "--label-exclude", "slow", "--parallel", "2",
               "--stop-on-failure", "--timeout", "60", "--no-tests=ignore")
    return Stage(folder, ("all",), command, lambda test: (*command, "--tests-regex", f"^{re.escape(test)}$"),
                 re.compile(r"^The following tests FAILED:\s+\d+ - (\S+)", re.MULTILINE))


def stages() -> list[Stage]:
    """The quick layers, then every other folder of tests: none is forgotten."""
    quick = [gtest_stage("tests/unit", "vorlan_unit_tests"),
             gtest_stage("tests/unit/fast", "vorlan_fast_path_tests"), golden_stage()]
    known = {stage.folder for stage in quick} | {"tests"}
    folders = [path.parent.relative_to(BUILD).as_posix() for path in sorted(BUILD.glob("tests/**/CTestTestfile.cmake"))]
    return quick + [ctest_stage(folder) for folder in folders if folder not in known]


@dataclass(frozen=True)
class Mutant:
    """A fault: `original`, which the file holds exactly once, becomes `replacement`."""

    name: str
    file: str
    original: str
    replacement: str
    equivalent: str = ""  # why nothing can tell

    def mutated(self, text: str) -> str:
        return text.replace(self.original, self.replacement)


@dataclass(frozen=True)
class Trial:
    """How a fault was tried: which test was red, if any, its layer (a folder of tests), how long that took, and when."""

    test: str
    layer: str
    seconds: int
    file_digest: str  # of the file where the fault was planted
    commit: str

    @property
    def is_caught(self) -> bool:
        return bool(self.test)


Result = tuple[Mutant, Trial]


class ListError(Exception):
    """The list of faults does not fit the tree."""


@dataclass(frozen=True)
class FaultList:
    """What mutants.toml holds: the faults, and the source files without code with the reason."""

    mutants: Sequence[Mutant]
    without_code: Mapping[str, str]


def read_list(path: Path) -> FaultList:
    with path.open("rb") as file:
        content = tomllib.load(file)
    return FaultList([Mutant(**entry) for entry in content["mutant"]], content["without_code"])


def problems_of(mutant: Mutant, root: Path) -> list[str]:
    path = root / mutant.file
    if not path.is_file():
        return ["there is no such file"]
    count = path.read_text().count(mutant.original)
    problems = [] if count == 1 else [f"the original text is found {count} times"]
    return problems if mutant.original != mutant.replacement else [*problems, "changes nothing"]


def spared_files(faults: FaultList, root: Path) -> list[str]:
    """What is wrong with the source files that have no fault, and with the list of those without code."""
    with_faults = {mutant.file for mutant in faults.mutants}
    sources = {path.relative_to(root).as_posix() for path in (root / "src").rglob("*") if path.is_file()}
    problems = [f"no fault in {file}" for file in sorted(sources - with_faults - faults.without_code.keys())]
    problems += [f"said to be without code, but with a fault: {file}"
                 for file in sorted(with_faults & faults.without_code.keys())]
    return problems + [f"said to be without code, but not there: {file}"
                       for file in sorted(faults.without_code.keys() - sources)]


def check_list(faults: FaultList, root: Path) -> None:
    """Raise ListError unless each fault can be planted and every source file with code has some."""
    mutants = faults.mutants
    problems = [f"{mutant.file}: {mutant.name}: {problem}"
                for mutant in mutants for problem in problems_of(mutant, root)]
    names = [mutant.name for mutant in mutants]
    problems += [f"twice: {name}" for name in sorted({name for name in names if names.count(name) > 1})]
    problems += spared_files(faults, root)
    if len(mutants) < FEWEST_MUTANTS:
        problems.append(f"only {len(mutants)} faults: the list must not shrink unnoticed")
    if problems:
        raise ListError("\n".join(problems))


def output_of(*command: str) -> str:
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout


def copy_tree() -> None:
    """Copy what the working tree holds; files that are the same already keep their times."""
    names = set(output_of("git", "ls-files", "-z", "--cached", "--others", "--exclude-standard").split("\0")) - {""}
    names = {name for name in names if (ROOT / name).exists()}
    for path in TREE.rglob("*"):
        if path.is_file() and path.relative_to(TREE).as_posix() not in names:
            path.unlink()
    for name in names:
        source, copy = ROOT / name, TREE / name
        if copy.exists() and copy.read_bytes() == source.read_bytes():
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(source, copy)
        copy.touch()


def build(targets: Sequence[str]) -> subprocess.CompletedProcess[str]:
    command = ["cmake", "--build", str(BUILD), "--parallel", "2", "--target", *targets]
    return subprocess.run(command, capture_output=True, text=True, check=False)


def build_tests(stage: Stage) -> bool:
    return build(stage.targets).returncode == 0


def words_of(file: str) -> list[str]:
    """Of the name of a source file, and of that of its folder below a part of the program."""
    parts = file.partition(".")[0].split("/")[2:]
    return sorted({word for part in parts for word in part.split("_")})


def catcher(file: str = "", last: Trial | None = None) -> tuple[str, str] | None:
    """A test that notices what is planted in this file of the copy, and its layer, or None."""
    compiled = build(["vorlan"])
    if compiled.returncode != 0:
        raise ListError(f"the program cannot be compiled:\n{compiled.stdout[-2000:]}")
    for stage in stages():
        if last and last.is_caught and stage.folder == last.layer and build_tests(stage) and stage.is_red(last.test):
            return last.test, last.layer
    for stage in stages():
        # After linking, test programs are asked for their tests: one that cannot answer is red.
        if not build_tests(stage):
            return "the tests cannot be listed", stage.folder
        if red := stage.first_red(words_of(file)):
            return red, stage.folder
    return None


def try_mutant(mutant: Mutant, last: Trial | None) -> Trial:
    path = TREE / mutant.file
    text = path.read_text()
    path.write_text(mutant.mutated(text))
    planted_at = time.monotonic()
    try:
        test, layer = catcher(mutant.file, last) or ("", "")
        return Trial(test, layer, round(time.monotonic() - planted_at), digest_of_text(text), commit())
    except ListError as problem:
        raise ListError(f"{mutant.file}: {mutant.name}: {problem}") from problem
    finally:
        path.write_text(text)


def is_as_stated(mutant: Mutant, trial: Trial) -> bool:
    return trial.is_caught != bool(mutant.equivalent)


def outcome_text(mutant: Mutant, trial: Trial) -> str:
    if not trial.is_caught:
        return f"equivalent: {mutant.equivalent}" if mutant.equivalent else "**survived**"
    return f"{trial.test} (**but said to be equivalent**)" if mutant.equivalent else trial.test


def table(results: Sequence[Result]) -> str:
    lines = ["| file | fault | caught by | layer | seconds |", "|---|---|---|---|---|"]
    for mutant, trial in results:
        seconds = str(trial.seconds) if trial.is_caught else ""
        lines.append(f"| `{mutant.file.removeprefix('src/')}` | {mutant.name} | {outcome_text(mutant, trial)} "
                     f"| {trial.layer.removeprefix('tests/')} | {seconds} |")
    return "\n".join(lines) + "\n"


def layers(results: Sequence[Result]) -> str:
    """How many faults each layer of tests caught, and how long they took."""
    caught = [trial for _, trial in results if trial.is_caught]
    lines = ["| layer | faults caught | seconds, median | seconds, most |", "|---|---|---|---|"]
    for layer in dict.fromkeys(sorted((trial.layer for trial in caught), key=len)):
        seconds = sorted(trial.seconds for trial in caught if trial.layer == layer)
        lines.append(f"| {layer.removeprefix('tests/')} | {len(seconds)} | {seconds[len(seconds) // 2]} "
                     f"| {seconds[-1]} |")
    return "\n".join(lines) + "\n"


def summary(results: Sequence[Result]) -> str:
    caught = sum(trial.is_caught for _, trial in results)
    equivalent = sum(not trial.is_caught and bool(mutant.equivalent) for mutant, trial in results)
    return (f"{len(results)} faults, {caught} caught, {equivalent} equivalent, "
            f"{len(results) - caught - equivalent} survived")


def commit() -> str:
    return output_of("git", "describe", "--always", "--dirty", "--abbrev=10").strip()


def times_tried(results: Sequence[Result]) -> str:
    """At which commits the faults were tried."""
    tried = Counter(trial.commit for _, trial in results)
    return ", ".join(f"{count} at commit {name}" for name, count in tried.items())


def document(results: Sequence[Result], untried: int) -> str:
    compiler = output_of("c++", "--version").splitlines()[0]
    rest = f" {untried} more were not tried yet since their files changed." if untried else ""
    return (f"# Planted faults\n\n{summary(results)}.{rest}\n\n{datetime.date.today()}, {compiler}, -O1; tried: "
            f"{times_tried(results)}.\nWritten by `make mutants`.\n\n{layers(results)}\n{table(results)}")


def digest_of(root: Path) -> str:
    digest = hashlib.sha256()
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        digest.update(path.relative_to(root).as_posix().encode() + b"\0" + path.read_bytes() + b"\0")
    return digest.hexdigest()


def require_green_tests() -> None:
    """Without a fault no test may be red; not tried again while the tree is the same."""
    digest = digest_of(TREE)
    if GREEN.exists() and GREEN.read_text() == digest:
        return
    if red := catcher():
        raise RuntimeError(f"without any fault a test is red: {red[0]}")
    GREEN.write_text(digest)


def digest_of_text(text: str) -> str:
    return hashlib.sha256(text.encode()).hexdigest()


def key_of(mutant: Mutant) -> str:
    return digest_of_text(repr((mutant.file, mutant.original, mutant.replacement)))


def read_tried() -> dict[str, Trial]:
    content = json.loads(TRIED.read_text()) if TRIED.exists() else {}
    return {key: Trial(**entry) for key, entry in content.items()}


def write_tried(tried: Mapping[str, Trial]) -> None:
    TRIED.write_text(json.dumps({key: asdict(trial) for key, trial in tried.items()}))


def remembered(mutants: Sequence[Mutant], tried: Mapping[str, Trial], root: Path) -> list[Result]:
    """Those that were tried in the files as they are now."""
    results = [(mutant, tried[key]) for mutant in mutants if (key := key_of(mutant)) in tried]
    return [(mutant, trial) for mutant, trial in results
            if trial.file_digest == digest_of_text((root / mutant.file).read_text())]


def run(mutants: Sequence[Mutant], tried: dict[str, Trial]) -> list[Result]:
    """How each fault fares; those in `tried`, by key, are known already, and new ones are added."""
    copy_tree()
    subprocess.run(CONFIGURE, check=True, stdout=subprocess.DEVNULL)
    require_green_tests()
    known = {key_of(mutant): trial for mutant, trial in remembered(mutants, tried, TREE)}
    results = []
    for mutant in mutants:
        key = key_of(mutant)
        trial = known.get(key) or try_mutant(mutant, tried.get(key))
        if is_as_stated(mutant, trial):
            tried[key] = trial
            write_tried(tried)
        results.append((mutant, trial))
        after = f" ({trial.layer}, {trial.seconds} s)" if trial.is_caught else ""
        print(f"{mutant.file}: {mutant.name}: {outcome_text(mutant, trial)}{after}", flush=True)
    return results


def main(words: Sequence[str]) -> int:
    description, _, details = (__doc__ or "").partition("\n\n")
    parser = argparse.ArgumentParser(description=description, epilog=details,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", metavar="TEXT", default="")
    memory = parser.add_mutually_exclusive_group()
    memory.add_argument("--again", action="store_true")
    memory.add_argument("--remembered", action="store_true")
    parser.add_argument("--write", metavar="FILE", type=Path)
    options = parser.parse_args(words)
    if options.only and options.write:
        parser.error("--write needs a run with all faults")
    try:
        faults = read_list(Path(__file__).with_name("mutants.toml"))
        check_list(faults, ROOT)
        chosen = [mutant for mutant in faults.mutants if options.only in f"{mutant.file} {mutant.name}"]
        tried = {} if options.again else read_tried()
        results = remembered(chosen, tried, ROOT) if options.remembered else run(chosen, tried)
    except ListError as problem:
        print(problem, file=sys.stderr)
        return 2
    if options.write:
        options.write.write_text(document(results, len(chosen) - len(results)))
    print(summary(results))
    return 0 if results and all(is_as_stated(*result) for result in results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
