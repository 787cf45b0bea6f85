#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# search_piece.sh TABLE PIECE TEXT REPORT VORLAN [OPTION...]: searches one piece of a genome. TABLE is
# what cut_genome.py has written. The report gets its name when vorlan has ended well; until then
# its name is that of this process, since a job that the scheduler has given up may still be writing.
set -euo pipefail
table=$1 piece=$2 text=$3 report=$4
shift 4

read -r offset bytes < <(awk -F '\t' -v piece="$piece" '$1 == piece { print $2, $3 }' "$table")
unfinished="$report.unfinished.$HOSTNAME.$$"
trap 'rm -f "$unfinished"' EXIT
trap 'exit 143' TERM
trap 'exit 130' INT
status=0
dd if="$text" iflag=skip_bytes,count_bytes,fullblock bs=1M skip="$offset" count="$bytes" status=none |
  "$@" -- /dev/stdin "$unfinished" || status=$?
if [ "$status" -ne 0 ]; then
  echo "vorlan-workflow: $text, piece $piece: vorlan ended with status $status." >&2
  exit "$status"
fi
# The same bytes were well-formed when the genome was cut; fewer of them end a run as well.
if [ "$(stat -c %s "$text")" -lt $((offset + bytes)) ]; then
  echo "vorlan-workflow: $text has become shorter since it was cut." >&2
  exit 1
fi
mv -f "$unfinished" "$report"
