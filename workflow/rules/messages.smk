# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# At the end of a run that failed, one line for each step that did: the last of its log.

OWN_MESSAGES = ("vorlan-workflow: ", "vorlan-tools: ")


def last_line(log):
    lines = log.read_text(errors="replace").split("\n")
    return next((line for line in reversed(lines) if line.strip()), "")


def logs_of(genome):
    return sorted(Path("logs", genome).glob("*.log"))


def tell_failures():
    for genome in FASTA:
        for log in logs_of(genome):
            message = last_line(log)
            if message.startswith(OWN_MESSAGES):
                print(f"{genome} failed: {message}\n    see {log}", file=sys.stderr)


def forget_failures():
    """What an earlier run has said is not to be told again."""
    for genome in FASTA:
        for log in logs_of(genome):
            if last_line(log).startswith(OWN_MESSAGES):
                log.unlink()
