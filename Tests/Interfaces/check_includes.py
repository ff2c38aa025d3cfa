#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sources include only what stands further inside.

    check_includes.py ROOT          walks the #include lines of the library, its host, the command and the interfaces
    check_includes.py --self-test   shows that forbidden ones are found
"""
import pathlib
import re
import sys

# Each room, the folders that it may include besides itself, by the beginning of the path. The first that fits counts.
ROOMS = {
    "Source/visibility.h": (),
    "Source/Records/": ("Source/visibility.h",),
    "Source/Algebra/": ("Source/visibility.h", "Source/Records/"),
    "Source/Equations/": ("Source/visibility.h", "Source/Records/", "Source/Algebra/"),
    "Source/Requests/": ("Source/visibility.h", "Source/Records/", "Source/Algebra/", "Source/Equations/"),
    "Source/Thermodynamics/": ("Source/visibility.h", "Source/Records/", "Source/Algebra/", "Source/Equations/"),
    "Source/Fluid/": ("Source/visibility.h", "Source/floating_point.h", "Source/host.h", "Source/Records/",
                      "Source/Algebra/", "Source/Equations/", "Source/Requests/", "Host/", "Include/"),
    "Source/": ("Source/", "Include/"),
    "Host/": ("Source/host.h", "Source/Records/", "Source/visibility.h", "Include/"),
    "Studies/": ("Include/",),
    "CommandLine/": ("Source/", "Host/", "Include/", "Studies/"),
    "Interfaces/Python/": ("Include/", "Studies/"),
    "Interfaces/Browser/": ("Include/", "Studies/", "CommandLine/"),
}
# The outer files of Source/ stay outside of the rooms, and the library knows nothing of the two around it.
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)


def room_of(path):
    return next((room for room in ROOMS if path.startswith(room)), None)


def allowed(path, included):
    room = room_of(path)
    if room == "Source/":
        return included.startswith(ROOMS[room])
    return room_of(included) == room or included.startswith(ROOMS[room])


def complaints(files):
    """files: {path: text}; the paths are relative to the root."""
    for path, text in sorted(files.items()):
        for name in INCLUDE.findall(text):
            places = [str(pathlib.PurePosixPath(folder, name)) for folder in
                      (pathlib.PurePosixPath(path).parent, ".", "Source", "Include")]
            included = next((place for place in places if place in files), None)
            if included is None:
                yield f"{path}: there is no {name}"
            elif not allowed(path, included):
                yield f"{path} includes {included}"


def files_of(root):
    folders = ("Source", "Include", "Host", "Studies", "CommandLine", "Interfaces/Python", "Interfaces/Browser/core",
               "Interfaces/Browser/standard")
    return {path.relative_to(root).as_posix(): path.read_text(encoding="utf-8")
            for folder in folders for end in ("h", "hpp", "cpp") for path in (root / folder).rglob(f"*.{end}")}


def self_test():
    good = {"Source/visibility.h": "", "Source/Equations/model.h": '#include "visibility.h"\n',
            "Source/Thermodynamics/module.h": '#include "Equations/model.h"\n',
            "Source/frame.cpp": '#include "Thermodynamics/module.h"\n#include "host.h"\n#include <vector>\n',
            "Source/host.h": '#include "ostrel.h"\n', "Include/ostrel.h": "",
            "Host/default.cpp": '#include "host.h"\n', "Host/index.h": "",
            "Source/Fluid/handle.cpp": '#include "Equations/model.h"\n#include "Host/index.h"\n#include "host.h"\n',
            "CommandLine/main.cpp": '#include "Equations/model.h"\n', "Interfaces/Python/core.cpp": ""}
    assert list(complaints(good)) == [], list(complaints(good))
    for path, line in (("Source/Equations/model.h", "Thermodynamics/module.h"), ("Source/Equations/model.h", "host.h"),
                       ("Source/Thermodynamics/module.h", "host.h"),
                       ("Source/Fluid/handle.cpp", "Thermodynamics/module.h"), ("Source/Fluid/handle.cpp", "frame.cpp"),
                       ("Source/Equations/model.h", "Fluid/handle.cpp"), ("Host/default.cpp", "Fluid/handle.cpp"),
                       ("Source/frame.cpp", "CommandLine/main.cpp"),
                       ("Host/default.cpp", "Equations/model.h"), ("Source/host.h", "Host/default.cpp"),
                       ("Interfaces/Python/core.cpp", "host.h"), ("CommandLine/main.cpp", "Interfaces/Python/core.cpp"),
                       ("Source/frame.cpp", "missing.h")):
        bad = {**good, path: good[path] + f'#include "{line}"\n'}
        assert len(list(complaints(bad))) == 1, (path, line)


def main():
    if sys.argv[1:] == ["--self-test"]:
        self_test()
        return 0
    files = files_of(pathlib.Path(sys.argv[1]))
    found = list(complaints(files))
    print(f"{len(files)} files", *found, sep="\n")
    return 1 if found or len(files) < 60 else 0


sys.exit(main())
