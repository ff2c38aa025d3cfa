# SPDX-License-Identifier: MIT
"""A wheel is built without a network, and works in an empty virtual environment, wherever that is moved."""
import os
import pathlib
import subprocess
import sys
import zipfile

import pytest

SOURCE = pathlib.Path(os.environ["OSTREL_SOURCE"])
# The library is compiled once more; without optimisation and in large units, this takes seconds.
FAST = {"CMAKE_ARGS": "-DCMAKE_BUILD_TYPE=None -DCMAKE_UNITY_BUILD=ON"}
PROGRAM = """
import os, ostrel, pathlib
place = pathlib.Path(ostrel.__file__).parent
toluene = ostrel.Fluid("toluene")
assert len(ostrel.fluids()) > 300 and str(place) in toluene.texts["source"], toluene.texts["source"]
assert str(place) in open("/proc/self/maps").read()
print(round(toluene.state(p=1e5, T=400.0).d, 3), ostrel.__version__)
"""


def run(*command, **more):
    environment = {name: value for name, value in os.environ.items()
                   if not name.startswith("OSTREL_") and name != "PYTHONPATH"} | more
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, env=environment)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def wheel(tmp_path_factory):
    folder = tmp_path_factory.mktemp("wheel")
    run(sys.executable, "-m", "pip", "wheel", "--no-index", "--no-deps", "--no-build-isolation", "--wheel-dir", folder,
        SOURCE / "Interfaces/Python", **FAST)
    wheels = list(folder.glob("*.whl"))
    assert len(wheels) == 1
    return wheels[0]


def test_content(wheel):
    names = zipfile.ZipFile(wheel).namelist()
    assert sum("libostrel.so" in name for name in names) == 1
    assert sum(name.endswith(".osd") for name in names) == len(list((SOURCE / "Fluids").glob("*.osd")))
    for name in ("ostrel/py.typed", "ostrel/_core.pyi", "ostrel/fluid.py"):
        assert name in names
    assert not [name for name in names if name.endswith((".h", ".cmake", ".md"))]
    assert "none-any" not in wheel.name


def test_empty_environment(wheel, tmp_path):
    place = tmp_path / "environment"
    run(sys.executable, "-m", "venv", "--system-site-packages", place)
    run(place / "bin/python", "-m", "pip", "install", "--no-index", "--no-deps", wheel)
    version = (SOURCE / "VERSION").read_text(encoding="utf-8").strip()
    assert run(place / "bin/python", "-c", PROGRAM) == f"2.85 {version}\n"
    package = next(place.glob("lib/python*/site-packages"))
    moved = tmp_path / "moved"
    package.rename(moved)
    assert run(sys.executable, "-c", PROGRAM, PYTHONPATH=str(moved)) == f"2.85 {version}\n"
