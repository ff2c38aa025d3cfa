#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Counts the instructions of every path that instruction_counter takes, and compares them with the committed counts.

    count_instructions.py COUNTER BASELINE COMPILER [--update]

COUNTER is the program, BASELINE the committed list, COMPILER the name, version and system that it was compiled for.
Two figures stand for a path, per pass:

  instructions  of the library and of all that it calls, except the mathematical functions
  calls         of mathematical functions, whose own instructions depend on the machine

A path fails if one figure exceeds the committed one by more than 5 %. Another compiler makes other code; nothing is
then compared and the exit status is 77. --update writes the list anew.
"""

import csv
import os
import subprocess
import sys
import tempfile

TOLERANCE = 0.05
SKIPPED = 77


def dumps(lines):
    """(trigger, all instructions, {object: own instructions}, calls into libm) of each dump.

    All instructions are those of its summary: callgrind may count for a function what was spent before the dump began.
    """
    trigger, total, own, calls = None, 0, {}, 0
    current, called, count = "", None, None
    for line in lines:
        line = line.rstrip("\n")
        if line.startswith("part:"):
            if trigger:
                yield trigger, total, own, calls
            trigger, total, own, calls, current = None, 0, {}, 0, ""
        elif line.startswith("desc: Trigger: "):
            trigger = line.removeprefix("desc: Trigger: ").removeprefix("Client Request: ")
        elif line.startswith("summary: "):
            total = int(line.split()[1])
        elif line.startswith("ob="):
            current = line[3:]
        elif line.startswith("cob="):
            called = line[4:]
        elif line.startswith("calls="):
            count = int(line[6:].split()[0])
        elif line[:1].isdigit():
            if count is None:
                own[current] = own.get(current, 0) + int(line.split()[1])
            else:
                if is_library(called or current, "libm.so") and not is_library(current, "libm.so"):
                    calls += count
                called, count = None, None
    if trigger:
        yield trigger, total, own, calls


def is_library(path, name):
    return os.path.basename(path).startswith(name)


def count(counter):
    """{path: (instructions, calls)} per pass."""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "counts")
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--compress-strings=no", "--compress-pos=no", "--combine-dumps=yes",
             f"--callgrind-out-file={out}", counter], stderr=subprocess.PIPE, text=True)
        if run.returncode != 0:
            sys.exit(run.stderr)
        found = {}
        with open(out, encoding="utf-8", errors="replace") as lines:
            for trigger, total, own, calls in dumps(lines):
                if trigger == "Program termination":
                    continue
                passes, name = trigger.split(" ", 1)
                instructions = total - sum(cost for ob, cost in own.items()
                                           if ob == os.path.realpath(counter) or is_library(ob, "libm.so"))
                found[name] = (round(instructions / int(passes)), round(calls / int(passes)))
        return found


def read(baseline):
    with open(baseline, encoding="utf-8") as lines:
        compiler = next(lines).removeprefix("# ").strip()
        rows = csv.DictReader(line for line in lines if not line.startswith("#"))
        return compiler, {row["path"]: (int(row["instructions"]), int(row["calls"])) for row in rows}


def write(baseline, compiler, found):
    with open(baseline, "w", encoding="utf-8") as out:
        out.write(f"# {compiler}\n# Per pass of a path in Benchmarks/paths.h; made by scripts/count_instructions --update\n"
                  "path,instructions,calls\n")
        for name, (instructions, calls) in found.items():
            out.write(f"{name},{instructions},{calls}\n")


def main(counter, baseline, compiler, *options):
    if options == ("--update",):
        write(baseline, compiler, count(counter))
        return 0
    committed_compiler, committed = read(baseline)
    if committed_compiler != compiler:
        print(f"The committed counts are those of {committed_compiler}, this is {compiler}: nothing to compare.")
        return SKIPPED
    found = count(counter)
    worse = False
    print(f"{'path':24}{'instructions':>14}{'committed':>12}{'calls':>8}{'committed':>12}")
    for name in sorted(found.keys() | committed.keys()):
        if name not in found or name not in committed:
            print(f"{name}: only in the {'committed list' if name in committed else 'program'}; run with --update")
            worse = True
            continue
        grown = any(new > old * (1 + TOLERANCE) for new, old in zip(found[name], committed[name]))
        (new, new_calls), (old, old_calls) = found[name], committed[name]
        print(f"{name:24}{new:14}{old:12}{new_calls:8}{old_calls:12}{'  MORE' if grown else ''}")
        worse = worse or grown
    return 1 if worse else 0


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
