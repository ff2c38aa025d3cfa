# SPDX-License-Identifier: MIT
"""Diagrams and cycles."""
import json
import math
import os
import pathlib
import pickle
import subprocess

import matplotlib
import matplotlib.pyplot
import numpy as np
import pint
import pytest

import ostrel
from ostrel import _core

matplotlib.use("Agg")
CYCLES = sorted((pathlib.Path(os.environ["OSTREL_SOURCE"]) / "Examples/Cycles").glob("*.toml"))
TOLUENE = ostrel.Fluid("toluene")
DEFINITION = {"fluid": "toluene", "kind": "rankine", "evaporator": {"p": "15 bar", "superheat": "5 K"},
              "condenser": {"t": "45 degC"}, "turbine": {"efficiency": 0.85}, "pump": {"efficiency": 0.7}}


@pytest.fixture(autouse=True)
def closed_figures():
    yield
    matplotlib.pyplot.close("all")


@pytest.mark.parametrize("kind, x, y", _core.diagram_kinds())
def test_lines_of_diagrams(kind, x, y):
    """Each point of the saturation line and of an isoline is a state of the fluid there."""
    ax = getattr(ostrel.plot, kind)(TOLUENE)
    lines = {line.get_label(): line.get_xydata() for line in ax.get_lines()}
    for letter, scale in ((x, ax.get_xscale()), (y, ax.get_yscale())):
        assert scale == ("log" if letter in "pv" else "linear")
    dome = lines["saturation line"]
    assert len(dome) > 50
    on_line = next((column for column, letter in enumerate((x, y)) if letter in "pt"), None)
    if on_line is None:
        q, status = TOLUENE(x + y, dome[:, 0], dome[:, 1], "q", errors="nan")
        assert not status.any() and (np.isnan(q) | (q < 1e-6) | (q > 1 - 1e-6)).all()
    else:
        given, other = (x, y)[on_line], (y, x)[on_line]
        phases = TOLUENE.saturated(given, dome[:, on_line], other)
        errors = np.min([np.abs(phase / dome[:, 1 - on_line] - 1) for phase in phases], axis=0)
        assert errors.max() < 1e-9
    names = {row[3]: letter for letter, row in _core.properties().items()}
    families = [(names[label], points) for label, points in lines.items() if label in names]
    assert len(families) >= 2
    for letter, points in families:
        values, status = TOLUENE(x + y, points[:, 0], points[:, 1], letter, errors="nan")
        values = values[(status == 0) & np.isfinite(values)]
        assert len(values) > 3
        # A corner on the saturation line may be either phase.
        value = np.median(values)
        assert (np.abs(values - value) <= 1e-6 * abs(value) + 1e-9).mean() > 0.9


def test_units_and_ranges_of_diagrams():
    si, engineering = (ostrel.plot.ph(TOLUENE, x=(-6e5, 2e5), lines="t", units=units) for units in ("si", "engineering"))
    assert si.get_xlim() == pytest.approx((-6e5, 2e5)) and engineering.get_xlim() == pytest.approx((-600, 200))
    assert engineering.get_ylabel() == "pressure $p$ [bar]" and si.get_ylabel() == "pressure $p$ [Pa]"
    assert engineering.texts and not ostrel.plot.ph(TOLUENE, labels=False).texts
    ax = matplotlib.pyplot.figure().add_subplot()
    assert ostrel.plot.ts(TOLUENE, ax) is ax
    assert ostrel.plot.ts(ostrel.Fluid("nitrogen", model="ig")).get_lines()


@pytest.mark.parametrize("draw, exception", [
    (lambda: ostrel.plot.diagram("zz", TOLUENE), ostrel.ArgumentError),
    (lambda: ostrel.plot.ts(TOLUENE, x=(1.0, 1.0)), ostrel.ArgumentError),
    (lambda: ostrel.plot.ph(TOLUENE, y=(-1.0, 1.0)), ostrel.ArgumentError),
    (lambda: ostrel.plot.ts(TOLUENE, lines="tz"), ostrel.ArgumentError),
    (lambda: ostrel.plot.ts(TOLUENE, units="none"), ostrel.ArgumentError),
    (lambda: ostrel.plot.ts(ostrel.Fluid("toluene", states="surface")), ostrel.StudyError)])
def test_diagrams_that_cannot_be(draw, exception):
    with pytest.raises(exception):
        draw()


@pytest.mark.parametrize("path", CYCLES, ids=lambda path: path.stem)
def test_cycles_are_those_of_the_command(path):
    cycle = ostrel.cycle(path)
    assert list(cycle.figures) == [name for name, _, _ in _core.cycle_figures()]
    command = pathlib.Path(os.environ["OSTREL_BUILD"]) / "CommandLine/ostrel"
    if not command.exists():
        pytest.skip("the command is not built")
    shown = json.loads(subprocess.run([command, "cycle", path, "--json", "--units", "si"], check=True,
                                      capture_output=True, text=True).stdout)
    for name, figure in shown["figures"].items():
        assert getattr(cycle, name) == pytest.approx(figure["value"], rel=1e-6), name
    assert len(shown["figures"]) == sum(not math.isnan(value) for value in cycle.figures.values())
    assert len(shown["states"]) == len(cycle.states)
    for row, (place, state) in zip(shown["states"], cycle.states.items()):
        assert row["state"] == place and state.h == pytest.approx(row["h"], rel=1e-6)


def test_balances_of_a_cycle():
    cycle = ostrel.Cycle(DEFINITION)
    h = {place: state.h for place, state in cycle.states.items()}
    turbine, pump = h["turbine inlet"] - h["turbine outlet"], h["pump outlet"] - h["pump inlet"]
    heat = h["turbine inlet"] - h["pump outlet"]
    assert cycle.net_work == pytest.approx(turbine - pump) and cycle.heat_in == pytest.approx(heat)
    assert cycle.efficiency == cycle.figures["efficiency"] == pytest.approx((turbine - pump) / heat)
    ideal = cycle.fluid("ps", cycle.states["turbine outlet"].p, cycle.states["turbine inlet"].s, "h")
    assert turbine == pytest.approx(0.85 * (h["turbine inlet"] - ideal))
    assert cycle.states["turbine inlet"].p == 15e5 and math.isnan(cycle.cop_heating)
    for process in cycle.processes:
        assert process.states.h[[0, -1]] == pytest.approx([h[process.first], h[process.last]])


def test_ways_of_definition():
    units = pint.UnitRegistry()
    wanted = dict(ostrel.Cycle(DEFINITION).figures)
    for evaporator, condenser in (({"p": 15e5, "superheat": 5}, {"t": 318.15}),
                                  ({"p": 15 * units.bar, "superheat": units.Quantity(5, "delta_degC")},
                                   {"t": units.Quantity(45, "degC")})):
        made = ostrel.Cycle(DEFINITION | {"evaporator": evaporator, "condenser": condenser})
        assert list(made.figures.values()) == pytest.approx(list(wanted.values()), nan_ok=True)
    opened = ostrel.Cycle(DEFINITION | {"fluid": TOLUENE})
    assert opened.fluid is TOLUENE and opened.efficiency == wanted["efficiency"]
    changed = opened.changed({"evaporator.p": "20 bar", "pump.efficiency": None})
    assert changed.values["evaporator.p"] == 20e5 and "pump.efficiency" not in changed.values
    assert changed.efficiency > opened.efficiency and opened.values["evaporator.p"] == 15e5
    assert pickle.loads(pickle.dumps(changed)).figures["efficiency"] == changed.efficiency
    assert ostrel.Cycle(DEFINITION | {"model": "pr"}).fluid.model == "pr"


@pytest.mark.parametrize("change, exception, message", [
    ({"fluid": "no such fluid"}, ostrel.OpeningError, "no such fluid"),
    ({"fluid": TOLUENE, "model": "pr"}, ostrel.ArgumentError, "open already"),
    ({"kind": "none"}, ostrel.ArgumentError, "kind of cycle"),
    ({"boiler": {}}, ostrel.ArgumentError, "boiler"),
    ({"evaporator": 1.0}, ostrel.ArgumentError, "evaporator"),
    ({"evaporator": {"pressure": 1.0}}, ostrel.ArgumentError, "evaporator.p,"),
    ({"evaporator": {"p": "15 K"}}, ostrel.ArgumentError, "temperature"),
    ({"evaporator": {"p": True}}, ostrel.ArgumentError, "evaporator.p"),
    ({"condenser": {}}, ostrel.StudyError, "condenser"),
    ({"turbine": {"efficiency": 2.0}}, ostrel.StudyError, "turbine.efficiency")])
def test_definitions_that_are_wrong(change, exception, message):
    with pytest.raises(exception, match=message):
        ostrel.Cycle(DEFINITION | change)


def test_files_that_are_wrong(tmp_path):
    (tmp_path / "wrong.toml").write_text("fluid = ", encoding="utf-8")
    with pytest.raises(ostrel.ArgumentError, match="wrong.toml"):
        ostrel.cycle(tmp_path / "wrong.toml")
    with pytest.raises(FileNotFoundError):
        ostrel.cycle(tmp_path / "none.toml")


def test_drawing_a_cycle():
    cycle = ostrel.Cycle(DEFINITION)
    for kind, _, _ in _core.diagram_kinds():
        ax = cycle.plot(kind, units="engineering", lines="")
        assert len(ax.get_lines()) == 2 + len(cycle.processes) + len(cycle.states)
        shown = np.concatenate([line.get_xydata() for line in ax.get_lines()[2:]])
        for limits, values in zip((ax.get_xlim(), ax.get_ylim()), shown.T):
            assert limits[0] < values.min() and values.max() < limits[1]
        ax.figure.canvas.draw()
        numbers = [int(number) for text in ax.texts for number in text.get_text().split(", ")]
        assert sorted(numbers) == list(range(1, len(cycle.states) + 1))
    assert cycle.plot("ts", x=(-500.0, 500.0)).get_xlim() == (-500.0, 500.0)
    with pytest.raises(ostrel.ArgumentError):
        cycle.plot("zz")
