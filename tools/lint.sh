#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# lint.sh BUILD_DIR: checks which folder of the product includes which and the format of all C++
# files, and runs clang-tidy over the product and its companion, with the compile commands of BUILD_DIR.
set -eu
build=$1
cd "$(dirname "$0")/.."

python3 tools/check_layers.py src
git ls-files -- '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
# clang does not know the options that g++ needs for wide copies.
commands=$(mktemp -d)
trap 'rm -rf "$commands"' EXIT
sed -e 's/ -mmove-max=[0-9]*//g' -e 's/ -mstore-max=[0-9]*//g' "$build/compile_commands.json" \
  >"$commands/compile_commands.json"
git ls-files -- 'src/*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p "$commands"
# The companion without the analyzer, and without its command line, whose library alone takes longer than all the rest.
git ls-files -- 'vorlan-tools/src/*.cpp' ':!vorlan-tools/src/cli' |
  xargs -P "$(nproc)" -n 4 clang-tidy --quiet --checks='-clang-analyzer-*' -p "$commands"
echo "lint: clean"
