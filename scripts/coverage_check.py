# SPDX-License-Identifier: MIT
"""Compares the lines and branches that the tests did not reach with the exceptions.

    coverage_check.py COVERAGE.json EXCEPTIONS.txt

COVERAGE.json is made by gcovr. EXCEPTIONS.txt has blocks: the name of a file, a source line, "branches: N" and "why:"
with the reason. N is the number of branches that are not taken on all lines with this text together.
"""
import collections
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def without_comment(line):
    return line.split(" //")[0].strip()


def not_reached(report):
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
            missed = sum(branch["count"] == 0 for branch in line.get("branches", []))
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
    lines, branches = not_reached(report)
    allowed = read_exceptions(pathlib.Path(sys.argv[2]))
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
