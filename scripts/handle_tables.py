#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What ostrel_list shows, as C++ and as tables of the documentation; there also how far saturation lines reach.

    handle_tables.py ROOT LIBRARY           writes Include/ostrel_names.hpp and the tables of Documentation/Handles.md
    handle_tables.py ROOT LIBRARY --check   compares them, and fails if they are not current
    handle_tables.py --self-test            shows that a page without a table is refused
"""
import ctypes
import os
import pathlib
import re
import sys
import textwrap

PARTS = ("name", "unit", "description")
HEADINGS = {
    "inputs": ("pair", "units", "inputs"),
    "outputs": ("output", "unit", "meaning"),
    "constants": ("constant", "unit", "meaning"),
    "texts": ("text", None, "meaning"),
    "models": ("model", None, "equation of state"),
    "options": ("key", "values", "meaning"),
    "statuses": ("status", "number", "meaning"),
}
LINES = "lines" # the table of saturation lines
MARKED = re.compile(r"(<!-- scripts/make_handle_tables: (\w+) -->\n).*?(<!-- end -->)", re.S)


def rows_of(library, kind):
    """The rows of a list, each a name, a unit and a description."""
    function = library.ostrel_list
    function.restype, function.argtypes = ctypes.c_char_p, (ctypes.c_char_p, ctypes.c_size_t, ctypes.c_char_p)
    rows = []
    while function(kind.encode(), len(rows), b"name") is not None:
        rows.append([function(kind.encode(), len(rows), part.encode()).decode() for part in PARTS])
    return rows


def cell(text, column):
    """A cell of a table, where a vertical line would end it. Names and the words of options are code."""
    code = column == "name" or "|" in text
    return ", ".join(f"`{word}`" for word in text.split("|")) if code else text


def table(kind, rows):
    columns = [i for i, heading in enumerate(HEADINGS[kind]) if heading]
    lines = [[HEADINGS[kind][i] for i in columns], ["---"] * len(columns)]
    lines += [[cell(row[i], PARTS[i]) or "any text" for i in columns] for row in rows]
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def page(text, tables):
    """The page with its tables made anew. A table without a place is an error."""
    places = [match[2] for match in MARKED.finditer(text)]
    if sorted(places) != sorted(tables):
        raise ValueError(f"the page has the tables {places}; {sorted(tables)} are wanted")
    return MARKED.sub(lambda match: match[1] + tables[match[2]] + match[3], text)


def every_fluid(library):
    """The files of all fluids of the folder."""
    files = []
    take = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p)
    library.ostrel_fluid_find(b"", take(lambda user, file, name: files.append(file)), None)
    return sorted(files)


def reach(library, file, model):
    """t_sat_min/t_crit of a fluid, and whether its covolume bounds its volumes."""
    fluid = ctypes.c_void_p()
    if library.ostrel_fluid_open(file, b"model=" + model.encode(), ctypes.byref(fluid)) != 0:
        raise ValueError(f"{file.decode()} cannot be opened with {model}")
    constant = library.ostrel_fluid_constant
    constant.restype, constant.argtypes = ctypes.c_double, (ctypes.c_void_p, ctypes.c_char_p)
    found = constant(fluid, b"t_sat_min") / constant(fluid, b"t_crit"), constant(fluid, b"v_min") > 0
    library.ostrel_fluid_close(fluid)
    return found


def lines(library):
    text = ("| model | lowest | median | highest | fluids with v_min = 0 |\n" + "| --- " * 5 + "|\n")
    for model in ("vdw", "rk", "srk", "pr", "cii", "mh"):
        rows = [(*reach(library, file, model), file.decode()) for file in every_fluid(library)]
        ends = sorted((end, file) for end, bounded, file in rows)
        columns = [f"{end:.2g} ({file})" for end, file in (ends[0], ends[-1])]
        columns.insert(1, f"{ends[len(ends) // 2][0]:.2g}")
        text += f"| `{model}` | " + " | ".join(columns) + f" | {sum(not row[1] for row in rows)} of {len(rows)} |\n"
    return text


def array(name, words):
    body = textwrap.fill(", ".join(f'"{word}"' for word in words), 116, break_long_words=False)
    return f"inline constexpr std::string_view {name}[] = {{\n{textwrap.indent(body, '    ')}}};\n"


def header(lists):
    names = {kind: [row[0] for row in rows] for kind, rows in lists.items()}
    options = ",\n".join(f'    {{"{key}", "{values}"}}' for key, values, _ in lists["options"])
    return ("// SPDX-License-Identifier: MIT\n"
            "// The names of ostrel_list, for the checks of ostrel.hpp. scripts/make_handle_tables makes this file.\n"
            "#ifndef OSTREL_NAMES_HPP\n#define OSTREL_NAMES_HPP\n\n#include <string_view>\n\n"
            "namespace ostrel::names {\n\n"
            + "\n".join(array(kind, names[kind]) for kind in ("inputs", "outputs", "constants", "texts")) +
            "\n/// An option with its values as \"a|b\"; without values, any text is one.\n"
            "struct option {\n    std::string_view key;\n    std::string_view values;\n};\n"
            f"inline constexpr option options[] = {{\n{options},\n}};\n\n"
            "} // namespace ostrel::names\n\n#endif\n")


def self_test():
    tables = {kind: table(kind, [["x", "a|b", "y"]]) for kind in HEADINGS}
    text = "".join(f"<!-- scripts/make_handle_tables: {kind} -->\nold\n<!-- end -->\n" for kind in tables)
    made = page(text, tables)
    assert "old" not in made and page(made, tables) == made and "| `x` | `a`, `b` | y |\n" in made
    for damaged in (made.replace("make_handle_tables: texts", "x"), made + made, made.replace("<!-- end -->", "", 1)):
        try:
            page(damaged, tables)
        except ValueError:
            continue
        raise AssertionError("a damaged page is accepted")


def main():
    if sys.argv[1:] == ["--self-test"]:
        self_test()
        return 0
    root, library = pathlib.Path(sys.argv[1]), ctypes.CDLL(str(pathlib.Path(sys.argv[2]).resolve()))
    os.environ["OSTREL_FLUIDS"] = str(root / "Fluids")
    lists = {kind: rows_of(library, kind) for kind in HEADINGS}
    tables = {kind: table(kind, rows) for kind, rows in lists.items()} | {LINES: lines(library)}
    outdated = []
    for name, make in (("Include/ostrel_names.hpp", lambda text: header(lists)),
                       ("Documentation/Handles.md", lambda text: page(text, tables))):
        file = root / name
        text = file.read_text(encoding="utf-8") if file.exists() else ""
        if make(text) != text:
            outdated.append(name)
            if "--check" not in sys.argv:
                file.write_text(make(text), encoding="utf-8")
    print(*([f"{name} has changed" for name in outdated] or ["current"]), sep="\n")
    return 1 if outdated and "--check" in sys.argv else 0


if __name__ == "__main__":
    sys.exit(main())
