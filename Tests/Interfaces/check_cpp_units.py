#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every argument of the C++ face's functions with a result must have its unit in the comment above the function, as
"name [unit]" or "name, other [unit]", unless the comment refers to another function's arguments.

    check_cpp_units.py HEADER              complains about each argument that has none
    check_cpp_units.py --self-test HEADER  takes one unit after the other out of the header and requires a complaint
"""
import re
import sys

FUNCTION = re.compile(r"(?P<comment>(?:^ *///.*\n)+)(?: *template .*\n)?(?: *requires.*\n)?"
                      r" *(?:static |inline )*result<.*?>\s+(?P<name>try_\w+)\((?P<arguments>[^{;]*?)\) (?:const )?\{", re.M)
UNITS = re.compile(r"((?:\w+, )*\w+) +\[[^\]\s][^\]]*\]")
REFERENCE = re.compile(r"are those of try_\w+")


def arguments(text):
    return [argument.split()[-1].lstrip("*&") for argument in re.sub(r" = (\"\"|0)", "", text).split(",")]


def complaints(header):
    found, functions = [], 0
    for match in FUNCTION.finditer(header):
        functions += 1
        comment = re.sub(r"\s*///", " ", match["comment"])
        documented = {name for names in UNITS.findall(comment) for name in names.split(", ")}
        for name in arguments(match["arguments"]):
            if name not in documented and not REFERENCE.search(comment):
                found.append(f"{match['name']}: {name} has no unit")
    return found, functions


def self_test(header):
    """Yields the units that nobody misses."""
    damages = 0
    for function in FUNCTION.finditer(header):
        if REFERENCE.search(re.sub(r"\s*///", " ", function["comment"])):
            continue
        for unit in UNITS.finditer(function["comment"]):
            if unit[1].split(", ")[0] not in arguments(function["arguments"]):
                continue # the unit of the result
            damages += 1
            at = function.start("comment")
            damaged = header[:at + unit.start()] + unit[1] + header[at + unit.end():]
            if not complaints(damaged)[0]:
                yield f"{function['name']}: {unit[0]}"
    if damages < 25:
        yield f"only {damages} damages to test with"


def main():
    with open(sys.argv[-1], encoding="utf-8") as file:
        header = file.read().replace(" = {}", "")
    found, functions = complaints(header)
    if functions < 16:
        found.append(f"only {functions} functions found")
    if sys.argv[1] == "--self-test":
        found += [f"unnoticed: {damage}" for damage in self_test(header)]
    print("\n".join(found) or f"{functions} functions")
    return 1 if found else 0


sys.exit(main())
