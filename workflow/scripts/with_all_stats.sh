#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# with_all_stats.sh TABLE RESULTS COMMAND [ARGUMENT...]: runs the command with the stats.json of all genomes
# of the table behind its arguments. Thousands of names are too long for the one argument that a shell gets.
set -euo pipefail
table=$1 results=$2
shift 2

cut -f 1 "$table" | sed -e 1d -e "s:.*:$results/&/stats.json:" | xargs -x -s 1000000 "$@"
