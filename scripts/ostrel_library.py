# SPDX-License-Identifier: MIT
"""The library for the Python programs of this folder."""
import ctypes
import os
import traceback


class Failed(Exception):
    """A request failed; the message is the library's error text."""


class Library:
    """The entry points of a built library. The library has one state for the whole process; child() starts a process
    with a fresh one."""

    def __init__(self, path, fluids):
        os.environ["OSTREL_FLUIDS"] = str(fluids)
        self._library = ctypes.CDLL(str(path))
        self._text = ctypes.create_string_buffer(256)
        for name in ("ostrel_prop", "ostrel_info"):
            getattr(self._library, name).restype = ctypes.c_double

    def _ask(self, function, texts, values, output_text):
        """Calls with the texts and values in order, the error text behind them and the lengths at the end."""
        fields = [text.encode() for text in texts + [output_text]]
        numbers = [ctypes.byref(ctypes.c_double(value)) for value in values]
        result = function(*fields[:-1], *numbers, fields[-1], self._text,
                          *(ctypes.c_size_t(len(field)) for field in fields), ctypes.c_size_t(256))
        message = self._text.raw.decode("latin-1").rstrip()
        if message != "No errors":
            raise Failed(message)
        return result

    def prop(self, fluid, pair, value1, value2, output):
        """One property, in SI units."""
        return self._ask(self._library.ostrel_prop, [fluid, pair], [value1, value2], output)

    def info(self, fluid, name):
        """One constant: "m_mol" [kg/mol], "t_crit" [K], "p_crit" [Pa]."""
        self._fluid = fluid
        return self._ask(self._library.ostrel_info, [fluid], [], name)

    # These functions are of the C++ modules. They serve the fluid that info() loaded last.

    def cp(self, T, d):
        """Isobaric heat capacity [J/(kg K)] at T [K] and density d [kg/m3]."""
        return self._derived("_ZN14thermodynamics7cp__T_vEdd", T, d) * 8.314 / self.info(self._fluid, "m_mol")

    def c(self, T, d):
        """Speed of sound [m/s]. The library reduces it by the square root of P_ref v_ref, where P_ref = Pc."""
        v_ref = 1 / (d * self._reduced(T, d)[1])
        return self._derived("_ZN14thermodynamics6c__T_vEdd", T, d) * (self.info(self._fluid, "p_crit") * v_ref) ** 0.5

    def fundamental_derivative(self, T, d):
        """Fundamental derivative of gas dynamics."""
        return self._derived("_ZN14thermodynamics6G__T_vEdd", T, d)

    def vc(self):
        """Critical volume of the model [m3/kg]."""
        return 1 / self._reduced(300, 1)[1]

    def smallest_volume(self):
        """Covolume of the model [m3/kg], which every volume exceeds."""
        operation = self._library["_ZN14thermodynamics23minimum_specific_volumeEv"]
        operation.restype = ctypes.c_double
        return operation() * self.vc()

    def _reduced(self, T, d):
        state = ctypes.c_double(), ctypes.c_double()
        self._library.get_tv(b"td", ctypes.byref(ctypes.c_double(T)), ctypes.byref(ctypes.c_double(d)),
                             ctypes.byref(state[0]), ctypes.byref(state[1]), ctypes.c_size_t(2))
        return state[0].value, state[1].value

    def _derived(self, symbol, T, d):
        operation = getattr(self._library, symbol)
        operation.restype, operation.argtypes = ctypes.c_double, (ctypes.c_double, ctypes.c_double)
        return operation(*self._reduced(T, d))


class Fluid:
    """A fluid of a folder, opened as a handle."""

    def __init__(self, path, folder, fluid, options):
        self._library, self._handle = ctypes.CDLL(str(path)), ctypes.c_void_p()
        for name, result in (("ostrel_last_message", ctypes.c_char_p), ("ostrel_fluid_constant", ctypes.c_double),
                             ("ostrel_fluid_close", None)):
            getattr(self._library, name).restype = result
        self._require(self._library.ostrel_fluid_open(fluid.encode(), f"folder={folder}; {options}".encode(),
                                                      ctypes.byref(self._handle)))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._library.ostrel_fluid_close(self._handle)

    def _require(self, status):
        if status != 0:
            raise Failed(self._library.ostrel_last_message().decode())

    def constant(self, name):
        return self._library.ostrel_fluid_constant(self._handle, name.encode())

    def state(self, pair, first, second, outputs):
        """{output: value} of one state."""
        values = (ctypes.c_double * len(outputs))()
        self._require(self._library.ostrel_fluid_evaluate(
            self._handle, pair.encode(), ",".join(outputs).encode(), ctypes.c_size_t(1),
            ctypes.byref(ctypes.c_double(first)), ctypes.byref(ctypes.c_double(second)), values, None))
        return dict(zip(outputs, values))

    def saturation(self, T, outputs):
        """{output: value} of the saturated liquid and of the saturated vapor at T [K]."""
        phases = [(ctypes.c_double * len(outputs))() for _ in range(2)]
        self._require(self._library.ostrel_fluid_saturation(
            self._handle, b"t", ",".join(outputs).encode(), ctypes.c_size_t(1), ctypes.byref(ctypes.c_double(T)),
            *phases, None))
        return [dict(zip(outputs, values)) for values in phases]


def child(work, *arguments):
    """The answer of work(*arguments) in a process of its own, as text; None if the process died."""
    reading, writing = os.pipe()
    process = os.fork()
    if process == 0:
        os.close(reading)
        try:
            with os.fdopen(writing, "w", encoding="utf-8") as pipe:
                pipe.write(work(*arguments))
        except BaseException:  # the child must never go on as if it were its parent
            traceback.print_exc()
            os._exit(1)
        os._exit(0)
    os.close(writing)
    with os.fdopen(reading, encoding="utf-8") as pipe:
        answer = pipe.read()
    return answer if os.waitpid(process, 0)[1] == 0 else None
