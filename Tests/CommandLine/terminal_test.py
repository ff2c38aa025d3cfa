#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The command ostrel at a terminal, at signals, and as a partner of another program.

    terminal_test.py COMMAND FLUIDS [SANITIZERS]     with sanitizers, memory that was given back counts, too
"""
import fcntl
import os
import pty
import re
import resource
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

COMMAND, FLUIDS = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
SANITIZED = len(sys.argv) > 3
ENVIRONMENT = {**os.environ, "OSTREL_FLUIDS": FLUIDS, "LC_ALL": "C"}
TABLE = ["table", "toluene", "pt", "1bar:60bar:1000:log", "300:700:1000", "d", "h", "s", "c"]


def at_terminal(arguments, columns):
    """What a terminal with so many columns shows, without the carriage returns that it adds."""
    child, terminal = pty.fork()
    if child == 0:
        fcntl.ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        os.execve(COMMAND, [COMMAND, *arguments], ENVIRONMENT)
    shown = b""
    while True:
        try:
            part = os.read(terminal, 65536)
        except OSError:
            break
        if not part:
            break
        shown += part
    _, status = os.waitpid(child, 0)
    return shown.decode().replace("\r\n", "\n"), os.waitstatus_to_exitcode(status)


class Terminal(unittest.TestCase):
    def test_lines_fit(self):
        for columns in (40, 80):
            for arguments in (["fluids", "propane"], ["sat", "propane"], ["prop", "propane", "pt", "1e6", "250"],
                              ["info", "propane"], ["sat", "water", "--units", "engineering"]):
                shown, code = at_terminal(arguments, columns)
                self.assertEqual(code, 0)
                # A heading and a path are not folded.
                wide = [line for line in shown.splitlines()
                        if len(line) > columns and not line.startswith("Equations of state,") and FLUIDS not in line]
                self.assertEqual(wide, [], (arguments, columns))

    def test_folded_columns_lose_nothing(self):
        shown, _ = at_terminal(["sat", "propane", "250", "300"], 40)
        whole = subprocess.run([COMMAND, "sat", "propane", "250", "300"], env=ENVIRONMENT, capture_output=True,
                               text=True, check=True).stdout
        numbers = re.compile(r"-?\d+\.\d+")
        self.assertEqual(set(numbers.findall(shown)), set(numbers.findall(whole)))
        self.assertGreater(shown.count("Pa\n") + shown.count("Pa "), 5)

    def test_a_narrow_list_keeps_names(self):
        shown, _ = at_terminal(["fluids", "propane"], 40)
        self.assertIn("propane", shown)
        self.assertNotIn("74-98-6", shown)
        shown, _ = at_terminal(["fluids", "propane"], 200)
        self.assertIn("74-98-6", shown)


class LongTable(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = os.path.join(self.folder.name, "table")

    def tearDown(self):
        self.folder.cleanup()

    def stopped(self, arguments, number, wait):
        """Sends a signal when the output file has grown, and returns the exit code."""
        if os.path.exists(self.path):
            os.remove(self.path)
        with subprocess.Popen([COMMAND, *TABLE, "--jobs", "1", *arguments], env=ENVIRONMENT,
                              stderr=subprocess.PIPE) as run:
            begun = time.monotonic()
            while time.monotonic() - begun < 30 and run.poll() is None:
                if os.path.exists(self.path) and os.path.getsize(self.path) > wait:
                    break
                time.sleep(0.005)
            run.send_signal(number)
            run.communicate()
            return run.returncode

    def test_a_signal_leaves_whole_lines(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            self.assertEqual(self.stopped(["--output", self.path], number, 2_000_000), 128 + number)
            with open(self.path, encoding="utf-8") as file:
                text = file.read()
            self.assertTrue(text.endswith("\n"))
            lines = text.splitlines()
            self.assertLess(len(lines), 1_000_001)
            self.assertGreater(len(lines), 1000)
            self.assertEqual({line.split(",note")[0].count(",") for line in lines[1:]},
                             {lines[0].split(",note")[0].count(",") + 1})

    def test_a_stopped_database_is_whole_and_goes_on(self):
        small = ["table", "toluene", "pt", "1bar:60bar:300:log", "300:700:300", "d", "--sqlite", self.path]
        with subprocess.Popen([COMMAND, *small], env=ENVIRONMENT, stderr=subprocess.PIPE) as run:
            while run.poll() is None and not (os.path.exists(self.path) and os.path.getsize(self.path) > 1_000_000):
                time.sleep(0.002)
            run.send_signal(signal.SIGINT)
            run.communicate()
            code = run.returncode
        with sqlite3.connect(self.path) as database:
            self.assertEqual(database.execute("PRAGMA integrity_check").fetchone(), ("ok",))
            there = database.execute("SELECT count(*), max(state) FROM states").fetchone()
        self.assertEqual(there[0], there[1] + 1)
        if code != 0:
            self.assertEqual(code, 130)
            self.assertLess(there[0], 90_000)
        subprocess.run([COMMAND, *small], env=ENVIRONMENT, check=True, stderr=subprocess.DEVNULL)
        with sqlite3.connect(self.path) as database:
            self.assertEqual(database.execute("SELECT count(*), max(state), count(d) FROM states").fetchone(),
                             (90_000, 89_999, 90_000))

    def test_a_million_states_in_constant_memory(self):
        used = []
        for size in (100, 1000):
            request = [text.replace("1000", str(size)) for text in TABLE]
            begun = time.monotonic()
            child = os.fork()
            if child == 0:
                null = os.open(os.devnull, os.O_WRONLY)
                os.dup2(null, 1)
                os.execve(COMMAND, [COMMAND, *request], ENVIRONMENT)
            _, status, usage = os.wait4(child, 0)
            self.assertEqual(status, 0)
            used.append(usage.ru_maxrss)
        took = time.monotonic() - begun
        print(f"a million states: {took:.1f} s, {used[1] / 1024:.1f} MiB; ten thousand: {used[0] / 1024:.1f} MiB")
        if not SANITIZED:
            self.assertLess(used[1], 1.2 * used[0] + 2048)
        self.assertLess(took, 100)

    def test_progress_is_for_terminals_only(self):
        run = subprocess.run([COMMAND, *TABLE], env=ENVIRONMENT, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                             check=True)
        self.assertEqual(run.stderr, b"")


class Partner(unittest.TestCase):
    def test_each_line_is_answered_before_the_next_one_comes(self):
        with subprocess.Popen([COMMAND, "eval", "toluene", "pt", "d"], env=ENVIRONMENT, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, text=True) as run:
            densities = []
            for t in range(400, 500, 10):
                run.stdin.write(f"1bar {t}K\n")
                run.stdin.flush()
                densities.append(float(run.stdout.readline().split(",")[0]))
            run.stdin.close()
            self.assertEqual(run.wait(), 0)
        self.assertEqual(densities, sorted(densities, reverse=True))
        self.assertEqual(len(set(densities)), 10)

    def test_a_closed_pipe_ends_the_work(self):
        with subprocess.Popen([COMMAND, *TABLE], env=ENVIRONMENT, stdout=subprocess.PIPE) as run:
            run.stdout.readline()
            run.stdout.close()
            self.assertNotEqual(run.wait(timeout=30), 0)


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    unittest.main(argv=sys.argv[:1], verbosity=1)
