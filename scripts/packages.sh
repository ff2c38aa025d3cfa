# SPDX-License-Identifier: MIT
# Sourced by the other scripts: need_packages NAME... makes sure that these Debian packages are installed.
# As root it installs the missing ones; otherwise it says which they are and ends the script.

need_packages() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing="$missing $package"
    done
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "These packages are missing; please install them as root and try again:" >&2
        echo "    apt-get install --no-install-recommends$missing" >&2
        exit 1
    fi
    echo "Installing$missing"
    export DEBIAN_FRONTEND=noninteractive
    apt-get -qq update
    # shellcheck disable=SC2086 # one word per package
    apt-get -qq install --yes --no-install-recommends $missing </dev/null >/dev/null
}

packages_to_build="cmake ninja-build gcc g++ libc6-dev libsqlite3-dev"
packages_of_command="libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libcairo2-dev pkg-config fonts-dejavu-core"
packages_to_bind_python="pybind11-dev python3-dev python3-numpy"
packages_of_python="$packages_to_bind_python python3-pytest python3-hypothesis mypy python3-pandas python3-pint python3-dask python3-distributed python3-matplotlib python3-setuptools python3-wheel python3-pip python3-venv"
packages_to_test="$packages_to_build $packages_of_command gfortran libgtest-dev libgmock-dev libbenchmark-dev openmpi-bin libopenmpi-dev python3 valgrind groff-base abigail-tools $packages_of_python"
packages_of_site="python3 python3-sphinx python3-myst-parser furo node-normalize.css python3-sphinx-copybutton libjs-katex nodejs"
# clang only recommends the runtime of sanitizers and libFuzzer, so it is named here.
packages_to_sanitize="clang libclang-rt-dev"
packages_of_browser="emscripten cmake ninja-build libtomlplusplus-dev nlohmann-json3-dev"
packages_to_test_browser="chromium"
packages_to_pack="$packages_to_build $packages_of_command $packages_to_bind_python gfortran dpkg-dev debhelper dh-python lintian"
