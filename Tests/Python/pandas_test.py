# SPDX-License-Identifier: MIT
"""Columns of pandas, quantities of pint, and arrays of dask."""
import copy
import pickle
import sys

import dask.array as dask_array
import numpy as np
import pandas
import pint
import pytest

import ostrel
from c_library import listed, same_bits

FLUID = ostrel.Fluid("toluene")
TABLE = pandas.DataFrame({"p": [1e5, 2e5, 1e6], "t": [400, 450, 450]}, index=["a", "b", "c"])
UNITS = pint.UnitRegistry()


def test_columns():
    wanted = FLUID("pt", TABLE.p.to_numpy(), TABLE.t.to_numpy(), "d")
    made = FLUID("pt", TABLE.p, TABLE.t, "d")
    assert made.name == "d" and made.index.equals(TABLE.index) and same_bits(made.to_numpy(), wanted)
    several = FLUID("pt", TABLE["p"], TABLE["t"], ["d", "h"])
    assert list(several.columns) == ["d", "h"] and several.index.equals(TABLE.index)
    table = TABLE.copy()
    table[["d", "h"]] = several
    assert same_bits(table["d"].to_numpy(), wanted)
    values, status = FLUID("pt", TABLE.p, -1.0, "d", errors="nan")
    assert values.isna().all() and status.tolist() == [2, 2, 2]
    states = FLUID.state(p=TABLE.p, T=TABLE.t)
    assert states.d.equals(made) and states.phase_name.tolist() == ["vapor", "vapor", "liquid"]
    nullable = TABLE.p.astype("Float64")
    assert same_bits(FLUID("pt", nullable, TABLE.t, "d").to_numpy(), wanted)
    nullable.iloc[0] = pandas.NA
    assert FLUID("pt", nullable, TABLE.t, "d", errors="nan")[1].tolist() == [1, 0, 0]
    empty = FLUID("pt", TABLE.p[:0], TABLE.t[:0], "d,h")
    assert empty.shape == (0, 2)


def test_tables_are_no_input():
    for call in (lambda: FLUID("pt", TABLE, 400.0, "d"), lambda: FLUID.state(p=TABLE, T=400.0)):
        with pytest.raises(ostrel.ArgumentError, match="p is a whole table; give one of its columns"):
            call()


@pytest.mark.parametrize("p, t", [
    (TABLE.p, TABLE.t.rename({"a": "x"})), (TABLE.p, [400.0, 450.0]), (TABLE.p, [[400.0], [450.0]]),
    (TABLE.p.astype(str), 400.0)])
def test_columns_that_do_not_fit(p, t):
    with pytest.raises(ostrel.ArgumentError):
        FLUID("pt", p, t, "d")


def test_quantities():
    p, t = UNITS.Quantity([1.0, 2.0], "bar"), UNITS.Quantity(126.85, "degC")
    wanted = FLUID("pt", p.to("Pa").magnitude, t.to("K").magnitude, "d,h")
    d, h = FLUID("pt", p, t, "d,h")
    assert same_bits(d.to("kg/m**3").magnitude, wanted[0]) and same_bits(h.to("J/kg").magnitude, wanted[1])
    state = FLUID.state(p=p, T=t)
    assert same_bits(state.h.to("J/kg").magnitude, wanted[1]) and state.c.check("[length]/[time]")
    one = FLUID.state(p=1 * UNITS.bar, T=400.0)
    assert one.d.to("kg/m**3").magnitude == FLUID("pt", 1e5, 400.0, "d")
    assert FLUID("pt", 1 * UNITS.bar, 400.0, "eta").to("uPa*s").magnitude == pytest.approx(9.058, abs=1e-3)
    values, status = FLUID("pt", p, -1.0, "d", errors="nan")
    assert np.isnan(values.magnitude).all() and status.tolist() == [2, 2]
    for p, t in ((1 * UNITS.m, 400.0), (1e5, 1 * UNITS.bar), (1 * UNITS.dimensionless, 400.0)):
        with pytest.raises(ostrel.ArgumentError, match="must have a unit of"):
            FLUID("pt", p, t, "d")


@pytest.mark.parametrize("p", [
    1e5, [1e5, 2e5], TABLE.p, np.ma.MaskedArray([1e5, 2e5], mask=[False, True]), 1 * UNITS.bar, [1, 2] * UNITS.bar])
def test_copies_of_states(p):
    state = FLUID.state(p=p, T=450.0)
    again = pickle.loads(pickle.dumps(state))
    assert type(again.d).__name__ == type(state.d).__name__ and again.shape == state.shape
    assert again.fluid.texts == FLUID.texts
    for one, other in zip(again["d, h"], state["d, h"]):
        if hasattr(other, "magnitude"):  # a copy from elsewhere has the registry of this program, not that of another one
            assert one._REGISTRY is pint.get_application_registry().get() and str(one.units) == str(other.units)
            one, other = one.magnitude, other.magnitude
        assert np.array_equal(np.ma.getmaskarray(one), np.ma.getmaskarray(other)) and np.all(one == other)
    assert copy.copy(state) is copy.deepcopy(state) is state


def test_units_of_all_outputs():
    """What pint makes of each unit has the dimension that follows from the definition."""
    dimensions = {name: FLUID("pt", 1 * UNITS.bar, 400.0, name) for name in listed("outputs")}
    known = {"t": "K", "p": "Pa", "v": "m**3/kg", "d": "kg/m**3", "h": "J/kg", "s": "J/kg/K", "u": "J/kg"}
    for name in listed("outputs"):
        if name[0] == "d" and "_" in name and name != "dcv_dt":
            continue
        assert dimensions[name].units is not None
    for name, unit in known.items():
        assert dimensions[name].check(UNITS(unit).dimensionality)
    for name, unit in {"dp_dt": "Pa/K", "dp_dv": "Pa/(m**3/kg)", "d2p_dt2": "Pa/K**2", "d2p_dv2": "Pa/(m**3/kg)**2",
                       "d2p_dtdv": "Pa/(m**3/kg)/K", "dcv_dt": "J/kg/K**2", "lambda": "W/m/K", "jt": "K/Pa"}.items():
        assert dimensions[name].check(UNITS(unit).dimensionality)
    for x in known:
        for y in known:
            for z in known:
                if y != z and {y, z} != {"v", "d"}:
                    made, _ = FLUID("pt", 1 * UNITS.bar, 400.0, f"d{x}/d{y}|{z}", errors="nan")
                    assert made.check((UNITS(known[x]) / UNITS(known[y])).dimensionality)


def test_lazy_arrays():
    p, t = np.geomspace(1e5, 1e6, 24).reshape(4, 6), np.linspace(400, 600, 6)
    lazy = dask_array.from_array(p, chunks=(2, 4))
    made = FLUID("pt", lazy, 450.0, "d")
    assert isinstance(made, dask_array.Array) and made.shape == p.shape and made.chunks == lazy.chunks
    assert same_bits(made.compute(), FLUID("pt", p, 450.0, "d"))
    d, h = FLUID("tp", dask_array.from_array(t, chunks=5), lazy, ["d", "h"])
    wanted = FLUID("pt", p, t, ["d", "h"])
    assert same_bits(d.compute(), wanted[0]) and same_bits(h.compute(), wanted[1])
    assert same_bits(FLUID("pt", lazy, t, "d").compute(), wanted[0])
    (d, h), status = FLUID("pt", lazy, np.array([450.0, 450.0, -1.0, 450.0, 450.0, 450.0]), ["d", "h"], errors="nan")
    assert status.dtype == np.int32 and status.compute()[0].tolist() == [0, 0, 2, 0, 0, 0]
    assert np.isnan(d.compute()[:, 2]).all()
    d, status = FLUID("pt", lazy, 450.0, "d", errors="nan")
    assert same_bits(d.compute(scheduler="threads"), made.compute()) and not status.compute().any()
    assert same_bits(FLUID("pt", lazy * UNITS.Pa, 450.0, "d").magnitude.compute(), made.compute())
    assert same_bits(pickle.loads(pickle.dumps(made)).compute(), made.compute())
    masked = dask_array.ma.masked_greater(lazy, 5e5)
    assert np.array_equal(np.ma.getmaskarray(FLUID("pt", masked, 450.0, "d").compute()), p > 5e5)


def test_lazy_arrays_have_the_same_name_for_the_same_work():
    lazy = dask_array.from_array(np.geomspace(1e5, 1e6, 8), chunks=4)
    again = pickle.loads(pickle.dumps(FLUID))
    assert FLUID("pt", lazy, 450.0, "d").name == again("pt", lazy, 450.0, "d").name
    assert FLUID("pt", lazy, 450.0, "d").name != ostrel.Fluid("toluene", model="pr")("pt", lazy, 450.0, "d").name


def test_lazy_arrays_complain_early():
    lazy = dask_array.from_array(np.geomspace(1e5, 1e6, 8), chunks=4)
    with pytest.raises(ostrel.ArgumentError):
        FLUID("pt", lazy, 450.0, "zz")
    for call in (lambda: FLUID.state(p=lazy, T=450.0), lambda: FLUID.saturated("p", lazy, "d")):
        with pytest.raises(ostrel.ArgumentError, match=r'as fluid\("pt", p, t'):
            call()
    with pytest.raises(ostrel.StateError):
        FLUID("pt", lazy, -1.0, "d").compute()


def test_nothing_is_imported_that_a_program_does_not_use():
    import subprocess
    code = ("import sys, ostrel; ostrel.Fluid('toluene')('pt', [1e5], 400.0, 'd'); "
            "print(*{'pandas', 'pint', 'dask', 'matplotlib'} & set(sys.modules))")
    assert subprocess.run([sys.executable, "-c", code], check=True, capture_output=True, text=True).stdout == "\n"
