#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the catalogue with its table. The files must be those that the generator writes, the choices must be those
that scripts/make_fluids --choose finds, and the library's numbers for the fluids must be those of the table.

    catalogue_test.py SOURCE_FOLDER LIBRARY [TEST...]
"""
import csv
import filecmp
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT, LIBRARY = pathlib.Path(sys.argv[1]), sys.argv[2]
sys.path.insert(0, str(ROOT / "scripts"))
import choose_fluids  # noqa: E402
from ostrel_library import Failed, Library, child  # noqa: E402

MAKE = choose_fluids.generator()
TABLE = {row["short"]: row for row in MAKE.read_table("fluids.csv")}
CHOICES = {choice["fluid"]: choice for choice in MAKE.read_table("choices.csv")}


def cp_over_R(fluid):
    """cp/R of the ideal gas at 298.15 K, which is that of the fluid at vanishing density."""
    library = Library(LIBRARY, ROOT / "Fluids")
    R = 8.314 / library.info(fluid, "m_mol")
    return repr(library.prop(fluid, "td", 298.15, 1e-9, "cv") / R + 1)


def pressure_at_Tb(fluid):
    try:
        return repr(Library(LIBRARY, ROOT / "Fluids").prop(fluid, "tq", float(TABLE[fluid]["Tb"]), 1, "p"))
    except Failed as failure:
        return str(failure)


class Catalogue(unittest.TestCase):
    def test_the_files_are_what_the_generator_writes(self):
        for options, folder, count in ([], ROOT / "Fluids", 300), (["--variants"], ROOT / "Tests/Fluids", 9):
            with self.subTest(folder=folder), tempfile.TemporaryDirectory() as other:
                subprocess.run([sys.executable, ROOT / "scripts/make_fluids", *options, "-o", other], check=True,
                               capture_output=True)
                made = sorted(file.name for file in pathlib.Path(other).iterdir())
                here = {file.name for file in folder.glob("*.osd") if not file.is_symlink()} | {"index.csv"}
                self.assertEqual(made, sorted(here))
                same, differing, failed = filecmp.cmpfiles(other, folder, made, shallow=False)
                self.assertEqual((differing, failed), ([], []))
                self.assertGreaterEqual(len(same), count)

    def test_the_links_of_the_tests_lead_to_fluids_of_the_catalogue(self):
        links = [file for file in (ROOT / "Tests/Fluids").glob("*.osd") if file.is_symlink()]
        self.assertGreater(len(links), 0)
        for file in links:
            self.assertEqual(file.resolve(), (ROOT / "Fluids" / file.name).resolve())
            self.assertTrue(file.is_file(), file)

    def test_every_fluid_of_the_table_is_there_or_left_out_for_a_reason(self):
        left_out = {row["fluid"]: row["reason"] for row in MAKE.read_table("left_out.csv")}
        self.assertEqual(set(CHOICES) | set(left_out), set(TABLE))
        self.assertEqual(set(CHOICES) & set(left_out), set())
        self.assertTrue(all(left_out.values()))

    def test_the_choices_are_what_the_library_answers(self):
        """Tests every fifteenth fluid, since all of them (scripts/make_fluids --choose) take half a minute."""
        for name in list(CHOICES)[::15]:
            with self.subTest(fluid=name), tempfile.TemporaryDirectory() as folder:
                choice = choose_fluids.choose(TABLE[name], MAKE, LIBRARY, pathlib.Path(folder))
                self.assertEqual((name, *choice), tuple(CHOICES[name].values()))

    def test_a_variant_is_written_into_a_fluid_directory(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sys.executable, ROOT / "scripts/make_fluids", "--model", "mh", "-o", f"{folder}/mh", "toluene"],
                           check=True, capture_output=True)
            written = sorted(file.name for file in pathlib.Path(folder, "mh").iterdir())
            self.assertEqual(written, ["index.csv", "toluene.osd"])

            def density(fluids):
                return repr(Library(LIBRARY, fluids).prop("toluene", "pt", 2e6, 600, "d"))
            other, ours = child(density, f"{folder}/mh"), child(density, ROOT / "Fluids")
            self.assertNotEqual(other, ours)
            self.assertAlmostEqual(float(other) / float(ours), 1, delta=0.05)

    def test_wrong_arguments_are_refused_in_words(self):
        for arguments, words in ((["nosuch"], "no such fluid"), (["--model", "mh", "toluene"], "--output"),
                                 (["--model", "izg", "-o", "/nowhere"], "izg=Z"), (["--model", "xyz"], "none of"), (["--variants", "toluene"], "fluids and models")):
            run = subprocess.run([sys.executable, ROOT / "scripts/make_fluids", *arguments], capture_output=True, text=True)
            self.assertEqual(run.returncode, 2)
            self.assertIn(words, run.stderr)

    def test_heat_capacity_at_room_temperature(self):
        for name in CHOICES:
            with self.subTest(fluid=name):
                expected = float(TABLE[name]["cp298"])
                spread = float(TABLE[name]["cp298_spread"] or 0)
                self.assertLess(abs(float(child(cp_over_R, name)) / expected - 1), spread + 0.01)

    def test_vapor_pressure_at_the_boiling_temperature(self):
        boiling = [name for name in CHOICES if not TABLE[name]["notes"].startswith("sublimes")]
        missed = {}
        for name in boiling:
            answer = child(pressure_at_Tb, name)
            try:
                if abs(float(answer) / 101325 - 1) <= 0.03:
                    continue
            except ValueError:
                pass
            missed[name] = answer
        print(f"{len(missed)} of {len(boiling)} fluids are off by more than 3 % or do not answer:", *missed)
        self.assertLess(len(missed), 0.1 * len(boiling))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
