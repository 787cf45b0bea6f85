# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# What jobs ask of the scheduler. Memory follows from the longest sequence, time from all bytes that are
# searched; both double at each retry. docs/scaling.md has the measurements.

UNPACKED = 4  # bytes of text for a byte of a compressed genome, about


def piece_of(wildcards):
    """Bytes of a piece, and of its longest record."""
    table = Path(WORK, wildcards.genome, "pieces.tsv")
    if table.exists():
        for line in table.read_text().splitlines()[1:]:
            number, _, size, longest = line.split("\t")
            if number == wildcards.piece:
                return int(size), int(longest)
    size = text_size(wildcards.genome)
    return size, size


def text_size(genome):
    return SIZE[genome] * (UNPACKED if is_compressed(genome) else 1)


def memory(longest, attempt):
    return int((config["memory_mb"] + longest * config["bytes_per_base"] / 1e6) * 2 ** (attempt - 1))


def minutes(bases, attempt):
    return int((config["minutes"] + bases / config["bases_per_second"] / 60) * 2 ** (attempt - 1))


def search_memory(wildcards, attempt):
    return memory(piece_of(wildcards)[1], attempt)


def search_minutes(wildcards, attempt):
    return minutes(piece_of(wildcards)[0], attempt)


def search_nice(wildcards):
    """Long pieces begin first, so that the last job to end is a short one."""
    return max(0, 10000 - piece_of(wildcards)[0] // 1000000)


def batch_memory(wildcards, attempt):
    return memory(max(text_size(genome) for genome in BATCHES[wildcards.batch]), attempt)


def batch_minutes(wildcards, attempt):
    genomes = BATCHES[wildcards.batch]
    return minutes(sum(text_size(genome) for genome in genomes), attempt) + len(genomes)


def step_memory(wildcards, attempt):
    """Other steps stream, but conversions may sort and checks hold one sequence."""
    return memory(text_size(wildcards.genome), attempt)


def step_minutes(wildcards, attempt):
    return minutes(text_size(wildcards.genome), attempt)


def memory_for_all(wildcards, attempt):
    """The numbers of a genome are some 2 MB as text, and more in memory."""
    return (config["memory_mb"] + 20 * len(FASTA)) * 2 ** (attempt - 1)
