#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What the Python package adds to the library's own time.

    python_times.py LIBRARY [STATES]      LIBRARY: the shared library; PYTHONPATH names the package's folder

Arrays: states of toluene from p and T, to d and h. The C function is called through ctypes, into arrays that were
written before, and into new ones as a program has them that calls once. The calls take turns, and the least time of
each counts. One state: numbers in, a number out.
"""
import ctypes
import sys
import time
import timeit

import numpy as np

import ostrel


def c_function(library):
    """(evaluate(p, t, values), value(p, t)) through ctypes."""
    handle, double, pointer = ctypes.c_void_p(), ctypes.c_double, ctypes.c_void_p
    assert library.ostrel_fluid_open(b"toluene", None, ctypes.byref(handle)) == 0
    library.ostrel_fluid_value.restype = double
    library.ostrel_fluid_value.argtypes = pointer, ctypes.c_char_p, double, double, ctypes.c_char_p, pointer
    library.ostrel_fluid_evaluate.argtypes = (pointer, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_size_t,
                                              pointer, pointer, pointer, pointer)

    def evaluate(p, t, values):
        assert library.ostrel_fluid_evaluate(handle, b"pt", b"d,h", p.size, p.ctypes.data, t.ctypes.data,
                                             values.ctypes.data, None) == 0

    return evaluate, lambda p, t: library.ostrel_fluid_value(handle, b"pt", p, t, b"d", None)


def least_times(calls, rounds):
    """{name: least time [s]}; in each round every call has its turn."""
    least = dict.fromkeys(calls, float("inf"))
    for _ in range(rounds):
        for name, call in calls.items():
            begin = time.perf_counter()
            call()
            least[name] = min(least[name], time.perf_counter() - begin)
    return least


def main():
    evaluate, value = c_function(ctypes.CDLL(sys.argv[1]))
    count = int(float(sys.argv[2])) if len(sys.argv) > 2 else 1_000_000
    fluid, random = ostrel.Fluid("toluene"), np.random.default_rng(1)
    p, t = 10 ** random.uniform(4, 7, count), random.uniform(300, 600, count)
    room = np.zeros((count, 2))
    times = least_times({
        "C, into arrays that were written before": lambda: evaluate(p, t, room),
        "C, into new arrays": lambda: evaluate(p, t, np.empty((count, 2))),
        "toluene(\"pt\", p, t, [\"d\", \"h\"])": lambda: fluid("pt", p, t, ["d", "h"]),
        "toluene(\"pt\", p, t, [\"d\", \"h\"], errors=\"nan\")": lambda: fluid("pt", p, t, ["d", "h"], errors="nan"),
        "toluene.state(p=p, T=t)[[\"d\", \"h\"]]": lambda: fluid.state(p=p, T=t)[["d", "h"]],
        "toluene(\"pt\", p, t, [\"d\", \"h\"], workers=0)": lambda: fluid("pt", p, t, ["d", "h"], workers=0)}, 9)
    base = times["C, into arrays that were written before"]
    print(f"{count} states, time of one [ns], and difference from the first line")
    for name, took in times.items():
        print(f"{name:50} {took / count * 1e9:8.1f} {(took / base - 1) * 100:+7.1f} %")

    state = fluid.state(p=1e5, T=400.0)
    print("\none state [us]")
    for name, call in {"ctypes": lambda: value(1e5, 400.0),
                       "toluene(\"pt\", 1e5, 400.0, \"d\")": lambda: fluid("pt", 1e5, 400.0, "d"),
                       "toluene.state(p=1e5, T=400.0)": lambda: fluid.state(p=1e5, T=400.0),
                       "toluene.state(p=1e5, T=400.0).d": lambda: fluid.state(p=1e5, T=400.0).d,
                       "state.h": lambda: state.h,
                       "toluene(\"pt\", [1e5], [400.0], \"d\")": lambda: fluid("pt", [1e5], [400.0], "d")}.items():
        print(f"{name:50} {min(timeit.repeat(call, number=20_000, repeat=7)) / 20_000 * 1e6:8.2f}")


main()
