# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# Sourced by the other scripts: make_source_archive FOLDER packs the source tree into FOLDER/ostrel_VERSION.orig.tar.gz
# and prints the name of that file. The same commit gives the same bytes: the files are sorted and have the time of the
# commit. Changes that are not committed are packed, too. Without git the folder is packed as it is.

make_source_archive() {
    version=$(cat VERSION)
    archive=$1/ostrel_$version.orig.tar.gz
    mkdir -p "$1"
    if git rev-parse --show-cdup 2>/dev/null | grep -qx ''; then
        commit=$(git -c user.name=- -c user.email=- stash create)
        git archive --format=tar --prefix="ostrel-$version/" "${commit:-HEAD}"
    else
        tar --create --sort=name --owner=0 --group=0 --numeric-owner --exclude=./build --exclude=__pycache__ \
            --mtime="@$(dpkg-parsechangelog -S Timestamp)" --transform="s,^\.,ostrel-$version," .
    fi | gzip -9n > "$archive"
    echo "$archive"
}
