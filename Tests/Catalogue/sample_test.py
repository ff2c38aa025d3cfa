#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares a sample of the parameter files with numbers that were worked out from the table of fluids by hand, and
checks the formulas behind the numbers in every file.

    sample_test.py SOURCE_FOLDER [TEST...]

Nothing here is shared with the generator. The expected records stand in sample.txt. The files are read as the library
reads them: values are in free format, r*c repeats a value, and everything behind the last wanted value is a comment.
"""
import math
import pathlib
import re
import sys
import unittest
from decimal import Decimal

FLUIDS = pathlib.Path(sys.argv[1]) / "Fluids"
VARIANTS = pathlib.Path(sys.argv[1]) / "Tests/Fluids"
FILES = [file for folder in (FLUIDS, VARIANTS) for file in sorted(folder.glob("*.osd")) if not file.is_symlink()]
SAMPLE = pathlib.Path(__file__).with_name("sample.txt")

MODELS = {
    "gas_type": {1: "ideal gas", 2: "van der Waals", 3: "Martin-Hou", 4: "Soave-Redlich-Kwong", 5: "Peng-Robinson",
                 6: "Redlich-Kwong", 7: "Clausius II", 8: "ideal gas with constant Z"},
    "viscosity_model": {2: "Chung, dilute gas", 3: "Chung, dense gas", 4: "corresponding states",
                        5: "Sutherland's law"},
    "thermal_cond_model": {2: "Chung, dilute gas", 3: "Chung, dense gas"},
}
NUMBERS = {"MM", "Tc", "Pc", "Zc", "mur", "cv_0"}
UNITS = {"MM": "[kg/kmol]", "Tc": "[K]", "Pc": "[atm]", "Tb": "[K]", "cv_0": "[J/(kg K)]", "Tv": "[K]",
         "mu_ref_s": "[Pa s]"}


def sample():
    """The name of each file of the sample and its expected records: the values, and the phrases of the comment."""
    paragraphs = SAMPLE.read_text(encoding="ascii").strip().split("\n\n")
    for name, *records in map(str.splitlines, paragraphs[1:]):
        lines = (line.partition("#")[0].strip().partition("|") for line in records)
        yield name, [(wanted.strip(), [*filter(None, map(str.strip, phrases.split(";")))])
                     for wanted, _, phrases in lines]


def expand(word):
    """The values of a word in free format; 2*601.5 stands for two values."""
    count, _, value = word.rpartition("*")
    return [value] * int(count or 1)


class Reader:
    """Reads the records of a parameter file one after the other."""

    def __init__(self, file):
        self.lines = file.read_bytes().decode("ascii").split("\n")
        self.records = []  # (name, values, comment)

    def text(self):
        return self.lines.pop(0)

    def take(self, what, wanted=1):
        """Returns the first of the wanted values, and keeps all of them with the comment. They may continue on the next
        line."""
        values = []
        while len(values) < wanted:
            words = self.text().replace(",", " , ").split(" ")
            while len(values) < wanted and words:
                word = words.pop(0)
                if word not in ("", ","):
                    values += expand(word)
        if len(values) != wanted:
            raise ValueError(f"{what}: {len(values)} values for {wanted}")
        self.records.append((what, values, " ".join(words).strip().replace(" , ", ",")))
        return values[0]


def read(file):
    """All records of a file with critical data; the lines behind them are kept as the record "rest"."""
    reader = Reader(file)
    for what, width in ("heading", 0), ("name", 32), ("label", 32), ("heading", 0):
        text = reader.text()
        reader.records.append((what, [text[:width].rstrip()] if width else [], text[width:].strip()))
    reader.take("MM")
    if reader.take("vapor") != "T":
        raise ValueError("no critical data")
    for what in "Tc", "Pc", "Zc", "Tb", "mur", "kh":
        reader.take(what)
    if reader.take("gas_type") == "8":
        reader.take("Z_const")
    if reader.take("coeff_adim") != "F":
        raise ValueError("coefficients without dimension")
    function = reader.take("function_type")
    if function not in ("1", "5"):
        raise ValueError(f"function_type {function}")
    reader.take("cv_0")
    if function == "5":
        reader.take("Tv", int(reader.take("NV")))
    if reader.take("viscosity_model") == "5":
        reader.take("mu_ref_s", 3)
    reader.take("thermal_cond_model")
    reader.records.append(("rest", [], "\n".join(reader.lines)))
    return reader.records


def half(text):
    """Half a unit of the last printed digit."""
    return float(Decimal(1).scaleb(Decimal(text).as_tuple().exponent)) / 2


def digit(value, n):
    """Half a unit of the n-th significant digit, to which a number of the table is rounded."""
    return 0.5 * 10 ** (math.floor(math.log10(value)) + 1 - n)


def number(pattern, comment):
    """The number in a comment, as text."""
    return re.search(pattern.replace("NUMBER", r"(-?[0-9.]+(?:e-?\d+)?)"), comment)[1]


class Sample(unittest.TestCase):
    def same(self, expected, value):
        """Requires the same number, whatever zeros it ends with, or the same text."""
        try:
            expected, value = Decimal(expected), Decimal(value)
        except ArithmeticError:
            pass
        self.assertEqual(expected, value)

    def test_the_records_are_those_of_the_table(self):
        files = dict(sample())
        self.assertEqual(len(files), 27)
        for name, expected in files.items():
            found = read(next(file for file in FILES if file.name == name))
            self.assertEqual(len(found), len(expected) + 1, name)
            for (what, values, comment), (wanted, phrases) in zip(found, expected):
                with self.subTest(file=name, record=what):
                    if what in ("name", "label"):
                        self.assertEqual(values, [wanted])
                    elif what != "heading":
                        wanted = [value for word in wanted.split() for value in expand(word)]
                        self.assertEqual(len(values), len(wanted))
                        for pair in zip(wanted, values):
                            self.same(*pair)
                    for phrase in phrases:
                        self.assertRegex(comment, rf"(?<![\w.-]){re.escape(phrase)}(?![\w.])")

    def test_every_comment_names_unit_and_model(self):
        self.assertGreater(len(FILES), 300)
        for file in FILES:
            for what, values, comment in read(file):
                with self.subTest(file=file.name, record=what):
                    self.assertIn(UNITS.get(what, ""), comment)
                    if what in MODELS:
                        stated = comment.removeprefix(f"{what}: ")
                        self.assertRegex(stated, rf"^{MODELS[what][int(values[0])]}($|[,;])")

    def test_every_line_fits_into_a_record(self):
        for file in FILES:
            with self.subTest(file=file.name):
                text = file.read_bytes().decode("latin-1")
                self.assertRegex(text, r"\A(?:[ -~]{1,255}\n){16,254}\Z")
                for line in text.split("\n")[1:3]:
                    self.assertLessEqual(len(line.rstrip()), 32, f"cut: {line}")

    def test_every_file_follows_the_formulas(self):
        for file in FILES:
            found = read(file)
            comments = {what: comment for what, _, comment in found}
            texts = {what: values[0] for what, values, _ in found if values}
            value = {what: float(texts[what]) for what in texts.keys() & NUMBERS}
            with self.subTest(file=file.name, formula="end"):
                self.assertEqual(comments["rest"], "")
            MM, Tc, Pc = value["MM"], value["Tc"], float(number("NUMBER Pa ", comments["Pc"]))
            R = 8314 / MM  # J/(kg K)
            with self.subTest(file=file.name, formula="Pc = p/101325 but for the last digits"):
                self.assertEqual(len(texts["Pc"].replace(".", "")), 10)
                self.assertLess(abs(value["Pc"] * 101325 / Pc - 1), 3e-9)
            Vc = float(number("from Vc NUMBER m3/mol", comments["Zc"]))
            with self.subTest(file=file.name, formula="Zc = Pc Vc/(8.314463 Tc)"):
                tolerance = half(texts["Zc"]) + value["Zc"] * digit(Vc, 6) / Vc
                self.assertAlmostEqual(value["Zc"], Pc * Vc / (8.31446261815324 * Tc), delta=tolerance)
            with self.subTest(file=file.name, formula="omega of Edmister"):
                omega = number("omega = NUMBER ", comments["Tb"])
                Tb = texts["Tb"] if "gives omega" in comments["Tb"] else number("NUMBER would give", comments["Tb"])

                def edmister(T):
                    return 3 / 7 * math.log10(Pc / 101325) * T / (Tc - T) - 1

                self.assertGreaterEqual(edmister(float(Tb) + half(Tb)), float(omega) - half(omega))
                self.assertLessEqual(edmister(float(Tb) - half(Tb)), float(omega) + half(omega))
            with self.subTest(file=file.name, formula="mur = 131.3 mu/sqrt(Vc Tc)"):
                mu = 0.0 if "not known" in comments["mur"] else float(number("from NUMBER debye", comments["mur"]))
                factor = 131.3 / math.sqrt(Vc * 1e6 * Tc)  # Vc in cm3/mol
                tolerance = factor * digit(mu, 4) + half(texts["mur"]) if mu else 0
                self.assertAlmostEqual(value["mur"], factor * mu, delta=tolerance)
            multiple = float(number("NUMBER R$", comments["cv_0"]))
            with self.subTest(file=file.name, formula="cv_0 = (c0 - 1) R"):
                self.assertEqual(value["cv_0"], float(f"{multiple * R:.9g}"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
