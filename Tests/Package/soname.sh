#!/bin/sh
# SPDX-License-Identifier: MIT
# Programs must know the library by the first number of its interface version.
#   soname.sh READELF LIBRARY_FOLDER PROGRAM
set -eu
readelf=$1 libraries=$2 program=$3

cd "$libraries"
"$readelf" -d libostrel.so.1 | grep -F 'Library soname: [libostrel.so.1]'
"$readelf" -d "$program" | grep -F 'Shared library: [libostrel.so.1]'
[ "$(readlink libostrel.so)" = libostrel.so.1 ]
[ "$(readlink libostrel.so.1)" = libostrel.so.1.0.1 ]
