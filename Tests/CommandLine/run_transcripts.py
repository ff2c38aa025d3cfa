#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the commands of transcripts and compares what they print.

    run_transcripts.py COMMAND FLUIDS TRANSCRIPT...              compares
    run_transcripts.py --update COMMAND FLUIDS TRANSCRIPT...     rewrites the lines that differ; read the changes
    run_transcripts.py --examples COMMAND FLUIDS TRANSCRIPT...   runs the examples of the help texts in the transcripts;
                                                                 every command must have an example
    run_transcripts.py --self-test

COMMAND is the program ostrel, FLUIDS a folder of parameter files. A transcript is a text:

    # a comment
    $ ostrel prop toluene pt 1e5 500 t     run by bash, where a pipeline fails if any of its parts does
    t  500  K  temperature                 expected on standard output
    ! ostrel: something is wrong           expected on standard error
    [1]                                    expected exit code, which ends the command

Each transcript runs in a folder of its own, with base.osd, with the folder Examples, and with a folder Fluids that has
the files of FLUIDS and those of Tests/Fluids, and the rows of both indices.

Texts and whole numbers must be equal to the letter. Numbers with a point or an exponent may differ by 1e-9 of their
value, since mathematical functions differ in the last digit. If that changes the length of a number, the numbers of a
column must still end in the same column in all lines of a table.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

NUMBER = re.compile(r"(?<![\w.])[-+]?\d+(?:\.\d*)?(?:[eE][-+]?\d+)?(?![\w.])")
EXIT = re.compile(r"\[(\d+)\]")
TOLERANCE = 1e-9


class Step:
    """A command with the lines before it, its output and its exit code."""

    def __init__(self, before, command):
        self.before, self.command = before, command
        self.stdout, self.stderr, self.code = [], [], 0

    def lines(self):
        yield from self.before
        yield "$ " + self.command
        yield from self.stdout
        yield from (("! " + line).rstrip(" ") for line in self.stderr)
        yield f"[{self.code}]"


def parse(text):
    steps, between, ended = [], [], True
    for line in text.splitlines():
        if ended and line.startswith("$ "):
            steps.append(Step(between, line[2:]))
            between, ended = [], False
        elif ended:
            between.append(line)
        elif EXIT.fullmatch(line):
            steps[-1].code = int(EXIT.fullmatch(line)[1])
            ended = True
        elif line == "!" or line.startswith("! "):
            steps[-1].stderr.append(line[2:])
        else:
            steps[-1].stdout.append(line)
    return steps


def difference(expected, actual):
    """The first difference of two lists of lines, or nothing."""
    shifts = {}  # of the columns of the table that is being compared
    for number, (wanted, got) in enumerate(zip(expected, actual), 1):
        wanted_texts, got_texts = NUMBER.split(wanted), NUMBER.split(got)
        wanted_numbers, got_numbers = list(NUMBER.finditer(wanted)), list(NUMBER.finditer(got))
        if not wanted_numbers:
            shifts = {}
        if len(wanted_texts) != len(got_texts):
            return f"line {number}: expected {wanted!r}, got {got!r}"
        for i, (a, b) in enumerate(zip(wanted_numbers, got_numbers)):
            exact = a[0].lstrip("+-").isdigit() and b[0].lstrip("+-").isdigit()
            x, y = float(a[0]), float(b[0])
            if a[0] != b[0] and (exact or not abs(x - y) <= TOLERANCE * abs(x)):
                return f"line {number}: expected the number {a[0]}, got {b[0]}"
            if wanted_texts[i].endswith("  "):
                shift = b.end() - a.end()
                if shifts.setdefault(i, shift) != shift:
                    return f"line {number}: {b[0]} does not end in its column: {got!r}"
                wanted_texts[i], got_texts[i] = wanted_texts[i].rstrip(" "), got_texts[i].rstrip(" ")
        if wanted_texts != got_texts:
            return f"line {number}: expected {wanted!r}, got {got!r}"
    if len(expected) != len(actual):
        return f"expected {len(expected)} lines, got {len(actual)}: {expected} and {actual}"
    return None


def compare(expected, actual):
    for what in ("stdout", "stderr"):
        found = difference(getattr(expected, what), getattr(actual, what))
        if found:
            return f"{what}, {found}"
    if expected.code != actual.code:
        return f"expected exit code {expected.code}, got {actual.code}"
    return None


class Folder:
    """A folder in which the commands run."""

    def __init__(self, command, fluids):
        self.path = tempfile.mkdtemp(prefix="ostrel-transcript-")
        here = pathlib.Path(self.path)
        (here / "bin").mkdir()
        (here / "bin" / "ostrel").symlink_to(os.path.abspath(command))
        (here / "temporary").mkdir()
        self.place = here / "place"
        self.place.mkdir()
        (self.place / "Fluids").mkdir()
        rows = {}
        for folder in pathlib.Path(fluids), pathlib.Path(__file__).parent.parent / "Fluids":
            heading, *lines = (folder / "index.csv").read_text(encoding="utf-8").splitlines()
            rows.update((line.split(",")[0], line) for line in lines)
            for file in folder.glob("*.osd"):
                place = self.place / "Fluids" / file.name
                if not place.is_symlink():
                    place.symlink_to(os.path.abspath(file))
        index = "\n".join([heading, *(line for _, line in sorted(rows.items())), ""])
        (self.place / "Fluids" / "index.csv").write_text(index, encoding="utf-8")
        shutil.copy(pathlib.Path(__file__).parent / "base.osd", self.place)
        (self.place / "Examples").symlink_to(pathlib.Path(__file__).resolve().parents[2] / "Examples")
        self.environment = {
            **os.environ,
            "PATH": f"{here / 'bin'}:{os.environ['PATH']}",
            "TMPDIR": str(here / "temporary"),
            "OSTREL_FLUIDS": "Fluids",
            "LC_ALL": "C",
        }

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.path)

    def run(self, step):
        result = subprocess.run(["bash", "-o", "pipefail", "-c", step.command], cwd=self.place, env=self.environment, capture_output=True,
                                stdin=subprocess.DEVNULL, timeout=300, check=False)
        done = Step(step.before, step.command)
        done.stdout = result.stdout.decode(errors="replace").splitlines()
        done.stderr = result.stderr.decode(errors="replace").splitlines()
        done.code = result.returncode
        return done


def run_transcript(path, command, fluids, update):
    """The failures of one transcript."""
    steps = parse(pathlib.Path(path).read_text(encoding="utf-8"))
    if not steps:
        return [f"{path}: no commands"]
    failures, kept = [], []
    with Folder(command, fluids) as folder:
        for step in steps:
            actual = folder.run(step)
            found = compare(step, actual)
            kept.append(actual if found else step)
            if found:
                failures.append(f"{path}: $ {step.command}\n    {found}")
    if update and failures:
        text = "".join(line + "\n" for step in kept for line in step.lines())
        pathlib.Path(path).write_text(text, encoding="utf-8")
    return failures


def run_examples(paths, command, fluids):
    steps = [step for path in paths for step in parse(pathlib.Path(path).read_text(encoding="utf-8"))]
    helps = {step.command: step.stdout for step in steps if step.command.endswith(" --help")}
    failures = []
    # Every command that a help text lists must have a help text of its own.
    for name, lines in helps.items():
        if "Subcommands:" in lines:
            for line in lines[lines.index("Subcommands:") + 1:]:
                if not line.startswith("  "):
                    break
                if name.replace("--help", f"{line.split()[0]} --help") not in helps:
                    failures.append(f"the help of {line.split()[0]} is in no transcript")
    count = 0
    with Folder(command, fluids) as folder:
        for name, lines in helps.items():
            start = [i for i, line in enumerate(lines) if re.fullmatch(r"Examples?:", line)]
            if not start and "Subcommands:" not in lines:
                failures.append(f"{name} has no example")
            for line in lines[start[0] + 1:] if start else []:
                done = folder.run(Step([], line.strip()))
                count += 1
                if done.code or not (done.stdout or "--sqlite" in line or "--output" in line):
                    failures.append(f"{name}: the example {line.strip()} ends with {done.code}: {done.stderr}")
    print(f"{len(helps)} help texts, {count} examples")
    return failures


def self_test():
    """Texts that must pass, and texts that must not."""
    table = ["t          500  K    temperature", "s   216.754076  J/K  entropy", "", "a 1.5 b"]
    same = [table, ["t         500  K    temperature", "s   216.75407  J/K  entropy", "", "a 1.5000000001 b"]]
    same[1][1] = "s  216.7540761  J/K  entropy"
    same[1][0] = "t          500  K    temperature"
    other = {
        "a number": [table[0], table[1].replace("076", "077"), *table[2:]],
        "a whole number": [table[0].replace("500", "501"), *table[1:]],
        "a column": [table[0].replace("  500", "   500"), *table[1:]],
        "a column of text": [table[0].replace("K  ", "K   "), *table[1:]],
        "a word": [table[0].replace("temp", "Temp"), *table[1:]],
        "a line less": table[:-1],
        "a line more": [*table, ""],
        "no number": [*table[:3], "a nan b"],
        "a blank": [*table[:3], "a  1.5 b"],
    }
    failures = [f"taken as different: {texts}" for texts in same if difference(table, texts)]
    failures += [f"not seen: {what}" for what, texts in other.items() if not difference(table, texts)]
    text = "# why\n$ ostrel x\nout\n\nmore\n! err\n[1]\n\n# more\n$ ostrel y\n[0]\n"
    steps = parse(text)
    if "".join(line + "\n" for step in steps for line in step.lines()) != text:
        failures.append("a transcript does not read back")
    for change in ({"stdout": ["err"], "stderr": ["out"]}, {"stdout": []}, {"stderr": []}, {"code": 0}):
        changed = Step([], steps[0].command)
        changed.stdout, changed.stderr, changed.code = steps[0].stdout, steps[0].stderr, steps[0].code
        for name, value in change.items():
            setattr(changed, name, value)
        if not compare(steps[0], changed):
            failures.append(f"not seen: {change}")
    return failures


def main():
    arguments = sys.argv[1:]
    mode = arguments.pop(0) if arguments and arguments[0].startswith("--") else ""
    if mode == "--self-test":
        failures = self_test()
    elif len(arguments) < 3 or mode not in ("", "--update", "--examples"):
        print(__doc__, file=sys.stderr)
        return 2
    else:
        command, fluids, *paths = arguments
        if mode == "--examples":
            failures = run_examples(paths, command, fluids)
        else:
            failures = [text for path in paths for text in run_transcript(path, command, fluids, mode == "--update")]
    print("\n".join(failures) if failures else "All as expected.")
    return 1 if failures and mode != "--update" else 0


sys.exit(main())
