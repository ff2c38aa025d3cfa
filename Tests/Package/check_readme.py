#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The programs and commands of the front page must run as they stand there, and print what stands there.

    check_readme.py ROOT TREE LIBRARY_FOLDER [COMMAND]

A program is a block of C or C++ whose first comment begins with its file's name. A block of shell lines has commands
behind "$ " and below each the lines that it prints. The table below "scripts/demo" is the expected output of that
example. COMMAND is the program that the page calls build/release/CommandLine/ostrel; each of its lines must succeed.

    check_readme.py ROOT TREE LIBRARY_FOLDER --update    writes what the commands print into the page
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```(c|cpp|sh)\n(.*?)^```$", re.M | re.S)
DEMO = re.compile(r"^    scripts/demo .*\n\n((?:    .*\n|\n)*?)(?=\n    scripts/test )", re.M)


def run(command, folder, environment):
    done = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, capture_output=True, text=True)
    if done.returncode != 0 or done.stderr:
        raise SystemExit(f"{command}: ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def made(page, tree, library_folder):
    """The page with what its commands print now."""
    with tempfile.TemporaryDirectory() as folder:
        # The page's commands do not quote the names of folders.
        place = pathlib.Path(folder) / "place"
        place.symlink_to(tree)
        libraries = place / library_folder
        environment = os.environ | {"PKG_CONFIG_PATH": str(libraries / "pkgconfig"), "LD_LIBRARY_PATH": str(libraries)}
        environment.pop("OSTREL_FLUIDS", None)

        def block(match):
            language, text = match[1], match[2]
            if language != "sh":
                name = re.match(r"(?:/\*|//) ([\w.]+)", text)[1]
                (pathlib.Path(folder) / name).write_text(text, encoding="utf-8")
                return match[0]
            commands = re.findall(r"^\$ (.+)$", text, re.M)
            return "```sh\n" + "".join(f"$ {line}\n{run(line, folder, environment)}" for line in commands) + "```"

        return BLOCK.sub(block, page)


def main():
    root, tree, library_folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve(), sys.argv[3]
    file = root / "README.md"
    page = file.read_text(encoding="utf-8")
    now = made(page, tree, library_folder)
    if "--update" in sys.argv:
        file.write_text(now, encoding="utf-8")
        return 0
    complaints = [f"{old}\n  is now\n{new}" for old, new in zip(page.splitlines(), now.splitlines()) if old != new]
    demo = re.sub(r"^    ", "", DEMO.search(page)[1], flags=re.M)
    if demo.strip() != (root / "Examples/expected/fluid_tables.txt").read_text(encoding="utf-8").strip():
        complaints.append("the output of scripts/demo is not that of the example")
    lines = re.findall(r"^    build/release/CommandLine/(ostrel .+?)(?:  +#.*)?$", page, re.M)
    for line in lines if len(sys.argv) > 4 else []:
        run(line.replace("ostrel", f"'{sys.argv[4]}'", 1), root, os.environ | {"OSTREL_FLUIDS": str(root / "Fluids")})
    if len(BLOCK.findall(page)) < 4 or len(lines) < 5:
        complaints.append("the page has fewer programs or commands than it had")
    print(*complaints or [f"{len(lines)} commands"], sep="\n")
    return 1 if complaints else 0


sys.exit(main())
