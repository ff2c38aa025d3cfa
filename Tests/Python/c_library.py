# SPDX-License-Identifier: MIT
"""The C interface itself, by which the tests judge the package."""
import ctypes
import os

import numpy as np

_library = ctypes.CDLL(os.environ["OSTREL_LIBRARY"])
_library.ostrel_last_message.restype = ctypes.c_char_p
_library.ostrel_list.restype = ctypes.c_char_p
_library.ostrel_fluid_constant.restype = ctypes.c_double
_library.ostrel_fluid_value.restype = ctypes.c_double
_library.ostrel_fluid_text.restype = ctypes.c_char_p


def listed(kind):
    """The names of a list."""
    names = []
    while (name := _library.ostrel_list(kind.encode(), ctypes.c_size_t(len(names)), b"name")) is not None:
        names.append(name.decode())
    return names


def _pointer(array):
    return array.ctypes.data_as(ctypes.c_void_p)


class Handle:
    def __init__(self, name, options=""):
        self._handle = ctypes.c_void_p()
        status = _library.ostrel_fluid_open(name.encode(), options.encode(), ctypes.byref(self._handle))
        assert status == 0, _library.ostrel_last_message()

    def evaluate(self, pair, outputs, first, second):
        """(values[state, output], status[state]); inputs are arrays of double of one length."""
        count = len(first)
        values, status = np.empty((count, outputs.count(",") + 1)), np.empty(count, dtype=np.intc)
        done = _library.ostrel_fluid_evaluate(self._handle, pair.encode(), outputs.encode(), ctypes.c_size_t(count),
                                              _pointer(first), _pointer(second), _pointer(values), _pointer(status))
        assert done < 10, _library.ostrel_last_message()
        return values, status

    def saturation(self, name, outputs, at):
        phases = [np.empty((len(at), outputs.count(",") + 1)) for _ in range(2)]
        status = np.empty(len(at), dtype=np.intc)
        done = _library.ostrel_fluid_saturation(self._handle, name.encode(), outputs.encode(),
                                                ctypes.c_size_t(len(at)), _pointer(at), *map(_pointer, phases),
                                                _pointer(status))
        assert done < 10, _library.ostrel_last_message()
        return *phases, status

    def constant(self, name):
        return _library.ostrel_fluid_constant(self._handle, name.encode())

    def text(self, name):
        return _library.ostrel_fluid_text(self._handle, name.encode()).decode()


def same_bits(one, other):
    one, other = np.asarray(one, dtype=np.float64), np.asarray(other, dtype=np.float64)
    return one.shape == other.shape and np.array_equal(one.view(np.uint64), other.view(np.uint64))
