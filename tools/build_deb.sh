#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# build_deb.sh FOLDER: builds the Debian package, source and binary, from a copy of the sources as they are now, and
# leaves it in FOLDER, which is emptied before. A package of which lintian has anything to say is a failure.
set -eu
cd "$(dirname "$0")/.."
folder=$1
rm -rf "$folder"
mkdir -p "$folder/vorlan"
tar --create --exclude=./build --exclude=./.git --exclude=__pycache__ . | tar --extract --directory="$folder/vorlan"
(cd "$folder/vorlan" && dpkg-buildpackage --no-sign)
rm -r "$folder/vorlan"
lintian --allow-root --display-level '>=pedantic' --fail-on error,warning,info,pedantic "$folder"/*.changes
