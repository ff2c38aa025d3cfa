#!/bin/sh
# SPDX-License-Identifier: MIT
# Installs the library and moves the tree to the place where the other tests look for it. No file in the tree may name a
# place.
#   install.sh CMAKE BUILD_FOLDER SOURCE_FOLDER TREE
set -eu
cmake=$1 build=$2 source=$3 tree=$4

first="$tree, first"
rm -rf "$tree" "$first"
"$cmake" --install "$build" --prefix "$first" > "$tree.log" 2>&1 || { cat "$tree.log"; exit 1; }
for place in "$first" "$build" "$source"; do
    if grep -rIF "$place" "$first"; then
        echo "names the place $place"
        exit 1
    fi
done
if grep -rE '^namespace (host|console)\b' "$first/include"; then
    echo "declares what the library does not export"
    exit 1
fi
mv "$first" "$tree"
