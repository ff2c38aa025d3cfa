#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the pages on accuracy with the library. Accuracy.md, what the searches find, and the tables of
Choosing-a-model.md are computed anew; of the rows of Catalogue.md, every thirtieth.

    pages_test.py SOURCE_FOLDER LIBRARY [TEST...]

If the pages are not current, scripts/accuracy_report makes them anew.
"""
import json
import pathlib
import re
import sys
import unittest

ROOT, LIBRARY = pathlib.Path(sys.argv[1]), sys.argv[2]
sys.path.insert(0, str(ROOT / "scripts"))
from accuracy import facts, figures, measure, pages  # noqa: E402
from ostrel_library import child  # noqa: E402


def read(name):
    return (ROOT / "Documentation" / name).read_text(encoding="utf-8")


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.handles, cls.entry_points = map(figures.Comparison, measure.deviations(LIBRARY))
        cls.rows = pages.catalogue_rows(read("Catalogue.md"))
        cls.catalogue = figures.Catalogue(cls.rows, measure.lines(LIBRARY))

    def same(self, made, page):
        """Requires the same lines, and shows the first that differs."""
        for number, pair in enumerate(zip(made.splitlines(), page.splitlines()), 1):
            self.assertEqual(*pair, f"line {number}")
        self.assertEqual(len(made.splitlines()), len(page.splitlines()))

    def test_accuracy(self):
        self.same(pages.accuracy(self.handles, self.entry_points), read("Accuracy.md"))

    def test_every_picture_of_the_page_is_there_and_no_other(self):
        named = {name for _, name, _ in pages.sections()}
        self.assertEqual(set(re.findall(r"\(Accuracy/(\S+)\)", read("Accuracy.md"))), named)
        self.assertEqual({file.name for file in (ROOT / "Documentation/Accuracy").iterdir()}, named)

    def test_catalogue(self):
        self.assertEqual([row["file"] for row in self.rows], list(facts.CHOICES))
        page = read("Catalogue.md")
        self.same(pages.catalogue(self.catalogue, pages.catalogue_searches(page)), page)

    def test_rows_of_the_catalogue(self):
        for row in self.rows[::30]:
            self.assertEqual(measure.catalogue_row(row["file"], LIBRARY), row)

    def test_searches(self):
        answers = [child(measure.searches, fluid, LIBRARY) for fluid in facts.CHOICES]
        found = [json.loads(answer) for answer in answers if answer]
        made = pages.searches(figures.search_shares(found), len(found), *measure.handle_searches(LIBRARY))
        self.same(made, pages.catalogue_searches(read("Catalogue.md")))

    def test_choosing_a_model(self):
        page = read("Choosing-a-model.md")
        self.same(pages.choosing(page, self.handles, self.entry_points, self.catalogue), page)

    def test_a_missing_table_is_an_error(self):
        page = read("Choosing-a-model.md").replace("<!-- scripts/accuracy_report: dense -->", "")
        with self.assertRaises(ValueError):
            pages.choosing(page, self.handles, self.entry_points, self.catalogue)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
