#!/bin/sh
# SPDX-License-Identifier: MIT
# A program that uses the installed library must find the installed fluids by itself, also when the tree was moved.
#   installed_fluids.sh CMAKE BUILD_FOLDER C_COMPILER PROGRAM_SOURCE LIBRARY_FOLDER FLUID_FOLDER [COMPILER_OPTION...]
set -eu
cmake=$1 build=$2 compiler=$3 source=$4 libraries=$5 fluids=$6
shift 6
unset OSTREL_FLUIDS LD_LIBRARY_PATH

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
tree="$place/first tree"
"$cmake" --install "$build" --prefix "$tree" > "$place/log" || { cat "$place/log"; exit 1; }
mkdir -p "$tree/bin"
"$compiler" "$@" -I"$tree/include" "$source" -o "$tree/bin/program" -L"$tree/$libraries" -lostrel \
    -Wl,-rpath,"\$ORIGIN/../$libraries"

# A fluid that is in this tree alone shows which directory the library reads.
ask() {
    cp "$1/$fluids/toluene.osd" "$1/$fluids/$2.osd"
    "$1/bin/program" "$2" > "$place/answer" || { echo "$2 not found in $1"; cat "$place/answer"; exit 1; }
    grep -q "^$2 .*Tc 591.75 K" "$place/answer" || { cat "$place/answer"; exit 1; }
}
ask "$tree" here
mv "$tree" "$place/second"
ask "$place/second" there

# When its fluids are gone, the library must not answer from the old place of the moved tree.
rm "$place/second/$fluids/there.osd"
if "$place/second/bin/program" there > "$place/answer" 2>&1; then
    echo "a fluid that was removed still answers"
    exit 1
fi

# The library must also find its fluids through a symbolic link to it, which a system directory may have.
mkdir "$place/links"
ln -s "$place/second/$libraries"/libostrel.so* "$place/links"
mkdir "$place/elsewhere"
cp "$place/second/bin/program" "$place/elsewhere"
cp "$place/second/$fluids/toluene.osd" "$place/second/$fluids/linked.osd"
LD_LIBRARY_PATH="$place/links" "$place/elsewhere/program" linked > "$place/answer" || { cat "$place/answer"; exit 1; }
echo "found"
