#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds programs in C, Fortran and C++ that ask pkg-config for everything.
#   pkg_config.sh PKG_CONFIG SOURCE_FOLDER VERSION C_COMPILER FORTRAN_COMPILER CXX_COMPILER [COMPILER_OPTION...]
# PKG_CONFIG_PATH has the folder of ostrel.pc. The programs are built in a new folder, pkg_config.
set -eu
tool=$1 source=$2 version=$3 c=$4 fortran=$5 cxx=$6
shift 6

rm -rf pkg_config
mkdir pkg_config
cd pkg_config
"$tool" --print-errors --exact-version="$version" ostrel
# eval is needed since pkg-config quotes for the shell, for example blanks in the name of the tree.
variable() {
    eval "printf '%s' $("$tool" --variable="$1" ostrel)"
}
# shellcheck disable=SC2034 # used where build evaluates its line
libraries=$(variable libdir)
module=$(variable fortran)
handles=$(variable fortran_handles)
modules=$(variable modules)
[ -f "$(variable fluids)/toluene.osd" ]
build() {
    eval "\"\$@\" $("$tool" --cflags --libs ostrel)" -Wall -Wextra -Werror '-Wl,-rpath,"$libraries"' -lm
}
build "$c" "$@" -std=c99 -pedantic "$source/host.c" -o host_c
build "$fortran" "$@" -std=f2008 "$module" "$source/host.f90" -o host_fortran
build "$fortran" "$@" -std=f2008 "$module" "$handles" "$source/handle.f90" -o handle_fortran
build "$cxx" "$@" -std=c++20 -Wconversion "$source/handle.cpp" -o handle_cpp
find "$modules" -name '*.h' | sed 's/.*/#include "&"/' > all_headers.h
build "$cxx" "$@" -std=c++20 -I. -isystem "$modules" "$source/modules.cpp" -o modules
for program in host_c host_fortran handle_fortran handle_cpp modules; do
    echo "$program"
    "./$program"
done
