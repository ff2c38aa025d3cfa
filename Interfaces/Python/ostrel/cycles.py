# SPDX-License-Identifier: MIT
"""Rankine cycles and vapor compression."""
from __future__ import annotations

import os
import tomllib
from types import MappingProxyType
from typing import TYPE_CHECKING, Any, Mapping, NamedTuple

import numpy as np

from . import _core
from .arrays import Form, pint_unit
from .errors import ArgumentError
from .fluid import Fluid
from .state import State

_KEYS = {f"{section}.{name}": (si, difference) for section, name, si, difference, _, _ in _core.cycle_keys()}
_SECTIONS = {name.split(".")[0] for name in _KEYS}
_OPTIONS = {name for name, _, _ in _core.list("options")} - {"folder"}


class Process(NamedTuple):
    """What happens between two states of a cycle."""

    name: str
    first: str  #: place where it begins
    last: str  #: place where it ends
    states: State  #: the states along it, for drawings


class Cycle:
    """A cycle, solved from a definition like that of a file: the fluid's name, or a fluid; options of its opening; the
    kind; and sections with numbers in SI units, texts with units, or quantities of pint.

    The figures are attributes; those that the cycle does not have are NaN. ``help(ostrel.cycles)`` ends with the keys.

    >>> import ostrel
    >>> definition = {"fluid": "toluene", "kind": "rankine", "evaporator": {"p": "15 bar", "superheat": 5.0},
    ...               "condenser": {"t": "45 degC"}, "turbine": {"efficiency": 0.85}}
    >>> cycle = ostrel.Cycle(definition)
    >>> round(cycle.efficiency, 3), round(cycle.states["turbine inlet"].T, 1)
    (0.237, 519.4)
    >>> round(cycle.changed({"evaporator.p": 20e5}).efficiency, 3)
    0.245
    """

    __slots__ = ("_fluid", "_kind", "_values", "_states", "_processes", "_figures")

    def __init__(self, definition: Mapping[str, Any]) -> None:
        fluid: Any = None
        kind, options, values = "rankine", {}, {}
        for key, value in definition.items():
            if key == "fluid":
                fluid = value
            elif key == "kind":
                kind = value
            elif key in _OPTIONS or key == "database":
                options[key] = value
            elif key in _SECTIONS and isinstance(value, Mapping):
                values.update({f"{key}.{name}": one for name, one in value.items()})
            else:
                raise ArgumentError(f'there is no key or section "{key}"; there are fluid, kind, database, '
                                    f"{', '.join(sorted(_OPTIONS))}, and the sections {', '.join(sorted(_SECTIONS))}")
        if isinstance(fluid, Fluid) and options:
            raise ArgumentError(f"the fluid is open already, so that it cannot have options: {', '.join(options)}")
        if fluid is None:
            raise ArgumentError('the fluid is wanted, as in "fluid": "toluene"')
        if not isinstance(fluid, Fluid):
            database = options.pop("database", None)
            fluid = Fluid(fluid, **options) if database is None else Fluid.from_database(database, fluid, **options)
        self._solve(fluid, kind, {name: _number(name, value) for name, value in values.items()})

    def _solve(self, fluid: Fluid, kind: str, values: dict[str, float]) -> None:
        self._fluid, self._kind, self._values = fluid, kind, values
        states, processes, figures = _core.cycle(fluid._handle, kind, values)
        places = [place for place, _ in states]
        self._states = MappingProxyType({place: State(fluid, fluid._handle, one, None, True) for place, one in states})
        self._processes = [
            Process(name, places[first], places[last], State(fluid, fluid._handle, along, Form(along.shape), True))
            for name, first, last, along in processes]
        self._figures = MappingProxyType(figures)

    if TYPE_CHECKING:
        def __getattr__(self, name: str) -> Any: ...

    def __reduce__(self) -> tuple[Any, ...]:
        return _solved, (self._fluid, self._kind, dict(self._values))

    def changed(self, values: Mapping[str, Any]) -> Cycle:
        """The same cycle with other values, such as ``{"evaporator.p": "20 bar"}``; None takes a value away."""
        merged = self._values | {name: value if value is None else _number(name, value)
                                 for name, value in values.items()}
        return _solved(self._fluid, self._kind, {name: value for name, value in merged.items() if value is not None})

    @property
    def fluid(self) -> Fluid:
        """The fluid."""
        return self._fluid

    @property
    def kind(self) -> str:
        """The kind of the cycle."""
        return self._kind

    @property
    def values(self) -> Mapping[str, float]:
        """The values of the definition [SI]."""
        return MappingProxyType(self._values)

    @property
    def states(self) -> Mapping[str, State]:
        """The states by their places, in the order of the flow."""
        return self._states

    @property
    def processes(self) -> list[Process]:
        """What happens between the states, in the order of the flow."""
        return list(self._processes)

    @property
    def figures(self) -> Mapping[str, float]:
        """All figures [SI]."""
        return self._figures

    def plot(self, kind: str = "ts", ax: Any = None, **options: Any) -> Any:
        """Draws the cycle in a diagram, as :func:`ostrel.plot.diagram` draws it, and returns the axes. Without x and y, the
        diagram is wide enough for the cycle.
        """
        from . import plot

        units = options.get("units", "si")
        ranges = _core.diagram(self._fluid._handle, kind, options.get("x"), options.get("y"), "", units)[:2]
        letters = next((x, y) for name, x, y in _core.diagram_kinds() if name == kind)
        for axis, limits, letter in zip("xy", ranges, letters):
            if options.get(axis) is None:
                values = np.concatenate([process.states[letter] for process in self._processes])
                options[axis] = _widened(limits, values, logarithmic=_core.properties()[letter][4])

        def drawn(states: State) -> Any:
            return np.array([plot._scaled(states[letter], letter, units) for letter in letters])

        lines = [drawn(process.states) for process in self._processes]
        options.setdefault("free", np.hstack(lines).T)
        ax = plot.diagram(kind, self._fluid, ax, **options)
        for line in lines:
            ax.plot(*line, color="black", linewidth=1.0)
        places = [drawn(state) for state in self._states.values()]
        for place in places:
            ax.plot(*place, "ko", markersize=3)
        _number_states(ax, places)
        return ax

    def __repr__(self) -> str:
        return f"<{self._kind} cycle of {self._fluid.name}, {len(self._states)} states>"


def _widened(limits: tuple[float, float], values: Any, logarithmic: bool) -> tuple[float, float]:
    """The limits, moved outwards where values lie beyond them."""
    ends = np.array([*limits, np.min(values), np.max(values)])
    low, high, least, most = np.log(ends) if logarithmic else ends
    room = 0.05 * (max(high, most) - min(low, least))
    values_of: Any = np.exp if logarithmic else np.asarray
    return (float(values_of(least - room)) if least < low else limits[0],
            float(values_of(most + room)) if most > high else limits[1])


def _number_states(ax: Any, places: list[Any]) -> None:
    """Writes the numbers of the states outside of the cycle; states that lie together have one text."""
    points = ax.transData.transform(places) * 72 / ax.figure.dpi  # in units of text sizes
    middle = points.mean(axis=0)
    together: dict[int, list[int]] = {}
    for number, point in enumerate(points):
        near = [first for first in together if np.hypot(*(points[first] - point)) < 12]
        together.setdefault(near[0] if near else number, []).append(number)
    for numbers in together.values():
        outermost = max(numbers, key=lambda number: float(np.hypot(*(points[number] - middle))))
        outwards = points[outermost] - middle
        right = outwards[0] > 0
        ax.annotate(", ".join(str(number + 1) for number in numbers), places[outermost], textcoords="offset points",
                    xytext=tuple(7 * outwards / (np.hypot(*outwards) or 1.0)), ha="left" if right else "right",
                    va="center", fontsize="small",
                    bbox={"facecolor": "white", "edgecolor": "none", "pad": 0.5, "alpha": 0.8})


def _solved(fluid: Fluid, kind: str, values: dict[str, float]) -> Cycle:
    made = Cycle.__new__(Cycle)
    made._solve(fluid, kind, values)
    return made


def _number(name: str, value: Any) -> float:
    if name not in _KEYS:
        section = name.split(".")[0]
        known = [key for key in _KEYS if key.startswith(section + ".")] or list(_KEYS)
        raise ArgumentError(f'there is no key "{name}"; there are {", ".join(known)}')
    si, difference = _KEYS[name]
    if isinstance(value, str):
        return _core.parse_value(value, si, difference)
    try:
        if hasattr(value, "magnitude"):
            value = value.to(pint_unit(si)).magnitude
        if isinstance(value, bool):
            raise TypeError("a truth value is no number")
        return float(value)
    except Exception as problem:  # pint's exceptions have no common base
        raise ArgumentError(f"{name} must be a number, a text or a quantity in {si}: {problem}") from problem


def cycle(path: str | os.PathLike[str]) -> Cycle:
    """The cycle that a file describes (TOML), as the command `ostrel cycle` reads it."""
    with open(path, "rb") as file:
        try:
            definition = tomllib.load(file)
        except tomllib.TOMLDecodeError as problem:
            raise ArgumentError(f"{os.fspath(path)}: {problem}") from problem
    return Cycle(definition)


def _figure(name: str, unit: str, meaning: str) -> property:
    return property(lambda cycle: cycle._figures[name], doc=f"{meaning} [{unit}]")


for _name, _si, _meaning in _core.cycle_figures():
    setattr(Cycle, _name, _figure(_name, _si, _meaning))

__doc__ += "\n\nKinds:\n" + "".join(f"  {name}: {meaning}\n" for name, meaning in _core.cycle_kinds())
__doc__ += "\nKeys, with their SI units and what holds without them:\n" + "".join(
    f"  {section}.{name} [{si}]{'' if standard is None else f' ({standard:g})'}: {meaning}\n"
    for section, name, si, _, standard, meaning in _core.cycle_keys())
