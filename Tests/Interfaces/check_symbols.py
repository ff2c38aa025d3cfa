#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The C symbols of the library are the functions of the header, each plain and with a trailing underscore.

    check_symbols.py NM LIBRARY HEADER
"""
import re
import subprocess
import sys


def main():
    nm, library, header = sys.argv[1:]
    with open(header, encoding="utf-8") as file:
        text = re.sub(r"/\*.*?\*/", "", file.read(), flags=re.S)
    functions = re.findall(r"^\w[\w \*]*?\b(\w+)\([^()]*\);", text, re.M | re.S)
    listing = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    # Names that start with an underscore belong to C++ and the toolchain.
    exported = {line.split()[-1].split("@")[0] for line in listing.splitlines()}
    exported = sorted(name for name in exported if not name.startswith("_"))
    expected = sorted(name + end for name in functions for end in ("", "_"))
    print("\n".join(exported))
    if len(functions) != 10 or exported != expected:
        print(f"expected of {len(functions)} functions:", *expected, sep="\n")
        return 1
    return 0


sys.exit(main())
