# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A second assembly made from a first one, with a map that tells where each base has gone."""

from __future__ import annotations

import random
from bisect import bisect_right
from dataclasses import dataclass, field

OTHER = str.maketrans("ACGTN", "TGCAN")


def turned(bases: str) -> str:
    return bases.translate(OTHER)[::-1]


@dataclass
class CopyChange:
    """`bases` are inserted (above 0) or deleted at `place` of a sequence of the first assembly, counted from 0."""

    sequence: str
    place: int
    bases: int
    unit: int


@dataclass(frozen=True)
class Piece:
    """[start, end) of a sequence of the first assembly, as it stands in the second one at other_start."""

    sequence: str
    start: int
    end: int
    other_sequence: str = ""
    other_start: int = 0
    is_turned: bool = False


@dataclass
class SecondAssembly:
    """Sequences, and the pieces that they were put together from."""

    sequences: dict[str, str] = field(default_factory=dict)
    pieces: list[Piece] = field(default_factory=list)

    def __post_init__(self) -> None:
        self._by_first: dict[str, list[Piece]] = {}
        self._by_second: dict[str, list[Piece]] = {}

    def index(self) -> None:
        for piece in self.pieces:
            self._by_first.setdefault(piece.sequence, []).append(piece)
            self._by_second.setdefault(piece.other_sequence, []).append(piece)
        for pieces in self._by_first.values():
            pieces.sort(key=lambda piece: piece.start)
        for pieces in self._by_second.values():
            pieces.sort(key=lambda piece: piece.other_start)

    def there(self, sequence: str, place: int) -> tuple[str, int, bool] | None:
        """Where a base of the first assembly stands in the second one."""
        pieces = self._by_first.get(sequence, [])
        number = bisect_right(pieces, place, key=lambda piece: piece.start) - 1
        if number < 0 or place >= pieces[number].end:
            return None
        piece = pieces[number]
        offset = piece.end - 1 - place if piece.is_turned else place - piece.start
        return piece.other_sequence, piece.other_start + offset, piece.is_turned

    def here(self, sequence: str, place: int) -> tuple[str, int] | None:
        """Where a base of the second assembly stood in the first one."""
        pieces = self._by_second.get(sequence, [])
        number = bisect_right(pieces, place, key=lambda piece: piece.other_start) - 1
        if number < 0 or place >= pieces[number].other_start + pieces[number].end - pieces[number].start:
            return None
        piece = pieces[number]
        offset = place - piece.other_start
        return piece.sequence, piece.end - 1 - offset if piece.is_turned else piece.start + offset

    def grown(self, sequence: str, start: int, end: int) -> int | None:
        """By how many bases [start, end) has become longer; None where its neighbours were torn apart."""
        before, behind = self.there(sequence, start - 1), self.there(sequence, end)
        if before is None or behind is None or before[0] != behind[0] or before[2] != behind[2]:
            return None
        return abs(behind[1] - before[1]) - 1 - (end - start)


def cut(first: dict[str, str], changes: list[CopyChange], breaks: dict[str, list[int]]) -> dict[str, list[list[object]]]:
    """Each sequence as blocks between breaks, each block as pieces of the first assembly and inserted bases."""
    blocks: dict[str, list[list[object]]] = {}
    for name, bases in first.items():
        edges = [0, *sorted(breaks.get(name, [])), len(bases)]
        here = sorted((change for change in changes if change.sequence == name), key=lambda change: change.place)
        blocks[name] = []
        for begin, end in zip(edges, edges[1:]):
            parts: list[object] = []
            place = begin
            for change in here:
                if not begin <= change.place < end:
                    continue
                parts.append(Piece(name, place, change.place))
                place = change.place
                if change.bases > 0:  # copies of the unit that stands there
                    unit = bases[place:place + change.unit]
                    parts.append((unit * change.bases)[:change.bases])
                else:
                    place -= change.bases
            parts.append(Piece(name, place, end))
            blocks[name].append(parts)
    return blocks


def with_snps(chance: random.Random, bases: str, share: float) -> str:
    letters = list(bases)
    for place in range(len(letters)):
        if letters[place] in "ACGT" and chance.random() < share:
            letters[place] = chance.choice([base for base in "ACGT" if base != letters[place]])
    return "".join(letters)


def assemble(chance: random.Random, first: dict[str, str], changes: list[CopyChange], rearranged: int,
             snps: float) -> SecondAssembly:
    """Half of `rearranged` blocks are turned, half are moved to other places; SNPs are put everywhere."""
    names = list(first)
    breaks: dict[str, list[int]] = {}
    sizes = [len(first[name]) for name in names]
    for _ in range(rearranged):
        name = chance.choices(names, sizes)[0]
        start = chance.randrange(1000, max(1001, len(first[name]) - 1000))
        around = [change for change in changes if change.sequence == name]
        edges = [start, start + min(chance.randint(2000, 9000), max(1, len(first[name]) - start - 1))]
        # Copies are changed and blocks cut at different places.
        if all(abs(edge - change.place) > 400 for edge in edges for change in around):
            breaks.setdefault(name, []).extend(edges)
    blocks = cut(first, changes, breaks)
    moved: list[list[object]] = []
    layout: dict[str, list[tuple[list[object], bool]]] = {name: [] for name in names}
    for name in names:
        for number, block in enumerate(blocks[name]):
            fate = chance.random() if number % 2 == 1 else 1
            if fate < 0.5:
                moved.append(block)
            else:
                layout[name].append((block, number % 2 == 1))
    for block in moved:
        target = layout[chance.choice(names)]
        target.insert(chance.randint(0, len(target)), (block, chance.random() < 0.5))
    second = SecondAssembly()
    for name in names:
        text, length = [], 0
        for block, is_turned in layout[name]:
            for part in reversed(block) if is_turned else block:
                if isinstance(part, Piece):
                    bases = first[part.sequence][part.start:part.end]
                    if part.end > part.start:
                        second.pieces.append(Piece(part.sequence, part.start, part.end, name, length, is_turned))
                else:
                    bases = part
                text.append(turned(bases) if is_turned else bases)
                length += len(bases)
        second.sequences[name] = with_snps(chance, "".join(text), snps)
    second.index()
    return second
