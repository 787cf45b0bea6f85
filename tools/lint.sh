#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# lint.sh BUILD_DIR: checks which folder of the product includes which and the format of all C++
# files, and runs clang-tidy over the product, with the compile commands of BUILD_DIR.
# lint.sh BUILD_DIR companion: only runs clang-tidy over the companion program.
set -eu
build=$1
cd "$(dirname "$0")/.."

# clang does not know the options that g++ needs for wide copies.
commands=$(mktemp -d)
trap 'rm -rf "$commands"' EXIT
sed -e 's/ -mmove-max=[0-9]*//g' -e 's/ -mstore-max=[0-9]*//g' "$build/compile_commands.json" \
  >"$commands/compile_commands.json"
tidy() {
  xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p "$commands" "$@"
}
if [ "${2:-}" = companion ]; then
  # Without the analyzer, and without the command line, whose library alone takes longer than all the rest.
  git ls-files -- 'vorlan-tools/src/*.cpp' ':!vorlan-tools/src/cli' | tidy --checks='-clang-analyzer-*'
else
  python3 tools/check_layers.py src
  git ls-files -- '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
  git ls-files -- 'src/*.cpp' | tidy
fi
echo "lint: clean"
