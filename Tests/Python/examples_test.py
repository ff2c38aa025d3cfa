# SPDX-License-Identifier: MIT
"""The example programs in Python print what is expected, and draw their pictures into the folder that they are given."""
import importlib.util
import os
import pathlib
import subprocess
import sys

import matplotlib.image
import numpy as np
import pytest

SOURCE = pathlib.Path(os.environ["OSTREL_SOURCE"])
PROGRAMS = SOURCE / "Examples/python"
ARGUMENTS = {"models_and_references": ["MDM"]}  # before the folder


def load(path):
    """A program as a module."""
    specification = importlib.util.spec_from_file_location(path.stem, path)
    module = importlib.util.module_from_spec(specification)
    specification.loader.exec_module(module)
    return module


def run(name, folder, *more):
    """Lets a program run, which must write its picture and nothing else."""
    arguments = [PROGRAMS / f"{name}.py", *more, *ARGUMENTS.get(name, []), folder / "pictures"]
    done = subprocess.run([sys.executable, *map(str, arguments)], cwd=folder, capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    assert [str(path.relative_to(folder)) for path in sorted(folder.rglob("*"))] == ["pictures", f"pictures/{name}.png"]
    return done


def same_output(done, name):
    printed = done.stdout.splitlines()
    expected = (SOURCE / f"Examples/expected/python/{name}.txt").read_text(encoding="utf-8").splitlines()
    differs = load(SOURCE / "Tests/Package/compare_output.py").differs
    wrong = [f"< {a}\n> {b}" for a, b in zip(expected, printed) if differs(a, b, units=3)]
    assert len(expected) == len(printed) and not wrong, "\n".join(wrong or printed)


@pytest.mark.parametrize("name", [path.stem for path in sorted(PROGRAMS.glob("*.py"))])
def test_output_and_picture(name, tmp_path):
    done = run(name, tmp_path)
    same_output(done, name)
    assert not done.stderr
    drawn = (matplotlib.image.imread(tmp_path / f"pictures/{name}.png")[:, :, :3] < 0.9).any(axis=2)
    height, width = (size // 2 for size in drawn.shape)
    assert height > 250 and width > 500
    quarters = [drawn[y:y + height, x:x + width] for y in (0, height) for x in (0, width)]
    assert min(np.mean(quarter) for quarter in quarters) > 0.02


def test_processes_get_the_same(tmp_path):
    """On a busy machine distributed complains of processes that are slow to end."""
    pytest.importorskip("distributed", reason="python3-distributed is not installed")
    same_output(run("fleet_study", tmp_path, "--processes", "2"), "fleet_study")


def test_picture_of_the_phases(tmp_path):
    """The picture of the documentation is the program's."""
    subprocess.run([sys.executable, PROGRAMS / "phases.py", tmp_path, "svg"], check=True, stdout=subprocess.DEVNULL)
    slim = load(SOURCE / "scripts/slim_svg.py").slim((tmp_path / "phases.svg").read_text(encoding="utf-8"))
    assert f"{slim}\n" == (SOURCE / "Documentation/Pictures/phases.svg").read_text(encoding="utf-8")


def test_throat_of_the_nozzle():
    """The flow of the example is that of the command: the throat, and the outlet."""
    import json

    import ostrel

    nozzle = load(PROGRAMS / "dense_gas_nozzle.py")
    command = pathlib.Path(os.environ["OSTREL_BUILD"]) / "CommandLine/ostrel"
    if not command.exists():
        pytest.skip("the command is not built")
    flow = nozzle.expanded(ostrel.Fluid("mdm", model="pr"))
    shown = json.loads(subprocess.run(
        [command, "nozzle", "mdm", "pt", str(nozzle.P_TOTAL), str(nozzle.T_TOTAL), "--to", str(nozzle.P_OUTLET),
         "--model", "pr", "--units", "si", "--json"], check=True, capture_output=True, text=True).stdout)
    steps = {step["place"]: step for step in shown["steps"]}
    assert flow.p_throat == pytest.approx(steps["throat"]["p"], rel=1e-6)
    for name, values in (("velocity", flow.velocity), ("c", flow.sound), ("area_ratio", flow.area),
                         ("fundamental", flow.fundamental)):
        assert values[-1] == pytest.approx(steps["outlet"][name], rel=1e-7)
    assert (flow.fundamental < 1).all() and (np.diff(flow.sound) > 0).all()
