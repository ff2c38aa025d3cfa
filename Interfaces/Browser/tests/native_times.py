# SPDX-License-Identifier: MIT
"""Times of the native library, for comparison with the module's.

    native_times.py LIBRARY     reads measurements as JSON from standard input, writes nanoseconds for each state
"""
import array
import ctypes
import json
import sys
import time


def nanoseconds(library, row):
    """The least time of several runs, in one thread."""
    fluid = ctypes.c_void_p()
    if library.ostrel_fluid_open(row["fluid"].encode(), None, ctypes.byref(fluid)) != 0:
        raise ValueError(row["fluid"])
    first, second = (array.array("d", row[name]) for name in ("first", "second"))
    values = array.array("d", bytes(8 * len(first) * (row["outputs"].count(",") + 1)))
    at = [ctypes.c_void_p(one.buffer_info()[0]) for one in (first, second, values)]
    best = float("inf")
    for _ in range(row["runs"]):
        begin = time.perf_counter_ns()
        library.ostrel_fluid_evaluate(fluid, row["pair"].encode(), row["outputs"].encode(), ctypes.c_size_t(len(first)),
                                      *at, None)
        best = min(best, time.perf_counter_ns() - begin)
    library.ostrel_fluid_close(fluid)
    return best / len(first)


opened = ctypes.CDLL(sys.argv[1])
json.dump([nanoseconds(opened, row) for row in json.load(sys.stdin)], sys.stdout)
