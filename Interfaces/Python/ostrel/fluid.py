# SPDX-License-Identifier: MIT
"""Fluids."""
from __future__ import annotations

import os
from types import MappingProxyType
from typing import TYPE_CHECKING, Any, Mapping, NamedTuple, Sequence

from . import _core, blocks
from .arrays import PLAIN, Form, Names, read, without_units
from .errors import ArgumentError
from .state import Saturation, State


def _options(given: Mapping[str, Any]) -> str:
    for key, value in given.items():
        if not isinstance(value, (str, os.PathLike)) or ";" in os.fspath(value):
            raise ArgumentError(f"the option {key} must be a text without semicolons, but is {value!r}")
    return "; ".join(f"{key}={os.fspath(value)}" for key, value in given.items())


class Fluid:
    """A fluid with its equation of state. It never changes, and any number of threads may use it at the same time.

    name      of a parameter file of the fluid folder, or as people know the fluid
    options   model="pr", volume="translated", reference="iir", states="metastable", phase="liquid", folder=...;
              Documentation/Handles.md has all of them

    Constants and texts of the library are attributes, as ``t_crit`` and ``name``.

    >>> import ostrel
    >>> toluene = ostrel.Fluid("toluene", model="pr")
    >>> toluene.name, toluene.model, round(toluene.t_crit, 2)
    ('toluene', 'pr', 591.75)
    >>> ostrel.Fluid("toluen")
    Traceback (most recent call last):
    ...
    ostrel.errors.OpeningError: fluid "toluen": ...
    """

    __slots__ = ("_handle", "_constants", "_texts", "_value", "__weakref__")

    _handle: _core.Handle
    _constants: Mapping[str, float]
    _texts: Mapping[str, str]

    def __init__(self, name: str, **options: str | os.PathLike[str]) -> None:
        self._take(_core.Handle.open(name, _options(options)))

    @classmethod
    def from_file(cls, path: str | os.PathLike[str], **options: str) -> Fluid:
        """A fluid from its parameter file."""
        return cls._of(_core.Handle.open_file(os.fspath(path), _options(options)))

    @classmethod
    def from_text(cls, text: str, **options: str) -> Fluid:
        """A fluid from a text like that of a parameter file.

        >>> import ostrel
        >>> again = ostrel.Fluid.from_text(ostrel.Fluid("argon").text, model="vdw")
        >>> again.model, round(again.z_crit, 6)
        ('vdw', 0.375)
        """
        return cls._of(_core.Handle.open_text(text, _options(options)))

    @classmethod
    def from_database(cls, location: str | os.PathLike[str], name: str, **options: str) -> Fluid:
        """A fluid from an SQLite database."""
        return cls._of(_core.Handle.open_database(os.fspath(location), name, _options(options)))

    @classmethod
    def _of(cls, handle: _core.Handle) -> Fluid:
        made = cls.__new__(cls)
        made._take(handle)
        return made

    def _take(self, handle: _core.Handle, known: tuple[dict[str, float], dict[str, str]] | None = None) -> None:
        self._handle = handle
        self._value = handle.value
        constants, texts = known or ({name: handle.constant(name) for name, _, _ in _core.list("constants")},
                                     {name: handle.text(name) or "" for name, _, _ in _core.list("texts")})
        self._constants, self._texts = MappingProxyType(constants), MappingProxyType(texts)

    if TYPE_CHECKING:
        def __getattr__(self, name: str) -> Any: ...

    # A copy is opened from the parameters' text. What only the fluid folder's index knew goes with it.
    def __reduce__(self) -> tuple[Any, ...]:
        return _reopened, (type(self), dict(self._constants), dict(self._texts))

    # Nothing can tell a copy from the original.
    def __copy__(self) -> Fluid:
        return self

    def __deepcopy__(self, memo: object) -> Fluid:
        return self

    def __dask_tokenize__(self) -> tuple[str, ...]:
        return type(self).__qualname__, self._texts["text"], self._texts["options"]

    @property
    def constants(self) -> Mapping[str, float]:
        """All constants [SI]; those that the fluid does not have are NaN."""
        return self._constants

    @property
    def texts(self) -> Mapping[str, str]:
        """All texts."""
        return self._texts

    def __repr__(self) -> str:
        return f"<fluid {self._texts['name']}: {self._texts['options']}>"

    def __call__(self, inputs: str, first: Any, second: Any, outputs: str | Sequence[str], *, workers: int = 1,
                 errors: str = "raise") -> Any:
        """Outputs of states, each from two inputs.

        inputs    two letters, such as "pt", in the order of first and second
        first     [SI] number, sequence, array of numpy or dask, series of pandas, or quantity of pint
        second    [SI] the same; the two broadcast
        outputs   a name, or several with commas between them, or a sequence of names
        workers   threads, 0 for one on each core
        errors    "raise", or "nan" for a second result, the status of each state

        One name gives its values; several give a tuple of values, or a DataFrame if an input is a series.

        >>> import ostrel
        >>> toluene = ostrel.Fluid("toluene")
        >>> round(toluene("pt", 1e5, 400.0, "d"), 3)
        2.85
        >>> d, h = toluene("pt", [1e5, 2e5], 450.0, ["d", "h"], workers=2)
        >>> d.round(3)
        array([2.512, 5.132])
        >>> toluene("pt", [1e5, -1.0], 450.0, "d", errors="nan")
        (array([2.51239973,        nan]), array([0, 2], dtype=int32))
        """
        if type(first) in PLAIN and type(second) in PLAIN and type(outputs) is str and errors == "raise" \
                and "," not in outputs:
            return self._value(inputs, first, second, outputs)
        names, with_status = Names(outputs), _with_status(errors)
        letters: Sequence[str] = inputs.strip(" \t")
        if len(letters) != 2:  # the library says what is wrong with it
            letters = "first", "second"
        given, registry = without_units(list(zip(letters, (first, second))))
        if any(blocks.is_lazy(value) for _, value in given):
            form = Form(lazy=True)
            columns, status = blocks.evaluate(self, inputs, given[0][1], given[1][1], names, workers, errors)
        else:
            (one, other), form = read(given)
            columns, status = self._handle.evaluate(inputs, str(names), one, other, workers, with_status)
        form.registry = registry
        values = form.outputs(columns, names)
        return (values, form.array(status, "status")) if with_status else values

    def state(self, *, errors: str = "raise", **inputs: Any) -> State:
        """The state, or the array of states, with two known quantities, such as ``p=1e5, T=400.0``, in any order.

        With errors="nan", states that do not exist are NaN, and have a status other than 0.

        >>> import ostrel
        >>> argon = ostrel.Fluid("argon")
        >>> argon.state(p=1e5, T=300.0)
        <gas state of argon: t=300 K, p=100000 Pa>
        >>> argon.state(h=-1e5, p=[1e5, 2e5]).q.round(4)
        array([0.087 , 0.0385])
        """
        if len(inputs) != 2 or any([len(name) != 1 for name in inputs]):
            raise ArgumentError(
                f"a state has two inputs, such as p=1e5, T=400.0; there are {', '.join(inputs) or 'none'}")
        (one, first), (other, second) = inputs.items()
        if type(first) in PLAIN and type(second) in PLAIN and errors == "raise":
            return State(self, self._handle, self._handle.solve_one(one + other, first, second), None, True)
        with_status = _with_status(errors)
        (first, second), form = read([(one, first), (other, second)])
        solved = self._handle.solve(one + other, first, second, with_status)
        return State(self, self._handle, solved, form, not with_status)

    def saturation(self, *, errors: str = "raise", **at: Any) -> Saturation:
        """The saturated liquid and the saturated vapor at a temperature or a pressure.

        >>> import ostrel
        >>> liquid, vapor = ostrel.Fluid("toluene").saturation(T=400.0)
        >>> round(liquid.d, 2), round(vapor.d, 3), liquid.p == vapor.p
        (681.68, 4.538, True)
        """
        if len(at) != 1 or "q" in at:
            raise ArgumentError(f"saturation has one input, T or p; there are {', '.join(at) or 'none'}")
        return Saturation(self.state(errors=errors, **at, q=0.0), self.state(errors=errors, **at, q=1.0))

    def saturated(self, name: str, at: Any, outputs: str | Sequence[str], *, errors: str = "raise") -> Any:
        """Outputs of both saturated phases, from one solution for each temperature ("t") or pressure ("p").

        >>> import ostrel
        >>> liquid, vapor = ostrel.Fluid("toluene").saturated("t", [380.0, 400.0], "d")
        >>> liquid.round(2), vapor.round(3)
        (array([701.34, 681.68]), array([2.701, 4.538]))
        """
        names, with_status = Names(outputs), _with_status(errors)
        (values,), form = read([(name, at)])
        columns, status = self._handle.saturation(name, str(names), values, with_status)
        middle = len(names.names)
        phases = form.outputs(columns[:middle], names), form.outputs(columns[middle:], names)
        return (*phases, form.array(status, "status")) if status is not None else phases


def _with_status(errors: str) -> bool:
    if errors not in ("raise", "nan"):
        raise ArgumentError(f'errors is "raise" or "nan", not {errors!r}')
    return errors == "nan"


def _reopened(kind: type[Fluid], constants: dict[str, float], texts: dict[str, str]) -> Fluid:
    made = kind.__new__(kind)
    made._take(_core.Handle.open_text(texts["text"], texts["options"]), (constants, texts))
    return made


def _constant(name: str, unit: str, description: str) -> property:
    return property(lambda fluid: fluid._constants[name], doc=f"{description} [{unit}]")


def _text(name: str, description: str) -> property:
    return property(lambda fluid: fluid._texts[name], doc=description)


for _name, _unit, _description in _core.list("constants"):
    setattr(Fluid, _name, _constant(_name, _unit, _description))
for _name, _, _description in _core.list("texts"):
    setattr(Fluid, _name, _text(_name, _description))


class Found(NamedTuple):
    """A fluid of the fluid folder."""

    file: str  #: opens it: ``Fluid(found.file)``
    name: str


def fluids(words: str = "") -> list[Found]:
    """The fluids that the words find, the best first; all for "".

    >>> import ostrel
    >>> ostrel.fluids("toluene")[0]
    Found(file='toluene', name='toluene')
    """
    return [Found(*row) for row in _core.find(words)]
