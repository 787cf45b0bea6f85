#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Plant small faults in the program, one at a time, and see which test notices each.

    run_mutants.py [--only TEXT] [--again] [--write FILE]

The faults stand in mutants.toml. Each is planted in a copy of the tree under build/mutants/, which is
built again as far as needed; then the tests that `make test` runs are run up to the first red one,
quick layers first. A run takes long, so faults that were caught in the same source are remembered
in build/mutants/caught.json: an interrupted run goes on where it ended. Prints, and with --write
stores, a table. Status 1 if a fault survives without a stated reason, or is caught although there
is one; 2 if the list of faults does not fit the tree.

    --only TEXT    only faults whose file or name holds TEXT
    --again        forget what was caught before, as is due when tests have changed
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
import tomllib
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutants"
TREE = WORK / "tree"
BUILD = WORK / "build"
CAUGHT = WORK / "caught.json"
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
    """Some tests: what has to be built for them, the command that runs them, and how it names a red one."""

    folder: str
    targets: tuple[str, ...]
    command: tuple[str, ...]
    red_test: re.Pattern[str]

    def red_tests(self) -> list[str]:
        """The names of tests that fail; those behind the first may not have been run."""
        try:
            result = subprocess.run(self.command, capture_output=True, text=True, errors="replace", check=False,
                                    preexec_fn=limit_memory, timeout=TIME_LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            return [f"{self.folder}: time limit"]
        if result.returncode == 0:
            return []
        red = self.red_test.findall(result.stdout)
        # A program of tests that died has begun one last test.
        begun = re.findall(r"^\[ RUN      \] (\S+)", result.stdout, re.MULTILINE)
        if not red and not begun:
            raise RuntimeError(f"{self.command} failed without a red test:\n{result.stdout[-2000:]}{result.stderr}")
        return red or begun[-1:]


def gtest_stage(folder: str, target: str) -> Stage:
    """A program of tests as a whole; ctest would start it once for each test."""
    return Stage(folder, ("vorlan", target), (str(BUILD / folder / target), "--gtest_fail_fast"),
                 re.compile(r"^\[  FAILED  \] (\S+?)(?:,|$)", re.MULTILINE))


def golden_stage() -> Stage:
    cases = [str(path.parent) for path in sorted(TREE.glob("tests/golden/*/cmd"))]
    return Stage("tests/golden", ("vorlan",),
                 (sys.executable, str(TREE / "tests/golden/run_golden.py"), str(BUILD / "vorlan"), *cases),
                 re.compile(r"^FAILED (\S+)$", re.MULTILINE))


def ctest_stage(folder: str) -> Stage:
    command = ("ctest", "--test-dir", str(BUILD / folder), "--label-exclude", "slow", "--parallel", "2",
               "--stop-on-failure", "--timeout", "60", "--no-tests=ignore")
    return Stage(folder, ("all",), command,
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


class ListError(Exception):
    """The list of faults does not fit the tree."""


def read_mutants(path: Path) -> list[Mutant]:
    with path.open("rb") as file:
        return [Mutant(**entry) for entry in tomllib.load(file)["mutant"]]


def problems_of(mutant: Mutant, root: Path) -> list[str]:
    path = root / mutant.file
    if not path.is_file():
        return ["there is no such file"]
    count = path.read_text().count(mutant.original)
    problems = [] if count == 1 else [f"the original text is found {count} times"]
    return problems if mutant.original != mutant.replacement else [*problems, "changes nothing"]


def check_list(mutants: Sequence[Mutant], root: Path) -> None:
    """Raise ListError unless each fault can be planted and every folder of the source has some."""
    problems = [f"{mutant.file}: {mutant.name}: {problem}"
                for mutant in mutants for problem in problems_of(mutant, root)]
    names = [mutant.name for mutant in mutants]
    problems += [f"twice: {name}" for name in sorted({name for name in names if names.count(name) > 1})]
    folders = {folder.name for folder in (root / "src").iterdir() if folder.is_dir()}
    spared = folders - {Path(mutant.file).parts[1] for mutant in mutants}
    problems += [f"no fault in src/{folder}" for folder in sorted(spared)]
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


def catcher() -> str | None:
    """A test that notices what is planted in the copy, or None."""
    compiled = build(["vorlan"])
    if compiled.returncode != 0:
        raise ListError(f"the program cannot be compiled:\n{compiled.stdout[-2000:]}")
    for stage in stages():
        # After linking, test programs are asked for their tests: one that cannot answer is red.
        if build(stage.targets).returncode != 0:
            return f"{stage.folder}: the tests cannot be listed"
        # Red twice: on a busy machine a test may miss its time limit.
        if stage.red_tests() and (red := stage.red_tests()):
            return red[0]
    return None


def try_mutant(mutant: Mutant) -> str | None:
    path = TREE / mutant.file
    text = path.read_text()
    path.write_text(mutant.mutated(text))
    try:
        return catcher()
    except ListError as problem:
        raise ListError(f"{mutant.file}: {mutant.name}: {problem}") from problem
    finally:
        path.write_text(text)


def is_as_stated(mutant: Mutant, caught_by: str | None) -> bool:
    return (caught_by is None) == bool(mutant.equivalent)


def outcome_text(mutant: Mutant, caught_by: str | None) -> str:
    if caught_by is None:
        return f"equivalent: {mutant.equivalent}" if mutant.equivalent else "**survived**"
    return f"{caught_by} (**but said to be equivalent**)" if mutant.equivalent else caught_by


def table(results: Sequence[tuple[Mutant, str | None]]) -> str:
    lines = ["| file | fault | caught by |", "|---|---|---|"]
    lines += [f"| `{mutant.file.removeprefix('src/')}` | {mutant.name} | {outcome_text(mutant, caught_by)} |"
              for mutant, caught_by in results]
    return "\n".join(lines) + "\n"


def summary(results: Sequence[tuple[Mutant, str | None]]) -> str:
    caught = sum(caught_by is not None for _, caught_by in results)
    equivalent = sum(caught_by is None and bool(mutant.equivalent) for mutant, caught_by in results)
    return (f"{len(results)} faults, {caught} caught, {equivalent} equivalent, "
            f"{len(results) - caught - equivalent} survived")


def document(results: Sequence[tuple[Mutant, str | None]]) -> str:
    commit = output_of("git", "describe", "--always", "--dirty", "--abbrev=10").strip()
    compiler = output_of("c++", "--version").splitlines()[0]
    return (f"# Planted faults\n\n{summary(results)}.\n\n{datetime.date.today()}, commit {commit}, {compiler}, -O1; "
            f"written by `make mutants`.\n\n{table(results)}")


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
        raise RuntimeError(f"without any fault a test is red: {red}")
    GREEN.write_text(digest)


def key_of(mutant: Mutant, source: str) -> str:
    """The same for the same fault in the same source, of which `source` is the digest."""
    return hashlib.sha256(repr((mutant.file, mutant.original, mutant.replacement, source)).encode()).hexdigest()


def read_caught() -> dict[str, str]:
    caught: dict[str, str] = json.loads(CAUGHT.read_text()) if CAUGHT.exists() else {}
    return caught


def run(mutants: Sequence[Mutant], caught: dict[str, str]) -> list[tuple[Mutant, str | None]]:
    """Which test catches each; those in `caught`, by key, are known already, and new ones are added."""
    copy_tree()
    subprocess.run(CONFIGURE, check=True, stdout=subprocess.DEVNULL)
    require_green_tests()
    source = digest_of(TREE / "src")
    results = []
    for mutant in mutants:
        key = key_of(mutant, source)
        red = caught.get(key) or try_mutant(mutant)
        if red is not None:
            caught[key] = red
            CAUGHT.write_text(json.dumps(caught))
        results.append((mutant, red))
        print(f"{mutant.file}: {mutant.name}: {outcome_text(mutant, red)}", flush=True)
    return results


def main(words: Sequence[str]) -> int:
    description, _, details = (__doc__ or "").partition("\n\n")
    parser = argparse.ArgumentParser(description=description, epilog=details,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", metavar="TEXT", default="")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--write", metavar="FILE", type=Path)
    options = parser.parse_args(words)
    if options.only and options.write:
        parser.error("--write needs a run with all faults")
    try:
        mutants = read_mutants(Path(__file__).with_name("mutants.toml"))
        check_list(mutants, ROOT)
        chosen = [mutant for mutant in mutants if options.only in f"{mutant.file} {mutant.name}"]
        results = run(chosen, {} if options.again else read_caught())
    except ListError as problem:
        print(problem, file=sys.stderr)
        return 2
    if options.write:
        options.write.write_text(document(results))
    print(summary(results))
    return 0 if results and all(is_as_stated(*result) for result in results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
