#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Lists what of other projects is in the library, the command and the Python module: the shared libraries that they load,
and the Debian packages whose headers were compiled into them. Documentation/Inside.md must name the same, with licences.

    inside.py BUILD_FOLDER DOCUMENT FILE...     a build folder of Ninja; FILE: the library, the command, the Python module
"""
import collections
import pathlib
import re
import subprocess
import sys

# The compiler's and the C library's own parts. They belong to every program of the system.
SYSTEM = re.compile(r"(libc6|lib(x?32|64)?(gcc|stdc\+\+)|gcc|g\+\+|cpp|linux-libc-dev|libpython3|python3)\S*")
# What is compiled for the three files, and not for tests.
OBJECTS = re.compile(r"(CMakeFiles/ostrel\.dir|Studies|CommandLine|Interfaces/Python)/")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def owners(paths):
    """The Debian packages that have these files, without their architecture."""
    listing = subprocess.run(["dpkg", "-S", *sorted(paths)], check=False, capture_output=True, text=True).stdout
    return {name.split(":")[0] for line in listing.splitlines() for name in line.split(": ")[0].split(", ")}


def loaded(files):
    """The packages of the shared libraries that the files name themselves."""
    sonames = {name for file in files for name in re.findall(r"\(NEEDED\).*\[(.+)\]", output("readelf", "-d", file))}
    return {owner for name in sonames if not name.startswith("libostrel.")
            for owner in owners({f"*/{name}"}) if not SYSTEM.fullmatch(owner)}


def compiled(build):
    """The packages of the headers that the compiler has read, but for those of the shared libraries."""
    headers = set()
    wanted = False
    for line in output("ninja", "-C", build, "-t", "deps").splitlines():
        if not line.startswith(" "):
            wanted = bool(OBJECTS.match(line))
        elif wanted and line.strip().startswith("/usr/"):
            headers.add(line.strip())
    return {owner for owner in owners(headers) if not SYSTEM.fullmatch(owner)}


def licences(package):
    """What the package's copyright file says of all its files, or the short names that it has."""
    text = pathlib.Path(f"/usr/share/doc/{package}/copyright").read_text(encoding="utf-8")
    all_files = re.search(r"^Files: +\*\n(?:.+\n)*?License: *(.+)", text, re.M)
    return all_files[1].strip() if all_files else "see its copyright file"


def main():
    build, document, *files = sys.argv[1:]
    rows = dict(re.findall(r"^\| `([^`]+)` \|.*\| (loaded|compiled) \|", pathlib.Path(document).read_text(encoding="utf-8"), re.M))
    found = collections.defaultdict(list)
    libraries = loaded(files)
    for package in libraries:
        found["loaded"].append(package)
    for package in compiled(build):
        # The headers of a library that is loaded are in the package of the same name for developers.
        if package.removesuffix("-dev") not in libraries | {re.sub(r"-\d+$", "", name) for name in libraries}:
            found["compiled"].append(package)
    problems = 0
    for way, packages in sorted(found.items()):
        for package in sorted(packages):
            print(f"{way:9} {package:24} {licences(package)}")
            if rows.get(package) != way:
                print(f"          Its row is missing in {document}.")
                problems += 1
    for package in sorted(set(rows) - {name for packages in found.values() for name in packages}):
        print(f"{package} stands in {document}, but is not used.")
        problems += 1
    return 1 if problems or len(rows) < 3 else 0


if __name__ == "__main__":
    sys.exit(main())
