#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# coverage.sh BUILD_DIR: what the tests that were run in BUILD_DIR have reached, for each folder of the
# product; every line is shown in BUILD_DIR/html/index.html. Branches that only an exception of a
# callee takes, and those that the compiler adds, are left out.
set -eu
cd "$(dirname "$0")/.."
build=$1
trace=$build/coverage.json
mkdir -p "$build/html"

gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches -j 2 \
  --json "$trace" "$build"
gcovr --root . --add-tracefile "$trace" --exclude-throw-branches --html-details "$build/html/index.html"

# summary FILTER: the figures of the files that match. gcovr also wants a file to write to, which it
# removes first: never a device.
summary() {
  gcovr --root . --add-tracefile "$trace" --filter "$1" --exclude-throw-branches --print-summary \
    --output "$build/summary.txt" | sed -n 's/^\(lines\|branches\): \(.*\)/  \1 \2/p' | tr -d '\n'
  echo
}

for folder in src/*/; do
  printf '%-16s' "$folder"
  summary "$folder"
done
printf '%-16s' all
summary src/
gcovr --root . --add-tracefile "$trace" --exclude-throw-branches --txt "$build/lines.txt"
gcovr --root . --add-tracefile "$trace" --exclude-throw-branches --branches --txt "$build/branches.txt"
echo "Lines and branches that were not reached: $build/lines.txt, $build/branches.txt"
