#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A program must print the expected output; numbers may differ by some units of their last digit.

    compare_output.py EXPECTED UNITS PROGRAM [ARGUMENT...]
"""
import re
import subprocess
import sys

NUMBER = re.compile(r"-?\d+(?:\.(\d+))?")


def differs(expected, printed, units):
    numbers, others = list(NUMBER.finditer(expected)), list(NUMBER.finditer(printed))
    if NUMBER.sub("#", expected) != NUMBER.sub("#", printed):
        # The number of blanks before a number depends on its length.
        if NUMBER.sub("#", expected).split() != NUMBER.sub("#", printed).split():
            return True
    for number, other in zip(numbers, others):
        decimals, others_decimals = len(number[1] or ""), len(other[1] or "")
        difference = abs(float(number[0]) - float(other[0])) * 10**decimals
        if decimals != others_decimals or difference > (units + 0.01 if decimals else 0):
            return True
    return False


def main():
    path, units, *command = sys.argv[1:]
    with open(path, encoding="utf-8") as file:
        expected = file.read().splitlines()
    run = subprocess.run(command, capture_output=True, text=True)
    printed = run.stdout.splitlines()
    complaints = [f"< {a}\n> {b}" for a, b in zip(expected, printed) if differs(a, b, int(units))]
    if len(expected) != len(printed):
        complaints.append(f"{len(expected)} lines expected, {len(printed)} printed")
    if run.returncode != 0 or run.stderr:
        complaints.append(f"ended with {run.returncode}: {run.stderr}")
    print(*complaints, sep="\n")
    if complaints:
        print(run.stdout)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
