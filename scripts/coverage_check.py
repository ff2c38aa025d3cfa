# SPDX-License-Identifier: MIT
"""Compares the lines and branches that the tests did not reach with the exceptions.

    coverage_check.py COVERAGE.json OBJECTS EXCEPTIONS.txt

COVERAGE.json is made by gcovr from the folder OBJECTS. EXCEPTIONS.txt has blocks: the name of a file, a source line,
"branches: N" and "why:" with the reason. N is the number of branches that are not taken on all lines with this text
together. A branch of a template counts as taken if one of the template's instances takes it. gcovr does so for
functions; here it is done for lambdas inside templates, too.
"""
import collections
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def without_comment(line):
    return line.split(" //")[0].strip()


def branches_of_lines(objects):
    """How often the branches of each line were taken, the instances of templates added up."""
    counts = collections.defaultdict(dict)  # of each (file, line) by the number of branches
    found = sorted(str(path.resolve()) for path in objects.rglob("*.gcda"))
    answer = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", *found], check=True,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode()
    for file in (file for row in answer.splitlines() for file in json.loads(row)["files"]):
        path = pathlib.Path(file["file"])
        if not path.resolve().is_relative_to(ROOT):
            continue
        name = path.resolve().relative_to(ROOT).as_posix()
        for line in file["lines"]:
            taken = [branch["count"] for branch in line["branches"] if not branch["throw"]]
            if not taken:
                continue
            length = len(taken) // instances_at(line, file["functions"], len(taken))
            sums = counts[(name, line["line_number"])].setdefault(length, [0] * length)
            for place, count in enumerate(taken):
                sums[place % length] += count
    return {key: [count for sums in by_length.values() for count in sums] for key, by_length in counts.items()}


def instances_at(line, functions, branches):
    """gcov puts the branches of all lambdas that come from one in a template one after the other. The instances for two
    of the eight models, the ideal ones, have none where a constant decides."""
    around = [function for function in functions
              if function["start_line"] <= line["line_number"] <= function["end_line"]
              and function["name"].startswith(line.get("function_name", ""))]
    innermost = max(((function["start_line"], function["start_column"]) for function in around), default=None)
    number = sum((function["start_line"], function["start_column"]) == innermost for function in around)
    return next((count for count in (number, number * 6 // 8) if count > 0 and branches % count == 0), 1)


def not_reached(report, taken):
    """The lines that were not executed, and the number of branches not taken for each file and text of a line."""
    lines = []
    branches = collections.Counter()
    for file in report["files"]:
        source = (ROOT / file["file"]).read_text(encoding="utf-8").splitlines()
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            number = line["line_number"]
            text = without_comment(source[number - 1])
            if line["count"] == 0:
                lines.append((file["file"], number, text))
                continue
            missed = taken.get((file["file"], number), []).count(0) if line.get("branches") else 0
            if missed:
                branches[(file["file"], text)] += missed
    return lines, branches


def read_exceptions(path):
    exceptions = {}
    for block in re.split(r"\n\s*\n", path.read_text(encoding="utf-8")):
        rows = [row.strip() for row in block.splitlines() if row.strip() and not row.startswith("#")]
        if not rows:
            continue
        count = re.fullmatch(r"branches: (\d+)", rows[2]) if len(rows) > 3 else None
        if count is None or not re.match(r"why: \S", rows[3]):
            raise SystemExit(f"{path.name}: not a file, a line, branches: and why: {rows[0]}")
        exceptions[(rows[0], rows[1])] = int(count.group(1))
    return exceptions


def main():
    report = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    if not report["files"]:
        raise SystemExit("Nothing was counted.")
    lines, branches = not_reached(report, branches_of_lines(pathlib.Path(sys.argv[2])))
    allowed = read_exceptions(pathlib.Path(sys.argv[3]))
    complaints = [f"{file}:{number}: not reached\n    {text}" for file, number, text in lines]
    for key, missed in sorted(branches.items()):
        if missed != allowed.get(key, 0):
            complaints.append(f"{key[0]}: branches not taken: {missed}, explained: {allowed.get(key, 0)}\n    {key[1]}")
    complaints += [f"{file}: explained, but all taken or gone\n    {text}" for file, text in allowed
                   if (file, text) not in branches]
    print("\n".join(complaints) or f"Every line is reached; {sum(branches.values())} branches are explained.")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
