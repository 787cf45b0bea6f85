#!/bin/bash
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# search_on_slurm.sh JOBS GENOME REPORT [OPTION...]: searches one genome with an array of JOBS jobs and merges
# their reports to that of a single run. GENOME is FASTA that is not compressed, OPTION goes to vorlan.
# Each job reads the whole file and searches its share of the sequences, so this is for some ten jobs;
# workflow/ serves more, and many genomes. Waits for the end.
set -euo pipefail
jobs=$1 genome=$2 report=$3
shift 3

parts=$report.parts
mkdir -p "$parts"
rm -f "$parts"/*
sequences=$(tr '\r' '\n' <"$genome" | grep -c '^>')
[ "$jobs" -le "$sequences" ] || jobs=$sequences

# What a job of the array does; the last one has no --lastSeq. A part gets its name when it is whole.
cat >"$parts/job.sh" <<'JOB'
#!/bin/bash
set -euo pipefail
jobs=$1 sequences=$2 genome=$3 parts=$4
shift 4
number=$SLURM_ARRAY_TASK_ID
range=(--firstSeq $(((number - 1) * sequences / jobs + 1)))
[ "$number" -eq "$jobs" ] || range+=(--lastSeq $((number * sequences / jobs)))
vorlan "$@" "${range[@]}" -- "$genome" "$parts/$number.unfinished" 2>"$parts/$number.log"
mv "$parts/$number.unfinished" "$parts/$number.report"
JOB

if ! sbatch --wait --requeue --array="1-$jobs" --mem=2G --time=60 --output=/dev/null \
  "$parts/job.sh" "$jobs" "$sequences" "$genome" "$parts" "$@" >&2; then
  echo "The search of $genome failed; the jobs' messages are in $parts/*.log." >&2
  exit 1
fi
mapfile -t reports < <(seq "$jobs" | sed "s:.*:$parts/&.report:")
srun --mem=1G --time=60 vorlan-tools merge -o "$report" "${reports[@]}"
rm -r "$parts"
