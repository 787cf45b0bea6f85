#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# run_fuzz.sh BUILD_DIR SECONDS: lets libFuzzer search with the report reader of vorlan-tools for this many
# seconds, beginning with the committed corpus. New inputs go to BUILD_DIR/fuzzing/new, an input that shows a
# fault to BUILD_DIR/fuzzing/faults; then the status is not 0.
set -eu
here=$(dirname "$0")
build=$1
mkdir -p "$build/fuzzing/new" "$build/fuzzing/faults"
"$build/vorlan-tools/tests/fuzz/fuzz_report_reader" -max_total_time="$2" -max_len=4096 -len_control=0 -timeout=60 \
  -rss_limit_mb=2048 -print_final_stats=1 -dict="$here/report.dict" -artifact_prefix="$build/fuzzing/faults/" \
  "$build/fuzzing/new" "$here/corpus/fuzz_report_reader"
