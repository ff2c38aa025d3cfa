# SPDX-License-Identifier: MIT
"""Makes the index of the names of the fluids, Fluids/index.csv, from the table of facts and Fluids/aliases.csv."""
import csv
import io
import re
import unicodedata

COLUMNS = ("file", "name", "aliases", "refrigerant", "formula", "cas", "family", "Tt", "Tb", "cp_Tmin", "cp_Tmax")
REFRIGERANT = re.compile(r"R[CE]?\d[\w()-]*")


def key(text):
    """The text as names are compared: without case, blanks and punctuation."""
    return "".join(c for c in unicodedata.normalize("NFKC", text).lower() if c.isalnum())


def distinct(names):
    """The names in their order, without those that are compared as equal to an earlier one."""
    first = {}
    for name in filter(None, names):
        first.setdefault(key(name), name)
    return [*first.values()]


def names_of(row, further):
    """Everything that names a fluid of the table, with its further aliases."""
    given = row["alias"].split("; ") if row["alias"] else []
    refrigerant = next(filter(REFRIGERANT.fullmatch, given), "")
    bare = re.sub(r" \(.*\)$", "", row["name"])
    known = distinct([row["name"], refrigerant, bare, *given, *further])
    aliases = [name for name in known if name not in (row["name"], refrigerant)]
    return {"name": row["name"], "aliases": "; ".join(aliases), "refrigerant": refrigerant, "formula": row["formula"],
            "cas": row["cas"]}


def triple_temperature(row):
    """Empty for a mixture: the table then has the lowest temperature of its source's equation of state."""
    return "" if "pseudo-pure" in row["name"] else row["Tt"]


def text(files, rows, aliases, heat_capacity_fit):
    """The index of the files {file: (fluid, name of the model)}, in the order of the files' names. A file that does not
    have its fluid's name is a variant: its name names the model, too, so that every name means one file."""
    unknown = sorted({alias["fluid"] for alias in aliases} - set(rows))
    assert not unknown, f"Fluids/aliases.csv names fluids that are not in the table: {', '.join(unknown)}"
    lines = io.StringIO()
    writer = csv.DictWriter(lines, COLUMNS, restval="", lineterminator="\n")
    writer.writeheader()
    for file, (fluid, model) in sorted(files.items()):
        row = rows[fluid]
        names = {"name": f"{row['name']}, {model}"}
        if file == fluid:
            names = names_of(row, [alias["alias"] for alias in aliases if alias["fluid"] == fluid])
        _, lowest, highest = heat_capacity_fit(row)
        writer.writerow({"file": file, **names, "family": row["family"], "Tt": triple_temperature(row), "Tb": row["Tb"],
                         "cp_Tmin": lowest, "cp_Tmax": highest})
    return lines.getvalue()
