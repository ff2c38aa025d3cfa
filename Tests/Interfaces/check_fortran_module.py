#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fortran's module must have each function of the C header with the same number of arguments, each enumerator with the
same number, and a unit at every argument of its own procedures.

    check_fortran_module.py MODULE C_HEADER
"""
import re
import sys

PROCEDURE = re.compile(r"^ *(?:pure |impure |elemental |logical )*(?:subroutine|function) (\w+)\((.*?)\)(.*?)^ *end (?:subroutine|function) \1$",
                       re.M | re.S)
C_FUNCTION = re.compile(r"^\w[\w \*]*?\b(\w+)\(([^()]*)\);", re.M | re.S)
C_CALLED = re.compile(r"\bvoid \(\*(\w+)\)\([^()]*\)") # an argument that is a function, which stands for its name here
ENUMERATOR = re.compile(r"^ +(OSTREL_\w+) = (\d+)\b", re.M)


def words(arguments):
    return [] if arguments.strip() in ("", "void") else arguments.split(",")


def main():
    module, header = (open(path, encoding="utf-8").read() for path in sys.argv[1:])
    header = C_CALLED.sub(r"void *\1", header)
    functions = {name: words(arguments) for name, arguments in C_FUNCTION.findall(re.sub(r"/\*.*?\*/", "", header, flags=re.S))}
    complaints, bound, described = [], {}, 0
    for name, arguments, rest in PROCEDURE.findall(module):
        names = [word.strip(" &\n") for word in words(arguments)]
        binding = re.search(r"bind\(c, name='(\w+)'\)", rest)
        if binding:
            bound[binding[1]] = names
        if not name.startswith("c_"):
            for argument in names:
                described += 1
                if not re.search(rf":: {argument}\b(\(.*\))? *!! \[[^\]]+\] \S", rest):
                    complaints.append(f"{name}: {argument} has no unit")
    for name, arguments in functions.items():
        if name not in bound or len(bound[name]) != len(arguments):
            complaints.append(f"{name}: {bound.get(name)} in the module, {len(arguments)} arguments in C")
    for name in re.findall(r"name='(\w+)'", module):
        if name not in functions:
            complaints.append(f"{name} is no function of the header")
    numbers = dict(re.findall(r":: (OSTREL_\w+) = (\d+)$", module, re.M))
    for name, number in ENUMERATOR.findall(header):
        if numbers.get(name) != number:
            complaints.append(f"{name}: {numbers.get(name)} in the module, {number} in C")
    if len(functions) < 10 or described < 40:
        complaints.append(f"only {len(functions)} functions, {described} arguments found")
    print(f"{len(functions)} functions, {described} arguments", *complaints, sep="\n")
    return 1 if complaints else 0


sys.exit(main())
