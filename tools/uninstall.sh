#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# uninstall.sh MANIFEST: removes the files that MANIFEST lists, below DESTDIR if that is set, the
# folders of documents and examples when they are empty then, and MANIFEST.
set -eu
manifest=$1
if [ ! -f "$manifest" ]; then
  echo "uninstall.sh: there is no $manifest: nothing was installed from here" >&2
  exit 1
fi

# The last line has no line end.
{ cat "$manifest"; echo; } | while IFS= read -r file; do
  [ -n "$file" ] || continue
  rm -f -- "${DESTDIR:-}$file"
  folder=${DESTDIR:-}${file%/*}
  while [ "${folder#*/doc/vorlan}" != "$folder" ] && [ -d "$folder" ]; do
    rmdir --ignore-fail-on-non-empty -- "$folder"
    folder=${folder%/*}
  done
done
rm -f -- "$manifest"
