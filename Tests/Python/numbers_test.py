# SPDX-License-Identifier: MIT
"""The package's numbers are those of the C interface, in every bit."""
import os
import pathlib

import numpy as np
import pytest

import ostrel
from c_library import Handle, listed, same_bits

OUTPUTS = listed("outputs")
ALL = ",".join(OUTPUTS + ["dp/dd|u", "dh/dt|s", "dv/dp|h"])


def reference_states():
    """{(fluid, options): (temperatures, volumes)} of the reference file."""
    states, current = {}, None
    path = pathlib.Path(os.environ["OSTREL_SOURCE"]) / "Tests/Reference/handles.txt"
    for line in path.read_text(encoding="utf-8").splitlines():
        words = line.split()
        if words and words[0] == "fluid":
            current = states.setdefault((words[1], "model=" + " ".join(words[2:])), [])
        elif words and words[0] == "state":
            current.append((float(words[1]), float(words[4])))
    return {key: np.array(rows).T for key, rows in states.items() if rows}


STATES = reference_states()


def test_reference_file_is_read():
    assert len(STATES) >= 6 and sum(len(t) for t, _ in STATES.values()) >= 100


@pytest.mark.parametrize("fluid, options", STATES)
def test_states_of_the_reference_file(fluid, options):
    ours = ostrel.Fluid(fluid, **dict(option.strip().split("=") for option in options.split(";")))
    theirs = Handle(fluid, options)
    t, v = (np.ascontiguousarray(row) for row in STATES[fluid, options])
    wanted, wanted_status = theirs.evaluate("tv", ALL, t, v)
    made, status = ours("tv", t, v, ALL, errors="nan")
    assert np.array_equal(status, wanted_status)
    assert same_bits(np.array(made).T, wanted)
    threads, _ = ours("tv", t, v, ALL, workers=3, errors="nan")
    assert same_bits(np.array(threads).T, wanted)

    # The same states solved once, from pressure and enthalpy, all together and one by one.
    solved = (wanted_status == 0) & np.isfinite(wanted[:, :5]).all(axis=1)
    p, h = (np.ascontiguousarray(wanted[solved, OUTPUTS.index(name)]) for name in ("p", "h"))
    wanted, wanted_status = theirs.evaluate("hp", ALL, h, p)
    states = ours.state(p=p, h=h, errors="nan")
    made = states[ALL]
    for i, name in enumerate(OUTPUTS):
        assert same_bits(made[i], wanted[:, i])
        assert same_bits(getattr(states, name + "_" * (name == "lambda")), wanted[:, i])
    for i in np.flatnonzero(wanted_status == 0)[:10]:
        one = ours.state(p=float(p[i]), h=float(h[i]))
        assert same_bits([one[name] for name in ALL.split(",")], wanted[i])
        assert same_bits([ours("ph", float(p[i]), float(h[i]), name) for name in ALL.split(",")], wanted[i])


@pytest.mark.parametrize("model", ["vdw", "srk", "pr", "rk", "cii", "mh"])
def test_saturated_phases(model):
    ours, theirs = ostrel.Fluid("propane", model=model), Handle("propane", f"model={model}")
    t = np.linspace(max(0.6 * ours.t_crit, 1.001 * ours.t_sat_min), ours.t_crit, 7)
    liquid, vapor, status = theirs.saturation("t", ALL, t)
    assert not status.any()
    made = ours.saturated("t", t, ALL)
    for phase, wanted, state in zip(made, (liquid, vapor), ours.saturation(T=t)):
        assert same_bits(np.array(phase).T, wanted)
        assert same_bits(np.array(state[ALL]).T, wanted)
    one = ours.saturation(T=float(t[2]))
    assert same_bits([one.liquid.d, one.vapor.d], [liquid[2, OUTPUTS.index("d")], vapor[2, OUTPUTS.index("d")]])


def test_constants_and_texts():
    ours, theirs = ostrel.Fluid("toluene", model="pr"), Handle("toluene", "model=pr")
    assert list(ours.constants) == listed("constants") and list(ours.texts) == listed("texts")
    for name in listed("constants"):
        assert same_bits(ours.constants[name], theirs.constant(name)) and getattr(ours, name) is ours.constants[name]
    for name in listed("texts"):
        assert ours.texts[name] == theirs.text(name) == getattr(ours, name)


def test_blocks_of_many_states():
    """States beyond the first block, and a failure there, are counted from the first state."""
    ours, theirs = ostrel.Fluid("argon"), Handle("argon")
    p = np.geomspace(1e4, 1e7, 5000)
    wanted, _ = theirs.evaluate("pt", "d,h,c", p, np.full_like(p, 300.0))
    assert same_bits(np.array(ours("pt", p, 300.0, "d,h,c")).T, wanted)
    assert same_bits(np.array(ours.state(p=p, T=300.0)["d,h,c"]).T, wanted)
    p[4321] = -1.0
    for call in (lambda: ours("pt", p, 300.0, "d"), lambda: ours.state(p=p, T=300.0)):
        with pytest.raises(ostrel.StateError, match=r"state 4321 .*p = -1 Pa"):
            call()
