#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# run_tests.sh [GENOMES]: the tests of the workflow, with what is built in build/; also over the FASTA files
# of the folder GENOMES. Whatever Slurm they start ends with them.
set -eu
cd "$(dirname "$0")"
root=$(cd ../.. && pwd)
[ -z "${1:-}" ] || GENOMES=$(cd "$OLDPWD" && cd "$1" && pwd)
export GENOMES="${GENOMES:-}" PYTHONDONTWRITEBYTECODE=1 \
  VORLAN_BINARY="$root/build/release/vorlan" VORLAN_TOOLS_BINARY="$root/build/tools/bin/vorlan-tools"

for module in cut_genome table readme slurm failures; do
  echo "test_$module"
  /usr/bin/python3 -m unittest "test_$module"
done
