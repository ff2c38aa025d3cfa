#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every argument of a public function must have its unit in the comment block above the function.

    check_header_units.py HEADER              complains about each argument that has none
    check_header_units.py --self-test HEADER  damages copies of the header and requires a complaint about each

An argument is documented by a line "name  [unit] text". The length of a text, whose name comes from that of the text,
needs no line; the length of an array's elements does.
"""
import re
import sys

FUNCTION = re.compile(
    r"/\*(?P<comment>(?:(?!\*/).)*)\*/\s*\n"
    r"(?P<result>\w[\w \*]*?)\b(?P<name>\w+)\((?P<arguments>[^()]*)\);", re.S)
DECLARATION = re.compile(r"^\w[\w \*]*?\b(\w+)\([^()]*\);", re.M | re.S)
DOCUMENTED = re.compile(r"^ \* (\w+) +\[([^\]\n]*)\] +\S", re.M)


# An argument that is a function, which stands for its name here.
CALLED = re.compile(r"\bvoid \(\*(\w+)\)\([^()]*\)")


def arguments(text):
    """(name, whether it is an input text or the error text) of each argument."""
    for argument in text.split(","):
        argument = argument.strip()
        if argument not in ("", "void"):
            yield re.sub(r"\[.*", "", argument).split()[-1].lstrip("*"), re.match(r"const char \*|char \*errmsg", argument)


def complaints(header):
    found = []
    described = set()
    for match in FUNCTION.finditer(header):
        described.add(match["name"])
        units = {name: unit.strip() for name, unit in DOCUMENTED.findall(match["comment"])}
        names = list(arguments(match["arguments"]))
        texts = {name for name, is_text in names if is_text and units.get(name)}
        for name, _ in names:
            if name.endswith("_len") and name[:-4] in texts and name not in units:
                continue
            if not units.get(name):
                found.append(f"{match['name']}: {name} has no unit")
        for name in units.keys() - {name for name, _ in names}:
            found.append(f"{match['name']}: {name} is described and no argument")
    for name in DECLARATION.findall(header):
        if name not in described:
            found.append(f"{name} has no comment block")
    return found, described


def self_test(header):
    """Yields the damages that go unnoticed."""
    damages = []
    for match in FUNCTION.finditer(header):
        for line in DOCUMENTED.finditer(match["comment"]):
            start = match.start("comment")
            name, whole = line[1], header[start + line.start():start + line.end()]
            for damaged in (whole.replace(f"[{line[2]}]", "", 1), whole.replace(f"[{line[2]}]", "[ ]", 1),
                            whole.replace(name, name + "x", 1)):
                damages.append((f"{match['name']}: {name}",
                                header[:start + line.start()] + damaged + header[start + line.end():]))
        end = match.end("arguments")
        kept = match["arguments"].replace("void", "")
        extra = (kept + ", " if kept else "") + "double extra"
        damages.append((f"{match['name']}: extra", header[:match.start("arguments")] + extra + header[end:]))
        damages.append((match["name"], header[:match.start()] + header[match.end("comment") + 2:]))
    for expected, damaged in damages:
        if not any(complaint.startswith(expected) for complaint in complaints(damaged)[0]):
            yield expected
    if len(damages) < 40:
        yield f"only {len(damages)} damages to test with"


def main():
    with open(sys.argv[-1], encoding="utf-8") as file:
        header = CALLED.sub(r"void *\1", file.read())
    found, functions = complaints(header)
    if len(functions) < 10:
        found.append(f"only {len(functions)} functions found")
    if sys.argv[1] == "--self-test":
        found += [f"unnoticed: {damage}" for damage in self_test(header)]
    print("\n".join(found) or f"{len(functions)} functions")
    return 1 if found else 0


sys.exit(main())
