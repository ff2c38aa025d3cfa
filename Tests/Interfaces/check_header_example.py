#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The example in the head of a public header must compile without warnings, as C99 or C++20, and print what its comment
says.

    check_header_example.py HEADER LIBRARY FLUIDS FAILURE COMPILER [COMPILER_OPTION...]

The example is the indented block from the first #include to the closing brace of main. Its comment "// prints TEXT" has
the expected output. Without fluids, the program must end with status 1 and print the library's error text, which begins
with FAILURE.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile


def example(header):
    found = re.search(r"^(?: \*|//)     #include.*?^(?: \*|//)     \}$", header.read_text(encoding="utf-8"), re.M | re.S)
    if not found:
        sys.exit(f"{header} has no example")
    return re.sub(r"^(?: \*|//)(     )?", "", found[0], flags=re.M) + "\n"


def run(program, fluids):
    done = subprocess.run([program], env=os.environ | {"OSTREL_FLUIDS": str(fluids)}, capture_output=True, text=True)
    return done.returncode, done.stdout.strip()


def main():
    header, library, fluids = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
    text = example(header)
    cpp = header.suffix == ".hpp"
    expected = re.findall(r"// prints (.+)$", text, re.M)
    with tempfile.TemporaryDirectory() as folder:
        source, program = pathlib.Path(folder) / f"example{'.cpp' if cpp else '.c'}", pathlib.Path(folder) / "example"
        source.write_text(text, encoding="utf-8")
        subprocess.run([*sys.argv[5:], "-std=c++20" if cpp else "-std=c99", "-pedantic", "-Wall", "-Wextra",
                        "-Wconversion", "-Werror", f"-I{header.parent}", source, "-o", program, library, f"-Wl,-rpath,{library.parent}"], check=True)
        answer, failure = run(program, fluids), run(program, folder)
    print(*answer, *failure, sep="\n")
    return 0 if ([answer], failure[0], failure[1].startswith(sys.argv[4])) == (
        [(0, output) for output in expected], 1, True) else 1


sys.exit(main())
