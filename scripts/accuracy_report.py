# SPDX-License-Identifier: MIT
"""Compares every model with reference equations of state, for Documentation/Accuracy.md, its pictures and the tables of
Documentation/Choosing-a-model.md, and tries every fluid under every model, for Documentation/Catalogue.md.

    accuracy/facts.py     what is compared, and where the constants of the fluids come from
    accuracy/measure.py   asks the library
    accuracy/figures.py   means, medians and counts of the answers
    accuracy/pages.py     writes the pages
    accuracy/plots.py     draws the pictures
"""
import sys

from accuracy import figures, measure, pages


def main(library_path):
    handles, entry_points = map(figures.Comparison, measure.deviations(library_path))
    rows, found = measure.catalogue(library_path)
    catalogue = figures.Catalogue(rows, measure.lines(library_path))
    searches = pages.searches(figures.search_shares(found), len(found), *measure.handle_searches(library_path))
    choosing = pages.FOLDER / "Choosing-a-model.md"
    advice = pages.choosing(choosing.read_text(encoding="utf-8"), handles, entry_points, catalogue)
    for file, text in ((pages.FOLDER / "Accuracy.md", pages.accuracy(handles, entry_points)),
                       (pages.FOLDER / "Catalogue.md", pages.catalogue(catalogue, searches)),
                       (choosing, advice)):
        file.write_text(text, encoding="utf-8")
    from accuracy import plots  # only now, since the processes that ask the library are copies of this one
    plots.draw(handles, pages.FOLDER / "Accuracy")


if __name__ == "__main__":
    main(sys.argv[1])
