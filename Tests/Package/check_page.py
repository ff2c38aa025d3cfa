#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The programs and commands of a page must run as they stand there, and print what stands there.

    check_page.py ROOT TREE LIBRARY_FOLDER PAGE...
    check_page.py ROOT TREE LIBRARY_FOLDER PAGE... --update    writes what the commands print into the pages

A block whose first line is a comment that begins with a file's name is that file. A block of shell lines has commands
behind "$ " and below each the lines that it prints; the commands of a page run one after the other in one folder, with
the installed tree TREE and with the folder Examples of the sources. A picture of Documentation/Pictures must be what a
command has written under its name.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT, TREE, LIBRARIES = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve(), sys.argv[3]
sys.path.insert(0, str(ROOT / "scripts"))
from slim_svg import slim_cairo  # noqa: E402

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.M | re.S)
FILE = re.compile(r"(?:/\*|//|!|#) ([\w-]+\.\w+)\b")
PICTURE = re.compile(r"\((?:Documentation/)?Pictures/([^)]+)\)")


def run(command, folder, environment):
    done = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        raise SystemExit(f"{command}: ended with {done.returncode}\n{done.stdout}")
    return "".join(f"{line.rstrip()}\n" for line in done.stdout.splitlines())


def made(page):
    """The page with what its commands print now, its number of commands, and its pictures."""
    commands = 0
    with tempfile.TemporaryDirectory() as name:
        # The page's commands do not quote the names of folders.
        folder, place = pathlib.Path(name) / "here", pathlib.Path(name) / "place"
        folder.mkdir()
        place.symlink_to(TREE)
        (folder / "Examples").symlink_to(ROOT / "Examples")
        environment = os.environ | {"PKG_CONFIG_PATH": str(place / LIBRARIES / "pkgconfig"), "COLUMNS": "120",
                                    "LD_LIBRARY_PATH": str(place / LIBRARIES), "PATH": f"{place / 'bin'}:{os.environ['PATH']}"}
        environment.pop("OSTREL_FLUIDS", None)

        def block(match):
            nonlocal commands
            language, text = match[1], match[2]
            file = FILE.match(text)
            if file:
                (folder / file[1]).write_text(text, encoding="utf-8")
            if file or language not in ("sh", "console"):
                return match[0]
            lines = re.findall(r"^\$ (.+)$", text, re.M)
            commands += len(lines)
            return f"```{language}\n" + "".join(f"$ {line}\n{run(line, folder, environment)}" for line in lines) + "```"

        text = BLOCK.sub(block, page)
        pictures = {name: slim_cairo((folder / name).read_text(encoding="utf-8")) for name in PICTURE.findall(page)}
    return text, commands, pictures


def main():
    complaints, commands = [], 0
    for name in sys.argv[4:]:
        if name == "--update":
            continue
        file = ROOT / name
        page = file.read_text(encoding="utf-8")
        now, count, pictures = made(page)
        commands += count
        for picture, text in pictures.items():
            path = ROOT / "Documentation/Pictures" / picture
            if "--update" in sys.argv:
                path.parent.mkdir(exist_ok=True)
                path.write_text(text, encoding="utf-8")
            elif not path.exists() or path.read_text(encoding="utf-8") != text:
                complaints.append(f"{path.name} is not what the command of the page draws")
        if "--update" in sys.argv:
            file.write_text(now, encoding="utf-8")
        old_lines, new_lines = page.splitlines(), now.splitlines()
        if old_lines != new_lines and "--update" not in sys.argv:
            complaints += [f"{old}\n  is now\n{new}" for old, new in zip(old_lines, new_lines) if old != new][:20]
            complaints.append(f"{name}: {len(old_lines)} lines, now {len(new_lines)}")
        if count == 0:
            complaints.append(f"{name} has no command")
    print(*complaints or [f"{commands} commands"], sep="\n")
    return 1 if complaints else 0


sys.exit(main())
