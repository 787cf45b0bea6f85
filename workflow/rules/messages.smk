# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# At the end of a run that failed, one line for each step that did: the last of its log.

OWN_MESSAGES = ("vorlan-workflow: ", "vorlan-tools: ")


def last_line(log):
    lines = log.read_text(errors="replace").split("\n")
    return next((line for line in reversed(lines) if line.strip()), "")


def failures():
    """Each log that ends with a message of ours, with whom it is about."""
    for name, folder in [*((genome, Path("logs", genome)) for genome in FASTA), ("all genomes", Path("logs"))]:
        for log in sorted(folder.glob("*.log")):
            if last_line(log).startswith(OWN_MESSAGES):
                yield name, log


def tell_failures():
    for name, log in failures():
        print(f"{name} failed: {last_line(log)}\n    see {log}", file=sys.stderr)


def forget_failures():
    """What an earlier run has said is not to be told again."""
    for _, log in list(failures()):
        log.unlink()
