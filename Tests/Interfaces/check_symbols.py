#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The library must export the functions of the C headers, those of the first one plain and with a trailing underscore,
those of the second one plain, everything that the module headers declare, and nothing else.

    check_symbols.py list NM LIBRARY C_HEADER C_HEADER LIST      compares all symbols with the list
    check_symbols.py update NM LIBRARY C_HEADER C_HEADER LIST    writes the list
    check_symbols.py modules NM LIBRARY FOLDER COMPILER...
        requires that the declarations of the headers in the folder are exported: everything in a visible namespace, and
        names with "__" in any namespace

The list has the names in the form that g++ and nm give them on a 64-bit Linux. Inline variables are left out: it
depends on the optimisation whether the library has one, and every program has its own copy.
"""
import pathlib
import re
import subprocess
import sys



def exported(nm, library):
    listing = subprocess.run([nm, "-D", "-C", "--defined-only", library], check=True, capture_output=True, text=True)
    symbols = (line.split(" ", 2)[1:] for line in listing.stdout.splitlines())
    return sorted({name for kind, name in symbols if not inline_variable(kind, name)})


def inline_variable(kind, name):
    # Such a variable is unique in the process or weak; the tables of types are weak too.
    return kind == "u" or (kind == "V" and not name.startswith(("vtable ", "typeinfo ")))


def c_functions(header):
    text = re.sub(r"/\*.*?\*/", "", pathlib.Path(header).read_text(encoding="utf-8"), flags=re.S)
    text = re.sub(r"\(\*\w+\)\([^()]*\)", "", text)  # arguments that are functions
    return re.findall(r"^\w[\w \*]*?\b(\w+)\([^()]*\);", text, re.M | re.S)


def against_list(symbols, functions, plain_functions, path, update):
    c_names = sorted(name for name in symbols if "::" not in name)
    wanted = sorted([name + end for name in functions for end in ("", "_")] + plain_functions)
    if min(len(functions), len(plain_functions)) < 10 or c_names != wanted:
        yield "The C symbols are " + " ".join(c_names) + "\n    and not " + " ".join(wanted)
        return
    if update:
        path.write_text("\n".join(symbols) + "\n", encoding="utf-8")
    listed = path.read_text(encoding="utf-8").splitlines()
    yield from (f"not in the list: {name}" for name in symbols if name not in listed)
    yield from (f"not exported:    {name}" for name in listed if name not in symbols)
    if listed != symbols:
        yield ("If that is intended, build the target update_exported_symbols, which writes "
               f"Tests/Interfaces/{path.name}, and commit it.")


def preprocessed(folder, compiler):
    """The text of all headers in the folder behind the preprocessor, without headers from elsewhere."""
    headers = sorted(folder.rglob("*.h"))
    source = "".join(f'#include "{header}"\n' for header in headers)
    text = subprocess.run([*compiler, "-E", "-x", "c++", "-"], input=source, check=True, capture_output=True,
                          text=True).stdout
    lines, inside = [], False
    for line in text.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            inside = marker[1].startswith(str(folder))
        elif inside and not line.startswith("#"):
            lines.append(line)
    return "\n".join(lines)


def statements(text):
    """(namespace, whether it is visible, statement) of everything that ends in a semicolon directly in a namespace."""
    scopes = []  # for each open brace: the namespace's name and whether it is visible, or None
    statement, parentheses = "", 0
    for token in re.findall(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'|[{}();]|[^{}();"\']+', text):
        parentheses += {"(": 1, ")": -1}.get(token, 0)
        if parentheses > 0 or token not in "{};":
            statement += token
            continue
        if token == "{":
            opened = re.match(r'\s*namespace (\w+)( __attribute__\(\(visibility\("default"\)\)\))?\s*$', statement)
            scopes.append((opened[1], bool(opened[2])) if opened else None)
        elif token == "}":
            scopes.pop()
        elif len(scopes) == 1 and scopes[0]:
            yield *scopes[0], " ".join(statement.split())
        statement = ""


def declared(text):
    for namespace, visible, statement in statements(text):
        bare = re.sub(r'^__attribute__ ?\(\(visibility\("default"\)\)\) ?', "", statement)
        visible, statement = visible or bare != statement, bare
        if re.match(r"(using|typedef|template|inline|constexpr|static_assert|struct|class|enum)\b|\(\)$|$", statement):
            continue  # also the call behind a lambda that gives a constant
        function = re.match(r"[^(=]*?(\w+) ?\(", statement)
        variable = re.match(r"extern [^(=]*?(\w+)$", statement)
        if not function and not variable:
            sys.exit(f"cannot tell what this declares: {statement}")
        name = (function or variable)[1]
        if visible or "__" in name:
            yield f"{namespace}::{name}"


def against_headers(symbols, names):
    # The names without their arguments and without the notes of the compiler behind them.
    bare = {re.split(r"[(\[]", symbol)[0] for symbol in symbols}
    yield from (f"declared and not exported: {name}" for name in sorted(set(names) - bare))
    if len(set(names)) < 200:
        yield f"only {len(set(names))} declarations found"


def main():
    mode, nm, library = sys.argv[1:4]
    symbols = exported(nm, library)
    if mode == "modules":
        folder = pathlib.Path(sys.argv[4])
        names = list(declared(preprocessed(folder, [*sys.argv[5:], f"-I{folder}"])))
        complaints = list(against_headers(symbols, names))
        print(f"{len(set(names))} functions and variables declared")
    else:
        header, plain_header, path = sys.argv[4:]
        complaints = list(against_list(symbols, c_functions(header), c_functions(plain_header), pathlib.Path(path),
                                       mode == "update"))
        print(f"{len(symbols)} symbols")
    print(*complaints, sep="\n")
    return 1 if complaints else 0


sys.exit(main())
