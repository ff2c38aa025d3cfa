#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The example in the head of a public header or module must compile without warnings and print what its comment says.

    check_header_example.py FILE LIBRARY FLUIDS FAILURE COMPILER [COMPILER_OPTION...]

The example is the indented block from the first #include to the closing brace of main, or from the first line "program"
to "end program". Its comment "prints TEXT" has the expected output. Without fluids, the program must end with status 1
and print the library's error text, which begins with FAILURE.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

# By the end of the file's name: what every line of the head begins with, first and last line of an example, name of its
# source, and the compiler's options.
LANGUAGES = {
    ".h": (r" \*", "#include.*", r"\}", "example.c", ["-std=c99", "-pedantic", "-Wconversion"]),
    ".hpp": ("//", "#include.*", r"\}", "example.cpp", ["-std=c++20", "-pedantic", "-Wconversion"]),
    ".f90": ("!!", "program .*", "end program.*", "example.f90", ["-std=f2008"]),
}


def example(header, language):
    begin, first, last = LANGUAGES[language][:3]
    found = re.search(rf"^{begin}     {first}$(?:\n{begin}.*$)*?\n{begin}     {last}$", header.read_text(encoding="utf-8"), re.M)
    if not found:
        sys.exit(f"{header} has no example")
    return re.sub(rf"^{begin}(     )?", "", found[0], flags=re.M) + "\n"


def run(program, fluids):
    done = subprocess.run([program], env=os.environ | {"OSTREL_FLUIDS": str(fluids)}, capture_output=True, text=True)
    return done.returncode, (done.stdout or done.stderr).strip()


def main():
    header, library, fluids = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
    language = header.suffix
    text = example(header, language)
    expected = re.findall(r"[/!]/? prints (.+)$", text, re.M)
    with tempfile.TemporaryDirectory() as folder:
        source, program = pathlib.Path(folder) / LANGUAGES[language][3], pathlib.Path(folder) / "example"
        source.write_text(text, encoding="utf-8")
        # The source of a Fortran module is compiled with the program.
        with_it = [f"-J{folder}", header] if language == ".f90" else []
        subprocess.run([*sys.argv[5:], *LANGUAGES[language][4], "-Wall", "-Wextra", "-Werror", f"-I{header.parent}",
                        *with_it, source, "-o", program, library, f"-Wl,-rpath,{library.parent}"], check=True)
        answer, failure = run(program, fluids), run(program, folder)
    print(*answer, *failure, sep="\n")
    return 0 if ([answer], failure[0], failure[1].startswith(sys.argv[4])) == (
        [(0, output) for output in expected], 1, True) else 1


sys.exit(main())
