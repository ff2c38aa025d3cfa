#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The manual pages and the completions say what the help texts say, and work.

    manual_test.py COMMAND FOLDER FLUIDS
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

COMMAND, FOLDER, FLUIDS = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]), os.path.abspath(sys.argv[3])


def output(*words, **more):
    return subprocess.run(words, capture_output=True, text=True, check=True, **more).stdout


COMMANDS = re.findall(r"^  (\w+) {2,}", output(COMMAND, "--help").split("Subcommands:")[1], re.M)


def options_of(text):
    return set(re.findall(r"(?<![\w-])--[a-z]+(?:-[a-z]+)*", text)) - {"--help"}


def completed(*words):
    """What bash offers for the last of the words."""
    script = (f"source {FOLDER}/ostrel.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _ostrel; "
              "printf '%s\\n' \"${COMPREPLY[@]}\"")
    environment = {**os.environ, "PATH": f"{os.path.dirname(COMMAND)}:{os.environ['PATH']}", "OSTREL_FLUIDS": FLUIDS}
    return output("bash", "-c", script, "bash", "ostrel", *words, env=environment).split()


class Pages(unittest.TestCase):
    def test_each_command_has_a_page(self):
        pages = sorted(path.name for path in FOLDER.glob("*.1"))
        self.assertEqual(pages, sorted(["ostrel.1", *(f"ostrel-{name}.1" for name in COMMANDS)]))
        for name in COMMANDS:
            self.assertIn(f"ostrel\\-{name} (1)", (FOLDER / "ostrel.1").read_text(encoding="utf-8"))

    def test_pages_have_no_faults(self):
        for path in FOLDER.glob("*.1"):
            run = subprocess.run(["groff", "-man", "-ww", "-Tutf8", str(path)], capture_output=True, text=True,
                                 check=True)
            self.assertEqual(run.stderr, "", path.name)
            self.assertGreater(len(run.stdout.splitlines()), 20, path.name)

    def test_pages_have_the_options_of_the_help(self):
        for name in COMMANDS:
            text = output(COMMAND, name, "--help").split("Options:")[1]
            page = (FOLDER / f"ostrel-{name}.1").read_text(encoding="utf-8").replace("\\-", "-")
            self.assertLessEqual(options_of(text), options_of(page), name)


class Completions(unittest.TestCase):
    def test_commands(self):
        self.assertLessEqual(set(COMMANDS), set(completed("")))
        self.assertEqual(completed("pro"), ["prop"])

    def test_fluids_pairs_outputs(self):
        self.assertIn("toluene", completed("prop", "tol"))
        self.assertEqual(completed("prop", "toluene", "pt"), ["pt"])
        self.assertIn("isentropic_exponent", completed("prop", "toluene", "pt", "1e5", "400", "isen"))
        self.assertIn("isentropic_exponent", completed("prop", "toluene", "pt", "1e5", "400", "d", "isen"))
        self.assertIn("tolu-mh" if os.path.exists(f"{FLUIDS}/tolu-mh.osd") else "toluene", completed("info", "tolu"))

    def test_options_and_their_values(self):
        self.assertEqual(completed("prop", "toluene", "--mod"), ["--model"])
        self.assertEqual(completed("prop", "toluene", "--model", "s"), ["srk"])
        self.assertEqual(completed("prop", "--units", "eng"), ["engineering"])
        # The value of an option is no argument.
        self.assertEqual(completed("prop", "--model", "pr", "toluene", "pt"), ["pt"])
        self.assertIn("propane", completed("--fluids", FLUIDS, "sat", "propan"))

    def test_subcommands(self):
        self.assertLessEqual({"import", "export"}, set(completed("db", "")))
        self.assertEqual(completed("db", "export", "--f"), ["--force"])

    def test_other_shells_can_read_theirs(self):
        for shell, name in (("bash", "ostrel.bash"), ("zsh", "_ostrel"), ("fish", "ostrel.fish")):
            if shutil.which(shell):
                self.assertEqual(output(shell, "-n", str(FOLDER / name)), "")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
