#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# run_fuzz.sh BUILD_DIR SECONDS [TARGET]: lets libFuzzer search with each target of vorlan-tools for this many
# seconds, beginning with the committed corpus. New inputs go to BUILD_DIR/fuzzing/TARGET/new, an input that shows
# a fault to BUILD_DIR/fuzzing/TARGET/faults; then the status is not 0.
set -eu
here=$(dirname "$0")
build=$1
seconds=$2
search() {
  target=$1
  folder=$build/fuzzing/$target
  shift
  mkdir -p "$folder/new" "$folder/faults"
  "$build/vorlan-tools/tests/fuzz/$target" -max_total_time="$seconds" -len_control=0 -timeout=60 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$folder/faults/" "$@" "$folder/new" "$here/corpus/$target"
}
case ${3:-all} in
  fuzz_report_reader | all) search fuzz_report_reader -max_len=4096 -dict="$here/report.dict" ;;
esac
case ${3:-all} in
  fuzz_json_readers | all) search fuzz_json_readers -max_len=16384 -dict="$here/json.dict" ;;
esac
