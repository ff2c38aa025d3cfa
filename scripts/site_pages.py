#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts the pages of the site together.

    site_pages.py COMMAND CALCULATOR SOURCES EXTRA [FLUID...]    COMMAND: the program ostrel

SOURCES receives the pages that stand in the repository, with the front page as index.md, and a page for each fluid
(all of them, or FLUID...) which is made from the tables of Fluids/, from what the command says, and from the figures of
Documentation/Accuracy.md and Catalogue.md. EXTRA receives the diagrams of the fluids, and
what the folder CALCULATOR has, unless its name is empty.
"""
import concurrent.futures
import csv
import io
import os
import pathlib
import re
import shutil
import subprocess
import sys

from slim_svg import slim_cairo

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGES = ("README.md", "CONTRIBUTING.md", "ARCHITECTURE.md", "CHANGELOG.md", "Fluids/README.md")
LINK = re.compile(r"\[([^\]]*)\]\(([^)\s#]+)(#[^)\s]+)?\)")
CATALOGUE = "catalogue"
# Files that are read as pages, and the languages in which they are coloured.
LANGUAGES = {".h": "c", ".c": "c", ".hpp": "cpp", ".cpp": "cpp", ".f90": "fortran", ".py": "python", ".toml": "toml",
             ".txt": "none"}
CALCULATOR = """# Calculator

<a class="button" href="calculator/index.html">Open the calculator</a>

It computes states, draws diagrams and solves cycles in the browser, with the library itself and all its fluids. It
needs no server, and nothing that is typed there leaves the page. [In the browser](Documentation/Browser.md) describes it.
"""

# Facts of the real fluid: heading, column of fluids.csv, unit, the unit of the table in this unit, and the name under
# which the row gives its source.
FACTS = (("molar mass", "MM", "kg/kmol", 1, "MM"), ("critical temperature", "Tc", "K", 1, "Tc"),
         ("critical pressure", "Pc", "bar", 1e-5, "Pc"), ("critical volume", "Vc", "cm³/mol", 1e6, "Vc"),
         ("critical compressibility factor", "Zc", "", 1, "Vc"), ("acentric factor", "omega", "", 1, "omega"),
         ("boiling temperature at 1 atm", "Tb", "K", 1, "Tb"), ("triple temperature", "Tt", "K", 1, "Tt"),
         ("dipole moment", "mu", "D", 1, "mu"))
# The columns of the accuracy report that a fluid's page shows.
COMPARED = ("pr", "pr translated", "srk", "srk translated", "mh", "mh vapor", "ig")


def read_table(name):
    with open(ROOT / "Fluids" / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


def table(head, rows, numbers=False):
    """A table of Markdown. Cells are texts, or numbers, which stand at the right."""
    lines = [head, ["---:" if numbers else "---"] * len(head), *rows]
    return "".join(f"| {' | '.join(cell.replace('|', '/') for cell in line)} |\n" for line in lines)


def tables_of(page):
    """Of each table of a page: the heading above, the line above, the head and the rows."""
    heading, above, head, rows = "", "", [], []
    for line in [*page.splitlines(), ""]:
        if line.startswith("|"):
            cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
            if not head:
                head = cells
            elif set("".join(cells)) - set("-: "):
                rows.append(cells)
            continue
        if head:
            yield heading, above, head, rows
            head, rows = [], []
        if line.startswith("#"):
            heading = line.lstrip("# ")
        if line:
            above = line


def anchor(heading):
    """The anchor of a heading, as viewers of Markdown make it."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


class Command:
    def __init__(self, program):
        self.program = pathlib.Path(program).resolve()
        self.environment = os.environ | {"OSTREL_FLUIDS": str(ROOT / "Fluids")}

    def __call__(self, *arguments):
        done = subprocess.run([self.program, *arguments], capture_output=True, text=True, env=self.environment)
        if done.returncode != 0:
            raise SystemExit(f"ostrel {' '.join(arguments)}: {done.stderr}")
        return done.stdout


def number(text, digits=5):
    value = float(text)
    return f"{value:.{digits}g}" if 1e-3 <= abs(value) < 1e5 or value == 0 else f"{value:.{digits - 1}e}"


class Catalogue:
    def __init__(self, command):
        self.command = command
        self.index = {row["file"]: row for row in read_table("index.csv")}
        self.facts = {row["short"]: row for row in read_table("fluids.csv")}
        documentation = ROOT / "Documentation"
        self.accuracy = list(tables_of((documentation / "Accuracy.md").read_text(encoding="utf-8")))
        self.signs = {}
        for _, _, head, rows in tables_of((documentation / "Catalogue.md").read_text(encoding="utf-8")):
            if head[0] == "file":
                self.signs = {row[0]: dict(zip(head, row)) for row in rows}

    def diagrams(self, name, extra):
        pictures = []
        for kind, words in ("ts", "T-s diagram"), ("ph", "p-h diagram"):
            file = extra / CATALOGUE / f"{name}-{kind}.svg"
            self.command("plot", name, kind, "--size", "500x420", "--output", str(file))
            file.write_text(slim_cairo(file.read_text(encoding="utf-8")), encoding="utf-8")
            pictures.append(f'<a href="{file.name}"><img src="{file.name}" width="500" height="420" loading="lazy" '
                            f'alt="{words} of {self.index[name]["name"]}"></a>')
        return '<div class="diagrams">\n' + "\n".join(pictures) + "\n</div>\n"

    def real_fluid(self, name):
        row = self.facts[name]
        sources = {key: tag for entry in row["sources"].split("|") for keys, _, tag in [entry.partition("=")]
                   for key in keys.split(",")}
        rows = [[heading, f"{number(float(row[column]) * scale, 6)} {unit}".strip(), sources.get(source, "")]
                for heading, column, unit, scale, source in FACTS if row[column]]
        low, high = (self.index[name][f"cp_T{end}"] for end in ("min", "max"))
        if low:
            form = "pu" if [low, high] == [row["pu_Tmin"], row["pu_Tmax"]] else "cp"
            rows.append(["heat capacity of the ideal gas, fitted", f"{low} to {high} K", sources.get(form, "")])
        weak = "critical constants weakly confirmed"
        confirmed = row["second"] and (f"The critical point is {'weakly ' if weak in row['notes'] else ''}confirmed: the nearest "
                                       f"independent source ({row['second_by']}) differs by {100 * float(row['second']):.2g} %.\n")
        notes = [note for note in row["notes"].split("; ") if note and not note.startswith(weak)]
        remarks = f"Remarks on the facts: {'; '.join(notes)}.\n" if notes else ""
        return table(["of the real fluid", "value", "source"], rows), confirmed + remarks

    def described(self, name):
        """What the command says of the equation and of the models beside it, and the boiling temperatures."""
        text = self.command("info", name)
        models = re.findall(r"^  (heat capacity|viscosity|conductivity) +(.+)$", text, re.M)
        standard = re.search(r"^  (\w+) \* +(.+?)  ", text, re.M)
        boiling = {word: float(value) for word, value in re.findall(r"^  (measured|computed) +([\d.]+)  K", text, re.M)}
        rows = [["equation of state, if no other is asked for", f"{standard[2]} (`{standard[1]}`)"],
                *([kind + (" of the ideal gas" if kind == "heat capacity" else ""), words] for kind, words in models)]
        return table(["the parameter file has", ""], rows), boiling

    def saturation(self, name):
        rows = list(csv.DictReader(io.StringIO(self.command("sat", name, "--units", "engineering", "--csv"))))
        head = [column for column in rows[0] if column != "note"]
        step = max(1, -(-(len(rows) - 1) // 8))
        kept = rows[:-1:step] + rows[-1:]
        shown = [column.replace("degC", "°C").replace("m3", "m³") for column in head]
        return table(shown, [[number(row[column], 5) if row[column] and abs(float(row[column])) > 1e-12 else "0"
                              for column in head] for row in kept], numbers=True)

    def comparison(self, name):
        """The figures of the accuracy report, if the fluid is one of those that it compares."""
        regions = {}
        for heading, above, head, rows in self.accuracy:
            for row in rows:
                if head[0] == "fluid" and row[0] == name:
                    region = regions.setdefault(above, ({}, {}))
                    region[0].update(dict.fromkeys(head[1:]))
                    region[1][heading] = dict(zip(head[1:], row[1:]))
        text = ""
        for region, (columns, quantities) in regions.items():
            chosen = [column for column in COMPARED if column in columns]
            text += f"\n{region}\n\n" + table(["quantity", *chosen], [
                [f"[{heading}](../Documentation/Accuracy.md#{anchor(heading)})", *(cells.get(column, "") for column in chosen)]
                for heading, cells in quantities.items()])
        return text

    def page(self, name, extra):
        index, facts, signs = self.index[name], self.facts[name], self.signs.get(name, {})
        described, boiling = self.described(name)
        real, remarks = self.real_fluid(name)
        aliases = [alias for alias in [*index["aliases"].split("; "), index["refrigerant"]] if alias]
        calculator = (f' · <a href="../calculator/index.html#fluid={name}">calculator</a>'
                      if (extra / "calculator/index.html").exists() else "")
        parts = [f"---\norphan: true\n---\n\n# {index['name']}\n",
                 f"{index['formula']} · CAS {index['cas'] or 'none'} · "
                 f"{index['family']} · file `{name}.osd` · [all fluids](index.md){calculator}\n"]
        if aliases:
            parts.append(f"Also found as {', '.join(aliases)}.\n")
        parts += [self.diagrams(name, extra),
                  f"The diagrams show the equation of the file. `ostrel plot {name} ts --models pr,srk,mh` compares "
                  "equations.\n",
                  "## Facts\n", real, remarks,
                  "The tags of the sources are explained with [the parameter files](../Fluids/README.md#fluidscsv).\n",
                  described, "## Saturation\n", self.saturation(name),
                  f"`ostrel sat {name} --units engineering` prints more lines, and takes other equations, other temperatures "
                  "and other outputs.\n", "## Accuracy\n"]
        if len(boiling) == 2:
            parts.append(f"The equation of the file boils at {boiling['computed']:.2f} K at 1 atm, the real fluid at "
                         f"{boiling['measured']:.2f} K. "
                         "[Choosing a model](../Documentation/Choosing-a-model.md#saturation) says when that is a "
                         "test.\n")
        if signs.get("p_sat at Tb, %"):
            deviation = signs["p_sat at Tb, %"].strip("*")
            parts.append(f"At the real fluid's boiling temperature the vapor pressure deviates by {deviation} %.\n")
        compared = self.comparison(name)
        parts.append("Deviations from the fluid's reference equation, in per cent: mean size / largest, and in brackets how "
                     "many states have an answer. Cells are empty where translated volumes change nothing.\n"
                     f"{compared}" if compared else
                     "The accuracy report does not compare this fluid with a reference equation; "
                     "[the twelve fluids that it compares](../Documentation/Accuracy.md) show what to expect.\n")
        return "\n".join(part for part in parts if part)

    def list(self, names):
        rows = [[f"[{row['name']}]({name}.md)", ", ".join(filter(None, [*row["aliases"].split("; "), row["refrigerant"]])),
                 row["formula"].replace(",", ", "), number(self.facts[name]["Tc"]),
                 f"{float(self.facts[name]['Pc']) / 1e5:.4g}", number(row["Tb"]) if row["Tb"] else "",
                 number(self.facts[name]["MM"]), row["cas"], row["family"]]
                for name, row in ((name, self.index[name]) for name in names)]
        head = ["name", "other names", "formula", "Tc, K", "pc, bar", "Tb, K", "M, kg/kmol", "CAS", "family"]
        return (f"# Fluids\n\nThe {len(rows)} fluids that come with the library. Each has a page with its facts, their sources, two "
                "diagrams and what is known of its accuracy. [Catalogue](../Documentation/Catalogue.md) says what each "
                "equation of state does for each fluid.\n\n"
                '<input class="filter" type="search" placeholder="name, formula, CAS number, family" '
                'aria-label="Show the fluids in whose row these words stand">\n'
                '<output class="filter-count"></output>\n'
                "<style>td:nth-child(n + 4) { white-space: nowrap; }</style>\n\n" + table(head, rows) +
                '\n<script src="../_static/catalogue.js"></script>\n')


def place(path):
    """Where a page of the repository stands in the site: the front page is the index."""
    return "index.md" if path == "README.md" else path


def stage(calculator, sources, extra):
    """Copies the calculator, the pages, and all files to which they link."""
    pages = [*PAGES, *(str(file.relative_to(ROOT)) for file in sorted((ROOT / "Documentation").glob("*.md")))]
    contents = (ROOT / "Documentation/Site/contents.md").read_text(encoding="utf-8")
    if calculator:
        shutil.copytree(calculator, extra / "calculator")
        (sources / "Calculator.md").write_text(CALCULATOR, encoding="utf-8")
        contents = contents.replace("\nself\n", "\nself\nCalculator\n", 1)
    for page in pages:
        folder = (ROOT / page).parent

        def staged(link):
            shown, target, fragment = link[1], link[2], link[3] or ""
            path = (folder / target).resolve()
            if "://" in target or not path.is_relative_to(ROOT) or not path.exists():
                return link[0]
            if path.is_dir():  # the site has no page for it
                return shown
            name = str(path.relative_to(ROOT))
            if shown.lower() == "the catalogue" and not fragment:  # the site has a page for each fluid
                name = f"{CATALOGUE}/index.md"
            elif path.suffix == ".md":
                if shown.strip("`") in (path.name, target, name):  # readers of the site know titles and no files
                    shown = re.search(r"^# +(.+)", path.read_text(encoding="utf-8"), re.M)[1].split(":")[0]
            else:
                copy = sources / name
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(path, copy)
                if path.suffix in LANGUAGES:
                    (sources / f"{name}.md").write_text(
                        f"---\norphan: true\n---\n\n# {path.name}\n\n```{{literalinclude}} {path.name}\n"
                        f":language: {LANGUAGES[path.suffix]}\n```\n", encoding="utf-8")
                    name += ".md"
            return f"[{shown}]({os.path.relpath(place(name), os.path.dirname(place(page)) or '.')}{fragment})"

        text = LINK.sub(staged, (ROOT / page).read_text(encoding="utf-8"))
        copy = sources / place(page)
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_text(text + (f"\n{contents}" if page == "README.md" else ""), encoding="utf-8")


def main():
    command, calculator, sources, extra = Command(sys.argv[1]), sys.argv[2], *map(pathlib.Path, sys.argv[3:5])
    for folder in sources, extra:
        shutil.rmtree(folder, ignore_errors=True)
        (folder / CATALOGUE).mkdir(parents=True)
    stage(calculator, sources, extra)
    catalogue = Catalogue(command)
    names = sys.argv[5:] or list(catalogue.index)
    if unknown := set(names) - set(catalogue.index):
        raise SystemExit(f"Fluids/index.csv has no file {', '.join(sorted(unknown))}")
    (sources / CATALOGUE / "index.md").write_text(catalogue.list(names), encoding="utf-8")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, text in zip(names, pool.map(lambda name: catalogue.page(name, extra), names)):
            (sources / CATALOGUE / f"{name}.md").write_text(text, encoding="utf-8")


main()
