#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# run_fuzz.sh BUILD_DIR SECONDS [TARGET...]: lets libFuzzer search with each target (default: all) for
# this many seconds, beginning with the committed corpus. New inputs go to BUILD_DIR/fuzzing/TARGET,
# an input that shows a fault to BUILD_DIR/fuzzing/faults/TARGET. The first fault ends the run with the
# status of libFuzzer, which is not 0.
#
# run_fuzz.sh --keep BUILD_DIR [TARGET...]: adds to the committed corpus the smallest of the new inputs
# that reach code which it does not reach.
set -eu
here=$(dirname "$0")

all_targets='fuzz_fasta_reader fuzz_command_line fuzz_search fuzz_report'

# Long enough for the target, and no longer: long inputs are slow.
longest_input() {
  case "$1" in
    fuzz_fasta_reader) echo 1024 ;;
    fuzz_command_line) echo 128 ;;
    *) echo 200 ;;
  esac
}

fuzz() {
  target=$1
  new=$fuzzing/$target
  faults=$fuzzing/faults/$target
  mkdir -p "$new" "$faults"
  dictionary=$here/dictionaries/$target.dict
  shift
  [ ! -f "$dictionary" ] || set -- -dict="$dictionary"
  "$build/tests/fuzz/$target" -max_total_time="$seconds" -max_len="$(longest_input "$target")" \
    -len_control=0 -timeout=60 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$faults/" "$@" "$new" "$here/corpus/$target"
}

# Only which code was reached counts here, not how often: tens of files instead of hundreds.
keep() {
  target=$1
  "$build/tests/fuzz/$target" -merge=1 -use_counters=0 "$here/corpus/$target" "$fuzzing/$target"
}

command=fuzz
if [ "$1" = --keep ]; then
  command=keep
  shift
fi
build=$1
shift
if [ "$command" = fuzz ]; then
  seconds=$1
  shift
fi
fuzzing=$build/fuzzing
# shellcheck disable=SC2086 # one word per target
[ $# -gt 0 ] || set -- $all_targets
for name in "$@"; do "$command" "$name"; done
