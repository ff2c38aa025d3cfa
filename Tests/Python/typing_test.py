# SPDX-License-Identifier: MIT
"""The package's own types, and those that a program sees."""
import os
import pathlib
import re
import subprocess
import sys

import pytest

import ostrel
from ostrel import _core

PACKAGE = pathlib.Path(os.environ["OSTREL_SOURCE"]) / "Interfaces/Python/ostrel"


@pytest.fixture(scope="module")
def mypy(tmp_path_factory):
    cache = tmp_path_factory.mktemp("cache")  # of the types of numpy, which take longest

    def run(*arguments, folder, **environment):
        options = ["--config-file", pathlib.Path(__file__).with_name("mypy.ini"), "--cache-dir", cache]
        return subprocess.run([sys.executable, "-m", "mypy", *map(str, [*options, *arguments])], cwd=folder,
                              env=os.environ | environment, capture_output=True, text=True)

    return run


def test_package(mypy):
    done = mypy("ostrel", folder=PACKAGE.parent)
    assert done.returncode == 0, done.stdout + done.stderr


def test_examples(mypy):
    programs = sorted((PACKAGE.parents[2] / "Examples/python").glob("*.py"))
    done = mypy(*programs, folder=PACKAGE.parent)
    assert len(programs) >= 4 and done.returncode == 0, done.stdout + done.stderr


def test_program(mypy, tmp_path):
    (tmp_path / "program.py").write_text("""
import ostrel
fluid: ostrel.Fluid = ostrel.Fluid.from_text("text", model="pr")
state = fluid.state(p=1e5, T=400.0)
wrong: int = fluid.saturation(T=400.0).liquid
reveal_type(state)
reveal_type(ostrel.fluids("x")[0].file)
fluid("pt", 1e5, 400.0)
""", encoding="utf-8")
    done = mypy("program.py", folder=tmp_path, MYPYPATH=str(PACKAGE.parent))
    for line in ('5: error: Incompatible types in assignment', '6: note: Revealed type is "ostrel',
                 '7: note: Revealed type is "builtins.str"', '8: error: Missing positional argument'):
        assert "program.py:" + line in done.stdout, done.stdout
    assert "Found 2 errors" in done.stdout


def test_stub_has_what_the_module_has():
    stub = (PACKAGE / "_core.pyi").read_text(encoding="utf-8")

    def names_of(text):
        return set(re.findall(r"^ *(?:def|class) (\w+)|^(\w+):", text, re.M))

    written = {a or b for a, b in names_of(stub)}
    made = {name for name in dir(_core) if not name.startswith("__")}
    made |= {name for name in vars(_core.Handle) if not name.startswith("_")}
    assert written == made
    assert ostrel.__version__ == _core.version
