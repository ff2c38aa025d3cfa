#!/bin/sh
# SPDX-License-Identifier: MIT
# The source archive must have every file that git knows, in order, and nothing else; made again it has the same bytes.
#   source_archive.sh SOURCE_FOLDER VERSION
set -eu
source=$1 version=$2
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

cd "$source"
# shellcheck source=scripts/source_archive.sh
. scripts/source_archive.sh
archive=$(make_source_archive "$place/first")
tar -tf "$archive" | grep -v '/$' | LC_ALL=C sort > "$place/packed"
grep -qx "ostrel-$version/Include/ostrel.h" "$place/packed"
if grep -e "^ostrel-$version/build/" -e __pycache__ -e '\.orig\.tar' "$place/packed"; then
    echo "is no source"
    exit 1
fi
if ! git rev-parse --show-cdup 2>/dev/null | grep -qx ''; then
    echo "without git"
    cmp "$archive" "$(make_source_archive "$place/second")"
    exit 0
fi
git ls-files | sed "s,^,ostrel-$version/," | LC_ALL=C sort | diff - "$place/packed"
# Of changes that are not committed git makes another commit each time.
if [ -z "$(git status --porcelain --untracked-files=no)" ]; then
    cmp "$archive" "$(umask 077 && TZ=Pacific/Chatham make_source_archive "$place/second")"
fi
echo "$(wc -l < "$place/packed") files"
