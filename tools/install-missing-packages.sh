#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# install-missing-packages.sh GROUP...: installs the Debian packages that the groups need and that
# are not there yet, and says so first: their names and the commands. When all is there, nothing is
# said and no package tool is called, so it works offline.
set -eu

# A line per package: what shows that it is there (a command, or a file), and its name.
packages_of() {
  case "$1" in
    build) echo 'g++ g++
cmake cmake
ninja ninja-build
/usr/include/tclap/CmdLine.h libtclap-dev' ;;
    test) echo '/usr/include/gtest/gtest.h libgtest-dev
/usr/include/gmock/gmock.h libgmock-dev
python3 python3
readelf binutils
/usr/share/i18n/locales/de_DE locales' ;;
    documents) echo 'groff groff-base
man man-db
mandoc mandoc
/usr/share/bash-completion/bash_completion bash-completion
zsh zsh' ;;
    deb) echo 'dpkg-buildpackage dpkg-dev
/usr/share/build-essential/list build-essential
fakeroot fakeroot
dh debhelper
lintian lintian
python3 python3' ;;
    cookbook) echo 'bedtools bedtools
samtools samtools
tabix tabix
gt genometools
seqkit seqkit
parallel parallel
primer3_core primer3
python3 python3' ;;
    tools) echo 'pkg-config pkg-config
/usr/share/javascript/chart.js/chart.min.js libjs-chart.js
/usr/include/htslib/bgzf.h libhts-dev
/usr/include/CLI/CLI.hpp libcli11-dev
/usr/include/nlohmann/json.hpp nlohmann-json3-dev' ;;
    test-tools) echo '/usr/include/gtest/gtest.h libgtest-dev
python3 python3
/usr/lib/python3/dist-packages/pysam python3-pysam
bcftools bcftools
bedtools bedtools
samtools samtools
tabix tabix
gt genometools
jq jq
PicardCommandLine picard-tools
groff groff-base
zsh zsh' ;;
    slurm) echo '/usr/sbin/slurmctld slurmctld
/usr/sbin/slurmd slurmd
sbatch slurm-client
/usr/sbin/munged munge
snakemake snakemake
python3 python3' ;;
    test-browser) echo '/usr/include/gtest/gtest.h libgtest-dev
python3 python3
chromium chromium
chromedriver chromium-driver
/usr/lib/python3/dist-packages/selenium python3-selenium
/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf fonts-dejavu-core
multiqc multiqc' ;;
    figures) echo '/usr/lib/python3/dist-packages/matplotlib python3-matplotlib' ;;
    test-slow) echo 'valgrind valgrind' ;;
    coverage) echo 'gcovr gcovr' ;;
    clang) echo 'clang++ clang
/usr/share/doc/libclang-rt-dev libclang-rt-dev' ;;
    bench) echo '/usr/include/benchmark/benchmark.h libbenchmark-dev
python3 python3' ;;
    lint) echo 'clang-format clang-format
clang-tidy clang-tidy' ;;
    *) echo "install-missing-packages.sh: unknown group: $1" >&2; exit 2 ;;
  esac
}

is_there() {
  case "$1" in
    /*) [ -e "$1" ] ;;
    *) command -v "$1" >/dev/null 2>&1 ;;
  esac
}

missing=
for group in "$@"; do
  lines=$(packages_of "$group")
  while read -r sign package; do
    is_there "$sign" || missing="$missing $package"
  done <<END
$lines
END
done
[ -n "$missing" ] || exit 0

as_root=
[ "$(id -u)" -eq 0 ] || as_root='sudo '
update="${as_root}apt-get update -qq"
install="${as_root}env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends$missing"
printf 'Debian packages are missing:%s\nInstalling them with\n  %s\n  %s\n' \
  "$missing" "$update" "$install" >&2
# shellcheck disable=SC2086 # one word per package
{ $update; $install; } >&2
