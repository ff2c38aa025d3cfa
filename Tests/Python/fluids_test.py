# SPDX-License-Identifier: MIT
"""Fluids: how they are opened, copied, used by threads, and what their errors are."""
import copy
import os
import pathlib
import pickle
import sqlite3
import threading

import numpy as np
import pytest

import ostrel
from ostrel import _core
from c_library import listed, same_bits

FLUIDS = pathlib.Path(os.environ["OSTREL_FLUIDS"])


def test_ways_of_opening():
    file = FLUIDS / "toluene.osd"
    text = file.read_text(encoding="utf-8")
    fluids = [ostrel.Fluid("toluene"), ostrel.Fluid("108-88-3"), ostrel.Fluid("toluene", folder=FLUIDS),
              ostrel.Fluid.from_file(file), ostrel.Fluid.from_file(str(file)), ostrel.Fluid.from_text(text)]
    assert len({fluid("pt", 1e5, 400.0, "h") for fluid in fluids}) == 1
    assert ostrel.Fluid.from_text(text, model="pr", reference="iir").options.startswith("model=pr")


@pytest.mark.skipif(os.environ["OSTREL_DATABASES"] != "1", reason="the library is built without databases")
def test_databases(tmp_path):
    with sqlite3.connect(tmp_path / "own.sqlite") as database:
        database.execute("CREATE TABLE fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL)")
        database.execute("INSERT INTO fluid VALUES ('mine', ?)", [(FLUIDS / "toluene.osd").read_text(encoding="utf-8")])
    database.close()
    fluid = ostrel.Fluid.from_database(tmp_path / "own.sqlite", "mine", model="pr")
    assert fluid("pt", 1e5, 400.0, "h") == ostrel.Fluid("toluene", model="pr")("pt", 1e5, 400.0, "h")
    assert pickle.loads(pickle.dumps(fluid)).texts == fluid.texts


@pytest.mark.parametrize("open_it, exception, status", [
    (lambda: ostrel.Fluid("no such fluid"), ostrel.OpeningError, 11),
    (lambda: ostrel.Fluid.from_file("no such file.osd"), ostrel.OpeningError, 11),
    (lambda: ostrel.Fluid.from_text("no parameters"), ostrel.OpeningError, 12),
    (lambda: ostrel.Fluid.from_database("no such file.sqlite", "toluene"), ostrel.OpeningError, 11),
    (lambda: ostrel.Fluid("toluene", model="none"), ostrel.ArgumentError, 10),
    (lambda: ostrel.Fluid("toluene", mode="pr"), ostrel.ArgumentError, 10),
    (lambda: ostrel.Fluid("toluene", folder="a; model=pr"), ostrel.ArgumentError, 10),
    (lambda: ostrel.Fluid("toluene\0"), ostrel.ArgumentError, 10),
])
def test_failures_of_opening(open_it, exception, status):
    with pytest.raises(exception) as caught:
        open_it()
    assert caught.value.status == status and isinstance(caught.value, ostrel.OstrelError)


TOLUENE = ostrel.Fluid("toluene")
STATE = TOLUENE.state(p=1e5, T=400.0)
MIXTURE = TOLUENE.state(p=1e5, q=0.5)


@pytest.mark.parametrize("call, exception, status", [
    (lambda: TOLUENE("pt", 1e5, -1.0, "d"), ostrel.StateError, 2),
    (lambda: TOLUENE("pt", np.nan, 400.0, "d"), ostrel.StateError, 1),
    (lambda: TOLUENE("pt", [1e5, np.inf], 400.0, "d"), ostrel.StateError, 1),
    (lambda: TOLUENE.state(T=400.0, d=-1.0), ostrel.StateError, 2),
    (lambda: TOLUENE.saturation(T=900.0), ostrel.StateError, 5),
    (lambda: TOLUENE.saturated("t", [400.0, 900.0], "d"), ostrel.StateError, 5),
    (lambda: MIXTURE.cp, ostrel.StateError, 4),
    (lambda: MIXTURE["d, cp"], ostrel.StateError, 4),
    (lambda: TOLUENE("pz", 1e5, 400.0, "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("p", [1e5], 400.0, "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", 1e5, 400.0, "zz"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", 1e5, 400.0, "d\0"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", [1e5], 400.0, ["d", "h,s"]), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", [1e5], 400.0, []), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", [1e5, 2e5], [1.0, 2.0, 3.0], "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", "1e5", 400.0, "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", True, 400.0, "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", 1e5 + 0j, 400.0, "d"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE("pt", 1e5, 400.0, "d", errors="none"), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.state(p=1e5), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.state(p=1e5, T=400.0, h=0.0), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.state(t=300.0, T=400.0), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.state(**{"pt": 1e5, "": 400.0}), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.saturation(d=1.0), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.saturation(q=1.0), ostrel.ArgumentError, 10),
    (lambda: TOLUENE.saturation(), ostrel.ArgumentError, 10),
    (lambda: STATE["zz"], ostrel.ArgumentError, 10),
])
def test_failures(call, exception, status):
    with pytest.raises(exception) as caught:
        call()
    assert caught.value.status == status and str(caught.value)
    again = pickle.loads(pickle.dumps(caught.value))
    assert type(again) is type(caught.value) and str(again) == str(caught.value) and again.status == status


def test_other_names_are_no_attributes():
    for thing in (TOLUENE, STATE):
        with pytest.raises(AttributeError):
            thing.no_such_name
    assert isinstance(ostrel.ArgumentError("text"), ValueError)


def test_state_between_the_phases():
    assert 0 < MIXTURE.q < 1 and MIXTURE.phase_name == "two-phase" and MIXTURE.phase == 2
    lenient = TOLUENE.state(p=1e5, q=0.5, errors="nan")
    assert np.isnan(lenient.cp) and lenient.d == MIXTURE.d and lenient.status == 0
    values, status = TOLUENE("pq", 1e5, 0.5, "d,cp", errors="nan")
    assert values[0] == MIXTURE.d and np.isnan(values[1]) and status == 4


def test_every_output_is_an_attribute_with_a_description():
    for name, unit, description in _core.list("outputs"):
        attribute = getattr(ostrel.State, name + "_" * (name == "lambda"))
        assert attribute.__doc__ == f"{description} [{unit}]"
    assert STATE.T is not None and STATE.T == STATE.t == 400.0


def test_letters_and_order():
    values = {STATE.h, TOLUENE.state(T=400.0, p=1e5).h, TOLUENE.state(t=400.0, p=1e5).h, TOLUENE("tp", 400.0, 1e5, "h"),
              TOLUENE("PT", 1e5, 400, "H"), TOLUENE("pt", 100000, np.float64(400.0), "h"), STATE["h"], STATE[["h"]][0]}
    assert len(values) == 1


@pytest.mark.parametrize("options", [
    {}, {"model": "pr", "volume": "translated"}, {"reference": "iir"}, {"states": "metastable", "phase": "liquid"},
    {"model": "izg"}, {"model": "cii", "reference": "nbp"}])
def test_copies(options):
    fluid = ostrel.Fluid("toluene", **options)
    outputs = [name for name in listed("outputs") if name != "q"]
    wanted, wanted_status = fluid("pt", [1e5, 3e5], [350.0, 600.0], outputs, errors="nan")
    for again in (pickle.loads(pickle.dumps(fluid)), copy.copy(fluid), copy.deepcopy(fluid)):
        made, status = again("pt", [1e5, 3e5], [350.0, 600.0], outputs, errors="nan")
        assert same_bits(made, wanted) and np.array_equal(status, wanted_status)
        assert same_bits(list(again.constants.values()), list(fluid.constants.values()))
        assert again.texts == fluid.texts


def test_copies_of_states():
    for state in (STATE, TOLUENE.state(p=[1e5, 2e5], T=400.0)):
        for again in (pickle.loads(pickle.dumps(state)), copy.copy(state), copy.deepcopy(state)):
            assert np.all(again.h == state.h) and again.shape == state.shape


def test_a_fluid_of_other_bytes(tmp_path):
    text = (FLUIDS / "argon.osd").read_bytes().replace(b"\nargon", b"\nArgon \xe9", 1)
    file = tmp_path / "latin.osd"
    file.write_bytes(text)
    fluid = ostrel.Fluid.from_file(file)
    assert fluid.text.encode("utf-8", "surrogateescape") == text
    assert pickle.loads(pickle.dumps(fluid))("pt", 1e5, 300.0, "d") == fluid("pt", 1e5, 300.0, "d")


def test_finding():
    assert len(ostrel.fluids()) == len(list(FLUIDS.glob("*.osd")))
    for found in ostrel.fluids("pentane")[:5]:
        assert ostrel.Fluid(found.file).name == found.name


def test_many_threads():
    p, wrong = np.geomspace(1e4, 1e6, 3000), []
    wanted = TOLUENE("pt", p, 500.0, ["d", "h"])

    def work(number):
        for _ in range(5):
            if not same_bits(TOLUENE("pt", p, 500.0, ["d", "h"], workers=1 + number % 2), wanted):
                wrong.append(number)
            try:
                TOLUENE("pt", 1e5, -float(number + 1), "d")
            except ostrel.StateError as problem:
                if f"t = -{number + 1} K" not in str(problem):
                    wrong.append(str(problem))

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_array_calls_let_other_threads_run():
    """A thread that only counts goes on while another computes."""
    import sys
    import time

    p, t = np.geomspace(1e4, 1e6, 200_000), np.full(200_000, 500.0)
    ended, counted = threading.Event(), [0]

    def count():
        while not ended.is_set():
            counted[0] += 1
            time.sleep(0.001)

    before = sys.getswitchinterval()
    thread = threading.Thread(target=count)
    thread.start()
    try:
        sys.setswitchinterval(1.0)
        begin = counted[0]
        TOLUENE("pt", p, t, "d")
        assert counted[0] > begin + 3
    finally:
        sys.setswitchinterval(before)
        ended.set()
        thread.join()
