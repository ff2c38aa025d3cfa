# SPDX-License-Identifier: MIT
# Sourced by scripts that ask the native command, after scripts/packages.sh: build_native TARGET... brings the targets up to
# date and sets native to the folder of the build. That is build/release if scripts/test has made it, and build/demo
# otherwise. Targets that the build does not have are left out.

build_native() {
    preset=demo
    [ ! -f build/release/build.ninja ] || preset=release
    native=build/$preset
    # shellcheck disable=SC2086,SC2154 # one word per package; scripts/packages.sh has the lists
    [ "$preset" = release ] || need_packages $packages_to_build $packages_of_command
    cmake --preset "$preset"
    targets=""
    for target in "$@"; do
        if ninja -C "$native" -t query "$target" >/dev/null 2>&1; then targets="$targets $target"; fi
    done
    # shellcheck disable=SC2086 # one word per target
    cmake --build --preset "$preset" --target $targets
}
