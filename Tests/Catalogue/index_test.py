#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the index of the names of the fluids: every name means one fluid, and the facts are those of the files.

    index_test.py SOURCE_FOLDER [TEST...]

Nothing here is shared with the generator, but for the table of facts that both read.
"""
import csv
import pathlib
import re
import sys
import unittest

FLUIDS = pathlib.Path(sys.argv[1]) / "Fluids"


def read(name):
    with open(FLUIDS / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


def bare(name):
    """The letters and digits of a name in lower case."""
    return re.sub(r"[\W_]", "", name.lower())


ROWS = read("index.csv")


class Index(unittest.TestCase):
    def test_every_file_has_a_row(self):
        self.assertEqual([row["file"] for row in ROWS], sorted(file.stem for file in FLUIDS.glob("*.osd")))
        self.assertGreaterEqual(len(ROWS), 382)

    def test_no_name_means_two_fluids(self):
        meant = {}
        for row in ROWS:
            for name in (row["file"], row["name"], *row["aliases"].split("; "), row["refrigerant"], row["cas"]):
                if name:
                    self.assertNotEqual(bare(name), "")
                    meant.setdefault(bare(name), set()).add(row["file"])
        self.assertEqual({name: files for name, files in meant.items() if len(files) > 1}, {})
        for row in ROWS:
            if row["formula"]:  # The formula of one fluid may not be the name of another one.
                self.assertEqual(meant.get(bare(row["formula"]), {row["file"]}), {row["file"]}, row["formula"])

    def test_no_name_stands_twice_in_a_row(self):
        for row in ROWS:
            names = [bare(name) for name in (row["name"], *row["aliases"].split("; "), row["refrigerant"]) if name]
            self.assertEqual(len(names), len(set(names)), row["file"])

    def test_the_names_are_those_of_the_table_and_of_the_aliases(self):
        rows = {row["file"]: row for row in ROWS}
        checked = 0
        for fact in read("fluids.csv"):
            if fact["short"] not in rows:
                continue
            row = rows[fact["short"]]
            known = {bare(name) for name in (row["name"], row["refrigerant"], *row["aliases"].split("; "))}
            for name in (fact["name"], *filter(None, fact["alias"].split("; "))):
                self.assertIn(bare(name), known)
            for column in ("cas", "formula", "family"):
                self.assertEqual(row[column], fact[column])
            self.assertIn(row["Tt"], ("", fact["Tt"]))
            self.assertEqual(row["Tb"], fact["Tb"])
            checked += 1
        for alias in read("aliases.csv"):
            row = rows[alias["fluid"]]
            self.assertIn(bare(alias["alias"]), map(bare, row["aliases"].split("; ")))
        self.assertGreaterEqual(checked, 382)

    def test_refrigerant_numbers_have_a_column_of_their_own(self):
        numbers = {row["refrigerant"] for row in ROWS} - {""}
        self.assertGreaterEqual(len(numbers), 100)
        self.assertLessEqual({"R290", "R744", "R134a", "R600a", "R1234ze(E)", "RC318", "RE170"}, numbers)
        for row in ROWS:
            self.assertFalse(any(re.match(r"R\d", name) for name in row["aliases"].split("; ")
                                 if name not in ("R1233zd",)), row["file"])

    def test_the_range_of_the_heat_capacity_is_that_of_the_file(self):
        for row in ROWS:
            text = (FLUIDS / f"{row['file']}.osd").read_text(encoding="ascii")
            stated = re.search(r"^\d+ +function_type: .*?, ([\d.]+)-([\d.]+) K", text, re.M)
            self.assertEqual((row["cp_Tmin"], row["cp_Tmax"]), stated.groups() if stated else ("", ""), row["file"])

    def test_mixtures_have_no_triple_temperature(self):
        for row in ROWS:
            if row["family"].endswith("(pseudo-pure)") or row["file"] == "air":
                self.assertEqual(row["Tt"], "")
        self.assertGreater(sum(bool(row["Tt"]) for row in ROWS), 290)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
