#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Names that do not exist must not compile: the compiler must complain of each line that ends with "// no", and of no
other line of the source.

    check_misspelt_names.py SOURCE COMPILER [COMPILER_OPTION...]
"""
import re
import subprocess
import sys


def main():
    source, *compiler = sys.argv[1:]
    with open(source, encoding="utf-8") as file:
        wanted = {number for number, line in enumerate(file, 1) if line.endswith("// no\n")}
    every_error = ["-ferror-limit=0"] if "clang" in compiler[0] else []
    run = subprocess.run([*compiler, *every_error, "-std=c++20", "-fsyntax-only", source], capture_output=True, text=True)
    lines = run.stderr.splitlines()
    # The compiler names a line as the place of an error or, if that is in the header, as its context; notes name others.
    named = {int(number) for number in re.findall(rf"^{re.escape(source)}:(\d+):(?!\d+: note:)", run.stderr, re.M)}
    complaints = [f"line {number} compiles" for number in sorted(wanted - named)]
    complaints += [f"line {number} does not compile" for number in sorted(named - wanted)]
    if run.returncode == 0 or len(wanted) < 10:
        complaints.append(f"{len(wanted)} wrong lines, the compiler returned {run.returncode}")
    print(f"{len(wanted)} lines", *complaints, *(lines if complaints else []), sep="\n")
    return 1 if complaints else 0


sys.exit(main())
